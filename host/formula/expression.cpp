#include "host/formula/expression.h"

#include <muParser.h>

#include <cctype>
#include <limits>
#include <optional>
#include <set>
#include <string>

#include "host/base/almost_equal.h"
#include "host/base/error.h"

namespace brenvolt {
namespace {

// `not` binds more loosely than a comparison and more tightly than `and`.
constexpr int kNotPrecedence = mu::prLOGIC;

double LogicalNot(double x) {
  return x == 0 ? 1 : 0;
}

bool IsIdentifierStart(char c) {
  return std::isalpha(static_cast<unsigned char>(c)) != 0 || c == '_';
}
bool IsIdentifierPart(char c) {
  return IsIdentifierStart(c) || (c >= '0' && c <= '9');
}
bool IsNumberPart(char c) {
  return (c >= '0' && c <= '9') || c == '.';
}

// Rewrites our grammar into the parser's: operators by their other names, variables as x0, x1, …, and keeps
// for every character of the result the place that it came from.
class Translation {
 public:
  Translation(std::string_view source, std::span<const FormulaVariable> variables,
              std::string_view sourceName)
      : source_(source), variables_(variables), sourceName_(sourceName) {
    while (position_ < source_.size()) TakeToken();
  }

  const std::string& Text() const { return text_; }
  // Indices of the variables used; the case number is the index one past the last variable.
  const std::set<std::size_t>& Used() const { return used_; }
  static std::string Symbol(std::size_t variable) { return "x" + std::to_string(variable); }

  [[noreturn]] void Fail(const std::string& what, std::size_t position) const {
    throw Error(what, std::string(sourceName_) + ", character " + std::to_string(position + 1));
  }
  std::size_t SourcePosition(std::size_t position) const {
    return position < origin_.size() ? origin_[position] : source_.size();
  }

 private:
  void Emit(std::string_view piece, std::size_t from) {
    text_ += piece;
    origin_.resize(text_.size(), from);
  }

  void TakeToken() {
    const std::size_t start = position_;
    const char c = source_[position_];
    if (c == '\'') return TakeQuotedName();
    if (IsIdentifierStart(c)) return TakeWord();
    if (IsNumberPart(c)) return TakeNumber();
    if (c == '<' || c == '>' || c == '=' || c == '!') return TakeComparison();
    static constexpr std::string_view kPlain = "+-*/^(), \t";
    if (kPlain.find(c) == std::string_view::npos) Fail(std::string("unexpected '") + c + "'", start);
    Emit(source_.substr(position_++, 1), start);
  }

  void TakeQuotedName() {
    const std::size_t start = position_;
    const std::size_t end = source_.find('\'', start + 1);
    if (end == std::string_view::npos) Fail("the quoted name is not closed", start);
    position_ = end + 1;
    const auto variable = FindVariable(source_.substr(start + 1, end - start - 1));
    if (!variable) Fail("no variable " + std::string(source_.substr(start, end + 1 - start)), start);
    Use(*variable, start);
  }

  void TakeWord() {
    const std::size_t start = position_;
    while (position_ < source_.size() && IsIdentifierPart(source_[position_])) ++position_;
    const std::string_view word = source_.substr(start, position_ - start);
    if (word == "and") return Emit("&&", start);
    if (word == "or") return Emit("||", start);
    if (word == "not") return Emit("!", start);
    const auto next = source_.find_first_not_of(" \t", position_);
    if (next != std::string_view::npos && source_[next] == '(') return Emit(word, start);
    const auto variable = FindVariable(word);
    if (!variable) Fail("no variable " + std::string(word), start);
    Use(*variable, start);
  }

  void TakeNumber() {
    const std::size_t start = position_;
    while (position_ < source_.size() && IsNumberPart(source_[position_])) ++position_;
    const bool exponent =
        position_ < source_.size() && (source_[position_] == 'e' || source_[position_] == 'E');
    if (exponent) {
      ++position_;
      if (position_ < source_.size() && (source_[position_] == '-' || source_[position_] == '+')) ++position_;
      while (position_ < source_.size() && IsNumberPart(source_[position_])) ++position_;
    }
    Emit(source_.substr(start, position_ - start), start);
  }

  void TakeComparison() {
    static constexpr std::string_view kSpellings[][2] = {{"<=", "<="}, {">=", ">="}, {"<>", "!="},
                                                         {"!=", "!="}, {"==", "=="}, {"<", "<"},
                                                         {">", ">"},   {"=", "=="}};
    for (const auto& [ours, theirs] : kSpellings) {
      if (!source_.substr(position_).starts_with(ours)) continue;
      Emit(theirs, position_);
      position_ += ours.size();
      return;
    }
    Fail("unexpected '!'", position_);
  }

  std::optional<std::size_t> FindVariable(std::string_view name) const {
    for (std::size_t i = 0; i < variables_.size(); ++i) {
      if (variables_[i].name == name) return i;
    }
    if (name.size() < 2 || name.size() > 9 || name.front() != 'v') return std::nullopt;
    std::size_t number = 0;
    for (const char c : name.substr(1)) {
      if (c < '0' || c > '9') return std::nullopt;
      number = 10 * number + static_cast<std::size_t>(c - '0');
    }
    if (number == 0) return variables_.size();
    return number <= variables_.size() ? std::optional(number - 1) : std::nullopt;
  }

  void Use(std::size_t variable, std::size_t from) {
    used_.insert(variable);
    Emit(Symbol(variable), from);
  }

  std::string_view source_;
  std::span<const FormulaVariable> variables_;
  std::string_view sourceName_;
  std::size_t position_ = 0;
  std::string text_;
  std::vector<std::size_t> origin_;
  std::set<std::size_t> used_;
};

// The parser wants writable storage for its variables, although it only reads them.
std::vector<std::vector<double>> CopyColumns(const Translation& translation,
                                             std::span<const FormulaVariable> variables, std::size_t cases) {
  std::vector<std::vector<double>> columns;
  for (const std::size_t index : translation.Used()) {
    if (index < variables.size()) {
      columns.emplace_back(variables[index].values.begin(), variables[index].values.end());
      continue;
    }
    std::vector<double>& numbers = columns.emplace_back(cases);
    for (std::size_t i = 0; i < cases; ++i) numbers[i] = static_cast<double>(i + 1);
  }
  return columns;
}

}  // namespace

std::vector<double> EvaluateOverCases(std::string_view formula, std::span<const FormulaVariable> variables,
                                      std::size_t cases, std::string_view sourceName) {
  const Translation translation(formula, variables, sourceName);
  if (translation.Text().find_first_not_of(" \t") == std::string::npos)
    translation.Fail("the formula is empty", 0);
  std::vector<double> result(cases, std::numeric_limits<double>::quiet_NaN());
  auto columns = CopyColumns(translation, variables, cases);
  try {
    mu::Parser parser;
    parser.DefineInfixOprt("!", LogicalNot, kNotPrecedence);
    std::size_t column = 0;
    for (const std::size_t index : translation.Used()) {
      parser.DefineVar(Translation::Symbol(index), columns[column++].data());
    }
    parser.SetExpr(translation.Text());
    if (cases > 0) parser.Eval(result.data(), static_cast<int>(cases));
  } catch (const mu::Parser::exception_type& error) {
    translation.Fail(error.GetMsg(), translation.SourcePosition(static_cast<std::size_t>(error.GetPos())));
  }
  for (const std::size_t index : translation.Used()) {
    if (index == variables.size()) continue;
    const FormulaVariable& variable = variables[index];
    for (std::size_t i = 0; i < cases; ++i) {
      if (IsMissingValue(variable.values[i], variable.missingCode)) {
        result[i] = std::numeric_limits<double>::quiet_NaN();
      }
    }
  }
  return result;
}

}  // namespace brenvolt
