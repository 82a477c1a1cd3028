// Sums, differences and products of two doubles together with their rounding errors.
#pragma once

#include <cmath>

namespace brenvolt {

// high + low is the exact result, high the rounded one; low is 0 if high is not finite.
struct TwoPartSum {
  double high = 0.0;
  double low = 0.0;
};

// Knuth (1969), vol. 2, section 4.2.2, theorem B.
inline TwoPartSum ExactSum(double a, double b) {
  const double sum = a + b;
  if (!std::isfinite(sum)) return {sum, 0.0};
  const double shareOfB = sum - a;
  return {sum, (a - (sum - shareOfB)) + (b - shareOfB)};
}

inline TwoPartSum ExactDifference(double a, double b) {
  return ExactSum(a, -b);
}

// `low` is exact where the product is not near underflow.
inline TwoPartSum ExactProduct(double a, double b) {
  const double product = a * b;
  return {product, std::fma(a, b, -product)};
}

}  // namespace brenvolt
