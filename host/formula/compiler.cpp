#include "host/formula/compiler.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "host/base/quoted.h"
#include "host/formula/distribution_functions.h"
#include "host/formula/functions.h"
#include "host/formula/kernels.h"
#include "host/formula/lexer.h"

namespace brenvolt {
namespace {

// Parentheses, signs and calls within each other; far beyond what a person writes, far below the stack.
constexpr std::size_t kDeepest = 200;

const NamedKernel* FindFunction(std::string_view name) {
  for (const NamedKernel& function : DistributionFunctions()) {
    if (name == function.name) return &function;
  }
  for (const NamedKernel& function : MathematicalFunctions()) {
    if (IsWord(name, function.name)) return &function;
  }
  return nullptr;
}

std::string ArgumentCounts(const NamedKernel& function) {
  std::string text = std::to_string(function.fewestArguments);
  if (function.mostArguments == kMostArguments) {
    text += " or more";
  } else if (function.mostArguments != function.fewestArguments) {
    text += " to " + std::to_string(function.mostArguments);
  }
  return text + (function.mostArguments == 1 ? " value" : " values");
}

// A parser by recursive descent over the levels of operators.
class Compiler {
 public:
  Compiler(std::string_view text, const FindVariable& findVariable, std::string_view sourceName,
           std::size_t begin)
      : lexer_(text, sourceName, begin), findVariable_(findVariable) {
    const std::size_t start = lexer_.Current().begin;
    if (lexer_.At("=")) lexer_.Advance();
    if (lexer_.Current().kind == TokenKind::kEnd) {
      lexer_.Fail("the formula is empty", start == text.size() ? begin : start);
    }
  }

  Program Run() {
    program_.SetResult(TakeLevel(OperatorLevel::kOr));
    if (lexer_.Current().kind != TokenKind::kEnd) lexer_.FailUnexpected();
    return std::move(program_);
  }

 private:
  // One more level of nesting while it lives.
  class Nesting {
   public:
    explicit Nesting(Compiler& compiler) : compiler_(compiler) {
      if (++compiler_.depth_ > kDeepest) {
        compiler_.lexer_.Fail("the formula is nested too deeply", compiler_.lexer_.Current().begin);
      }
    }
    ~Nesting() { --compiler_.depth_; }
    Nesting(const Nesting&) = delete;
    Nesting& operator=(const Nesting&) = delete;

   private:
    Compiler& compiler_;
  };

  const FormulaOperator* OperatorHere() const {
    const TokenKind kind = lexer_.Current().kind;
    if (kind != TokenKind::kSymbol && kind != TokenKind::kWord) return nullptr;
    for (const FormulaOperator& candidate : BinaryOperators()) {
      const bool word = candidate.text == "and" || candidate.text == "or";
      if (kind == TokenKind::kWord ? word && IsWord(lexer_.Text(), candidate.text)
                                   : !word && lexer_.At(candidate.text)) {
        return &candidate;
      }
    }
    return nullptr;
  }

  Operand TakeLevel(OperatorLevel level) {
    if (level == OperatorLevel::kComparison && IsNotHere()) return TakeNot();
    if (level == OperatorLevel::kPower) return TakeSigned();
    const auto next = static_cast<OperatorLevel>(static_cast<int>(level) + 1);
    Operand left = TakeLevel(next);
    for (bool compared = false;; compared = true) {
      const FormulaOperator* found = OperatorHere();
      if (found == nullptr || found->level != level) return left;
      // "a = b = 1" would compare 1 with whether a equals b, which hardly anybody means.
      if (compared && level == OperatorLevel::kComparison) {
        lexer_.Fail("a comparison follows another; join them by 'and', or use parentheses",
                    lexer_.Current().begin);
      }
      lexer_.AdvanceFrom(lexer_.Current().begin + found->text.size());
      left = Call(found->kernel, {left, TakeLevel(next)});
    }
  }

  bool IsNotHere() const {
    const bool isWord = lexer_.Current().kind == TokenKind::kWord && IsWord(lexer_.Text(), "not");
    // With a parenthesis it is a function: not(x > 0)*5 is 5 or 0.
    return (isWord && !lexer_.IsNext('(')) || (lexer_.At("!") && !lexer_.At("!="));
  }

  Operand TakeNot() {
    const Nesting nesting(*this);
    lexer_.Advance();
    return Call(UnaryKernel<kernels::NotTrue>, {TakeLevel(OperatorLevel::kComparison)});
  }

  // Signs, and powers, which bind more tightly: -2^2 is -4. An exponent may have signs of its own.
  Operand TakeSigned() {
    const Nesting nesting(*this);
    if (lexer_.At("-") || lexer_.At("+")) {
      const bool negative = lexer_.At("-");
      lexer_.Advance();
      const Operand value = TakeSigned();
      return negative ? Call(UnaryKernel<kernels::Negate>, {value}) : value;
    }
    const Operand base = TakeValue();
    const FormulaOperator* found = OperatorHere();
    if (found == nullptr || found->level != OperatorLevel::kPower) return base;
    lexer_.Advance();
    return Call(found->kernel, {base, TakeSigned()});
  }

  Operand TakeValue() {
    const Token token = lexer_.Current();
    if (token.kind == TokenKind::kNumber) {
      lexer_.Advance();
      return program_.AppendConstant(token.number);
    }
    if (token.kind == TokenKind::kQuotedName) return TakeName(token);
    if (token.kind == TokenKind::kWord) {
      if (lexer_.IsNext('(')) return TakeCall(token);
      return OperatorHere() == nullptr && !IsNotHere() ? TakeName(token)
                                                       : (lexer_.FailUnexpected(), Operand{});
    }
    if (!lexer_.At("(")) lexer_.FailUnexpected();
    lexer_.Advance();
    const Operand value = TakeLevel(OperatorLevel::kOr);
    if (!lexer_.At(")")) FailInParentheses();
    lexer_.Advance();
    return value;
  }

  Operand TakeName(const Token& token) {
    const bool quoted = token.kind == TokenKind::kQuotedName;
    lexer_.Advance();
    if (const auto variable = findVariable_(token.name, quoted)) return program_.AppendVariable(*variable);
    const auto constant = quoted ? std::nullopt : FormulaConstant(token.name);
    if (!constant) lexer_.Fail("unknown name " + Quoted(token.name), token.begin);
    return program_.AppendConstant(*constant);
  }

  Operand TakeCall(const Token& token) {
    const Nesting nesting(*this);
    const NamedKernel* function = FindFunction(token.name);
    if (function == nullptr) lexer_.Fail("unknown function " + Quoted(token.name), token.begin);
    lexer_.Advance();
    std::vector<Operand> operands;
    do {
      lexer_.Advance();
      if (operands.empty() && lexer_.At(")")) break;
      operands.push_back(TakeLevel(OperatorLevel::kOr));
    } while (lexer_.At(",") || lexer_.At(";"));
    if (!lexer_.At(")")) FailInParentheses();
    if (operands.size() < function->fewestArguments || operands.size() > function->mostArguments) {
      lexer_.Fail(Quoted(token.name) + " takes " + ArgumentCounts(*function) + ", not " +
                      std::to_string(operands.size()),
                  lexer_.Current().begin);
    }
    lexer_.Advance();
    return program_.AppendCall(function->kernel, operands);
  }

  [[noreturn]] void FailInParentheses() const {
    if (lexer_.Current().kind == TokenKind::kEnd) lexer_.Fail("')' is missing", lexer_.Current().begin);
    lexer_.FailUnexpected();
  }

  Operand Call(BlockKernel kernel, std::initializer_list<Operand> operands) {
    return program_.AppendCall(kernel, std::span(operands.begin(), operands.size()));
  }

  Lexer lexer_;
  const FindVariable& findVariable_;
  Program program_;
  std::size_t depth_ = 0;
};

}  // namespace

Program Compile(std::string_view text, const FindVariable& findVariable, std::string_view sourceName,
                std::size_t begin) {
  return Compiler(text, findVariable, sourceName, begin).Run();
}

}  // namespace brenvolt
