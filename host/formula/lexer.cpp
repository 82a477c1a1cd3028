#include "host/formula/lexer.h"

#include <algorithm>

#include "host/base/number_text.h"
#include "host/base/quoted.h"
#include "host/formula/formula_error.h"

namespace brenvolt {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}
// A letter of any alphabet: the bytes of UTF-8 beyond ASCII all count as such.
bool IsWordStart(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' ||
         static_cast<unsigned char>(c) >= 0x80;
}
bool IsWordPart(char c) {
  return IsWordStart(c) || IsDigit(c) || c == '.';
}
char Lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

}  // namespace

bool IsWord(std::string_view word, std::string_view lower) {
  return std::ranges::equal(word, lower, {}, Lower);
}

Lexer::Lexer(std::string_view text, std::string_view sourceName, std::size_t begin)
    : text_(text), sourceName_(sourceName) {
  AdvanceFrom(begin);
}

void Lexer::AdvanceFrom(std::size_t place) {
  const std::size_t begin = std::min(text_.find_first_not_of(kBlanks, place), text_.size());
  token_ = {TokenKind::kEnd, begin, begin};
  if (begin == text_.size()) return;
  const char c = text_[begin];
  if (IsDigit(c) || c == '.') return TakeNumber();
  if (c == '\'' || c == '"') return TakeQuotedName();
  token_.kind = IsWordStart(c) ? TokenKind::kWord : TokenKind::kSymbol;
  ++token_.end;
  if (token_.kind == TokenKind::kSymbol) return;
  while (token_.end < text_.size() && IsWordPart(text_[token_.end])) ++token_.end;
  token_.name = Text();
}

bool Lexer::IsNext(char symbol) const {
  const std::size_t next = text_.find_first_not_of(kBlanks, token_.end);
  return next != std::string_view::npos && text_[next] == symbol;
}

void Lexer::TakeNumber() {
  const auto takeDigits = [&](std::size_t place) {
    while (place < text_.size() && (IsDigit(text_[place]) || text_[place] == '.')) ++place;
    return place;
  };
  std::size_t end = takeDigits(token_.begin);
  if (end < text_.size() && Lower(text_[end]) == 'e') {
    ++end;
    if (end < text_.size() && (text_[end] == '-' || text_[end] == '+')) ++end;
    end = takeDigits(end);
  }
  token_.kind = TokenKind::kNumber;
  token_.end = end;
  const std::string text(Text());
  switch (ReadNumber(text, {}, token_.number)) {
    case NumberReading::kNumber:
      return;
    case NumberReading::kTooLarge:
      Fail("the number " + text + " is too large", token_.begin);
    case NumberReading::kNoNumber:
      Fail(Quoted(text) + " is not a number", token_.begin);
  }
}

void Lexer::TakeQuotedName() {
  const char quote = text_[token_.begin];
  token_.kind = TokenKind::kQuotedName;
  for (std::size_t place = token_.begin + 1; place < text_.size(); ++place) {
    if (text_[place] == quote) {
      token_.end = place + 1;
      if (token_.end == text_.size() || text_[token_.end] != quote) return;
      ++place;
    }
    token_.name += text_[place];
  }
  Fail("the quoted name is not closed", token_.begin);
}

void Lexer::Fail(const std::string& what, std::size_t place) const {
  const auto isContinuation = [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U; };
  const std::string_view before = text_.substr(0, place);
  const auto continued = static_cast<std::size_t>(std::ranges::count_if(before, isContinuation));
  throw FormulaError(what, std::string(sourceName_), before.size() - continued + 1);
}

void Lexer::FailUnexpected() const {
  if (token_.kind == TokenKind::kEnd) Fail("the formula is incomplete", token_.begin);
  Fail("unexpected " + Quoted(Text()), token_.begin);
}

}  // namespace brenvolt
