#include "host/formula/formula_name.h"

#include "host/formula/lexer.h"

namespace brenvolt {

std::string QuotedInFormula(std::string_view name) {
  std::string quoted = "'";
  for (const char c : name) quoted += c == '\'' ? "''" : std::string(1, c);
  return quoted + "'";
}

std::string NameInFormula(std::string_view name) {
  const bool isOperator = IsWord(name, "and") || IsWord(name, "or") || IsWord(name, "not");
  const bool isNumber = !name.empty() && name.front() >= '0' && name.front() <= '9';
  if (name.empty() || isOperator || isNumber || name.front() == '.') return QuotedInFormula(name);
  if (name.front() == '\'' || name.front() == '"') return QuotedInFormula(name);
  const Token word = Lexer(name, "name", 0).Current();
  const bool isWord = word.kind == TokenKind::kWord && word.begin == 0 && word.end == name.size();
  return isWord ? std::string(name) : QuotedInFormula(name);
}

}  // namespace brenvolt
