// Operators and functions with one meaning in formulas and in the transformations of models, as kernels over
// blocks. A result is missing if a value that it needs is.
#pragma once

#include <cmath>
#include <cstddef>
#include <span>

#include "host/formula/block.h"

namespace brenvolt {

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

namespace kernels {

inline double Negate(double a) {
  return -a;
}
inline double Add(double a, double b) {
  return a + b;
}
inline double Subtract(double a, double b) {
  return a - b;
}
inline double Multiply(double a, double b) {
  return a * b;
}
inline double Divide(double a, double b) {
  return b == 0 ? kMissingResult : a / b;
}

inline double Truth(bool value, double a, double b) {
  const double truth = value ? 1 : 0;
  return std::isunordered(a, b) ? kMissingResult : truth;
}
inline double IsLess(double a, double b) {
  return Truth(a < b, a, b);
}
inline double IsLessEqual(double a, double b) {
  return Truth(a <= b, a, b);
}
inline double IsGreater(double a, double b) {
  return Truth(a > b, a, b);
}
inline double IsGreaterEqual(double a, double b) {
  return Truth(a >= b, a, b);
}
inline double IsEqual(double a, double b) {
  return Truth(a == b, a, b);
}
inline double IsNotEqual(double a, double b) {
  return Truth(a != b, a, b);
}
inline double NotTrue(double a) {
  return Truth(a == 0, a, a);
}
inline double IsMissing(double a) {
  return std::isnan(a) ? 1 : 0;
}

}  // namespace kernels

// Only the branch that is chosen counts.
inline void IfKernel(std::span<const BlockArgument> arguments, std::span<double> out) {
  for (std::size_t i = 0; i < out.size(); ++i) {
    const double condition = arguments[0].At(i);
    const double chosen = condition != 0 ? arguments[1].At(i) : arguments[2].At(i);
    out[i] = std::isnan(condition) ? kMissingResult : chosen;
  }
}

}  // namespace brenvolt
