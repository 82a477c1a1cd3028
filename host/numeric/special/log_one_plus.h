// w(z, k) = ln(1 + k z) / k, the function by which the extreme value and the Pareto distributions change from
// a bounded to a heavy tail, with its derivatives. w(z, 0) = z, and all of it is smooth there: near k z = 0
// the power series replaces the quotients, which would cancel.
#pragma once

#include <cmath>
#include <limits>

#include "host/numeric/special/exact_sums.h"

namespace brenvolt {

struct LogOnePlus {
  double value = 0.0;
  double byZ = 0.0;   // dw/dz
  double byK = 0.0;   // dw/dk
  double byZZ = 0.0;  // second derivatives
  double byZK = 0.0;
  double byKK = 0.0;
};

// Requires 1 + k z > 0; logOnePlus = ln(1 + k z), which the caller may have from an array function.
inline LogOnePlus DifferentiateLogOnePlus(double z, double k, double logOnePlus) {
  constexpr double kSeriesReach = 0.03;
  constexpr int kTerms = 11;  // 0.03^11 is below 2^-53
  const double u = k * z;
  const double inverse = 1.0 / (1.0 + u);
  LogOnePlus w;
  w.byZ = inverse;
  w.byZZ = -k * inverse * inverse;
  w.byZK = -z * inverse * inverse;
  if (std::abs(u) >= kSeriesReach) {
    w.value = logOnePlus / k;
    w.byK = (z * inverse - w.value) / k;
    w.byKK = -(z * z * inverse * inverse + 2.0 * w.byK) / k;
    return w;
  }
  double power = 1.0;  // (-u)^(j - 2) for the second derivative's term
  double value = 1.0 - u / 2.0;
  double byK = -0.5;
  double byKK = 0.0;
  for (int j = 2; j < kTerms + 2; ++j, power *= -u) {
    const double term = power / (j + 1);
    value += term * u * u;
    byK += term * j * u;
    byKK += term * j * (j - 1);
  }
  w.value = z * value;
  w.byK = z * z * byK;
  w.byKK = z * z * z * byKK;
  return w;
}

inline LogOnePlus DifferentiateLogOnePlus(double z, double k) {
  return DifferentiateLogOnePlus(z, k, std::log1p(k * z));
}

// w((x - origin) / scale, k) for any x, infinite beyond the end of the support, where 1 + k z <= 0. The sum
// scale + k (x - origin) is formed with its rounding errors, so that the result is good right up to that end.
inline double LogOnePlusAt(double x, double origin, double scale, double k) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  constexpr double kTiny = 1e-290;  // below it, k z may lose digits, and w = z to all of them
  if (std::isinf(x)) return x;
  const TwoPartSum y = ExactDifference(x, origin);
  const double z = y.high / scale;
  const double slope = k * y.high;
  if (std::abs(k * z) < kTiny) return z;
  const TwoPartSum sum = ExactSum(scale, slope);
  const double rest = std::fma(k, y.high, -slope) + k * y.low;
  const double base = sum.high + (sum.low + rest);
  if (base <= 0.0) return k > 0.0 ? -kInfinity : kInfinity;
  const bool isNearOne = std::abs(slope) <= 0.5 * scale;
  return (isNearOne ? std::log1p((slope + rest) / scale) : std::log(base / scale)) / k;
}

// The z with w(z, k) = w.
inline double InverseLogOnePlus(double w, double k) {
  constexpr double kTiny = 1e-290;
  return std::abs(k) < kTiny || std::abs(k * w) < kTiny ? w : std::expm1(k * w) / k;
}

}  // namespace brenvolt
