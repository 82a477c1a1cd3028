#include "host/formula/translation.h"

#include <muParser.h>

#include <algorithm>
#include <cctype>
#include <utility>

#include "host/base/error.h"
#include "host/formula/curve_functions.h"

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

// Our spelling and the parser's; a longer spelling stands before those that it begins with.
constexpr std::string_view kOperators[][2] = {{"<=", "<="}, {">=", ">="}, {"<>", "!="},
                                              {"!=", "!="}, {"==", "=="}, {"<", "<"},
                                              {">", ">"},   {"=", "=="},  {"&", "&&"}};

// The parser's text without its place, which counts characters of the translated text, and without our symbol
// for a variable.
// An operator without what it works on is an internal error to the parser.
std::string Reason(const mu::Parser::exception_type& error) {
  if (error.GetCode() == mu::ecINTERNAL_ERROR) return "the formula is incomplete";
  std::string text = error.GetMsg();
  constexpr std::string_view kVariable = "Unexpected variable";
  if (text.starts_with(kVariable)) return std::string(kVariable);
  for (const char* place : {" found at position", " at expression position", " at position", " (position"}) {
    text.resize(std::min(text.find(place), text.size()));
  }
  return text;
}

}  // namespace

Translation::Translation(std::string_view source, FindVariable findVariable, std::string_view sourceName)
    : source_(source), findVariable_(std::move(findVariable)), sourceName_(sourceName) {
  while (position_ < source_.size()) TakeToken();
  if (text_.find_first_not_of(" \t") == std::string::npos) Fail("the formula is empty", 0);
  if (text_.size() >= mu::MaxLenExpression) {
    Fail("the formula is too long", SourcePosition(mu::MaxLenExpression));
  }
}

std::unique_ptr<mu::Parser> Translation::MakeParser(
    const std::function<double*(std::size_t variable)>& storage) const {
  auto parser = std::make_unique<mu::Parser>();
  Checked([&] {
    parser->DefineInfixOprt("!", LogicalNot, kNotPrecedence);
    DefineCurveFunctions(*parser);
    for (const std::size_t variable : used_) parser->DefineVar(Symbol(variable), storage(variable));
    parser->SetExpr(text_);
  });
  return parser;
}

void Translation::Checked(const std::function<void()>& evaluate) const {
  try {
    evaluate();
  } catch (const mu::Parser::exception_type& error) {
    Fail(Reason(error), SourcePosition(static_cast<std::size_t>(error.GetPos())));
  }
}

void Translation::Fail(const std::string& what, std::size_t position) const {
  throw Error(what, std::string(sourceName_) + ", character " + std::to_string(position + 1));
}

std::size_t Translation::SourcePosition(std::size_t position) const {
  return position < origin_.size() ? origin_[position] : source_.size();
}

void Translation::Emit(std::string_view piece, std::size_t from) {
  text_ += piece;
  origin_.resize(text_.size(), from);
}

void Translation::TakeToken() {
  const char c = source_[position_];
  if (c == '\'') return TakeQuotedName();
  if (IsIdentifierStart(c)) return TakeWord();
  if (IsNumberPart(c)) return TakeNumber();
  static constexpr std::string_view kPlain = "+-*/^(), \t";
  if (kPlain.find(c) == std::string_view::npos) return TakeOperator();
  // The parser would take several values one after the other and answer with the last.
  if (c == ',' && compared_.size() <= 1) Fail("unexpected ','", position_);
  if (c == '(') compared_.push_back(false);
  if (c == ')' && compared_.size() > 1) compared_.pop_back();
  if (c == ',') compared_.back() = false;
  Emit(source_.substr(position_, 1), position_);
  ++position_;
}

void Translation::TakeQuotedName() {
  const std::size_t start = position_;
  const std::size_t end = source_.find('\'', start + 1);
  if (end == std::string_view::npos) Fail("the quoted name is not closed", start);
  position_ = end + 1;
  const auto variable = findVariable_(source_.substr(start + 1, end - start - 1));
  if (!variable) Fail("no variable " + std::string(source_.substr(start, end + 1 - start)), start);
  Use(*variable, start);
}

void Translation::TakeWord() {
  const std::size_t start = position_;
  while (position_ < source_.size() && IsIdentifierPart(source_[position_])) ++position_;
  const std::string_view word = source_.substr(start, position_ - start);
  if (word == "and" || word == "or") {
    compared_.back() = false;
    return Emit(word == "and" ? "&&" : "||", start);
  }
  if (word == "not") return Emit("!", start);
  const auto next = source_.find_first_not_of(" \t", position_);
  if (next != std::string_view::npos && source_[next] == '(') return Emit(word, start);
  const auto variable = findVariable_(word);
  if (!variable) Fail("no variable " + std::string(word), start);
  Use(*variable, start);
}

void Translation::TakeNumber() {
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

void Translation::TakeOperator() {
  for (const auto& [ours, theirs] : kOperators) {
    if (!source_.substr(position_).starts_with(ours)) continue;
    if (ours == "&") {
      compared_.back() = false;
    } else {
      NoteComparison();
    }
    Emit(theirs, position_);
    position_ += ours.size();
    return;
  }
  Fail(std::string("unexpected '") + source_[position_] + "'", position_);
}

// "a = b = 1" would compare 1 with whether a equals b, which hardly anybody means.
void Translation::NoteComparison() {
  if (compared_.back())
    Fail("a comparison follows another; join them by 'and', or use parentheses", position_);
  compared_.back() = true;
}

void Translation::Use(std::size_t variable, std::size_t from) {
  used_.insert(variable);
  Emit(Symbol(variable), from);
}

}  // namespace brenvolt
