// Blocks of cases on which formulas and the transformations of models work: every operator and function is a
// kernel that takes arguments for some hundred cases at once and writes as many results.
#pragma once

#include <cstddef>
#include <limits>
#include <span>

namespace brenvolt {

// What represents a missing value inside a block.
inline constexpr double kMissingResult = std::numeric_limits<double>::quiet_NaN();

// One argument: a value for each case, or the same value for all.
struct BlockArgument {
  const double* values;
  bool constant;
  double At(std::size_t i) const { return values[constant ? 0 : i]; }
};

// `out` may be the storage of any argument that is not constant. If every argument is constant, `out` has
// one element. NaN is a missing value, among the arguments and the results.
using BlockKernel = void (*)(std::span<const BlockArgument> arguments, std::span<double> out);

// A function that is called by name.
struct NamedKernel {
  const char* name;
  BlockKernel kernel;
  std::size_t fewestArguments;
  std::size_t mostArguments;
};

// The most arguments of any call in a formula.
inline constexpr std::size_t kMostArguments = 64;

}  // namespace brenvolt
