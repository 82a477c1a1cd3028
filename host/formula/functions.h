// The operators, the mathematical functions and the constants of formulas. The list for people, with what
// each does, is docs/reference/formulas.md.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "host/formula/block.h"

namespace brenvolt {

// Names are lower-case and stand for the function in any case.
std::span<const NamedKernel> MathematicalFunctions();

// Pi, Euler and Missing, in any case.
std::optional<double> FormulaConstant(std::string_view name);

// The binary operators. A level binds more tightly than those before it; a text stands before those that it
// begins with. Words are lower-case and stand for the operator in any case.
enum class OperatorLevel : std::uint8_t { kOr, kAnd, kComparison, kSum, kProduct, kPower };
struct FormulaOperator {
  std::string_view text;
  OperatorLevel level;
  BlockKernel kernel;
};
std::span<const FormulaOperator> BinaryOperators();

}  // namespace brenvolt
