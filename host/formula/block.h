// Blocks of cases on which formulas work: every operator and function of a formula is a kernel that takes
// arguments for some hundred cases at once and writes as many results.
#pragma once

#include <cstddef>
#include <limits>
#include <span>

namespace brenvolt {

// What stands for a missing value inside a formula.
inline constexpr double kMissingResult = std::numeric_limits<double>::quiet_NaN();

// One argument: a value for each case, or the same value for all.
struct BlockArgument {
  const double* values;
  bool constant;
  double At(std::size_t i) const { return values[constant ? 0 : i]; }
};

// `out` may be the storage of any argument that is not constant. Where every argument is constant, `out` has
// one element. NaN is a missing value, among the arguments and the results.
using BlockKernel = void (*)(std::span<const BlockArgument> arguments, std::span<double> out);

// The kernels of functions of one and two reals.
template <double (*kFunction)(double)>
void UnaryKernel(std::span<const BlockArgument> arguments, std::span<double> out) {
  const double* a = arguments[0].values;
  for (std::size_t i = 0; i < out.size(); ++i) out[i] = kFunction(a[i]);
}

template <double (*kFunction)(double, double)>
void BinaryKernel(std::span<const BlockArgument> arguments, std::span<double> out) {
  const double* a = arguments[0].values;
  const double* b = arguments[1].values;
  if (arguments[0].constant) {
    const double left = *a;
    for (std::size_t i = 0; i < out.size(); ++i) out[i] = kFunction(left, b[i]);
  } else if (arguments[1].constant) {
    const double right = *b;
    for (std::size_t i = 0; i < out.size(); ++i) out[i] = kFunction(a[i], right);
  } else {
    for (std::size_t i = 0; i < out.size(); ++i) out[i] = kFunction(a[i], b[i]);
  }
}

// A function that a formula calls by name.
struct FormulaFunction {
  const char* name;
  BlockKernel kernel;
  std::size_t fewestArguments;
  std::size_t mostArguments;
};

// The most arguments of any call.
inline constexpr std::size_t kMostArguments = 64;

}  // namespace brenvolt
