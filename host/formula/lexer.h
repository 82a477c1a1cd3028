// The words of a formula's text, one after the other, each with its place.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace brenvolt {

enum class TokenKind : std::uint8_t {
  kNumber,
  kWord,        // a name, a function, or an operator that is a word
  kQuotedName,  // the name between single or double quotes, a doubled quote standing for one
  kSymbol,      // anything else, one byte
  kEnd
};

struct Token {
  TokenKind kind = TokenKind::kEnd;
  std::size_t begin = 0;  // bytes of the text
  std::size_t end = 0;
  double number = 0;
  std::string name = {};  // of a word or quoted name
};

class Lexer {
 public:
  // The text and its name must outlive the lexer. Characters before `begin` are passed over.
  Lexer(std::string_view text, std::string_view sourceName, std::size_t begin);

  const Token& Current() const { return token_; }
  // Continues after the current token, or at `place`.
  void Advance() { AdvanceFrom(token_.end); }
  void AdvanceFrom(std::size_t place);
  // The current token as it is written.
  std::string_view Text() const { return text_.substr(token_.begin, token_.end - token_.begin); }
  // Whether the text goes on with `symbol` at the current token.
  bool At(std::string_view symbol) const { return text_.substr(token_.begin).starts_with(symbol); }
  // Whether the next token begins with `symbol`.
  bool IsNext(char symbol) const;

  // Throws FormulaError at a byte of the text.
  [[noreturn]] void Fail(const std::string& what, std::size_t place) const;
  // The same at the current token, which does not belong there.
  [[noreturn]] void FailUnexpected() const;

 private:
  void TakeNumber();
  void TakeQuotedName();

  std::string_view text_;
  std::string_view sourceName_;
  Token token_;
};

// Whether the word is `lower` in any case of its letters.
bool IsWord(std::string_view word, std::string_view lower);

}  // namespace brenvolt
