// w(z, k) = ln(1 + k z) / k, the function by which the extreme value and the Pareto distributions change from
// a bounded to a heavy tail, with its derivatives. w(z, 0) = z, and all of it is smooth there: near k z = 0
// the power series stands in for the quotients, which would cancel.
#pragma once

#include <cmath>

namespace brenvolt {

struct LogOnePlus {
  double value = 0.0;
  double byZ = 0.0;   // dw/dz
  double byK = 0.0;   // dw/dk
  double byZZ = 0.0;  // second derivatives
  double byZK = 0.0;
  double byKK = 0.0;
};

// Requires 1 + k z > 0.
inline LogOnePlus DifferentiateLogOnePlus(double z, double k) {
  constexpr double kSeriesReach = 0.03;
  constexpr int kTerms = 11;  // 0.03^11 is below 2^-53
  const double u = k * z;
  const double inverse = 1.0 / (1.0 + u);
  LogOnePlus w;
  w.byZ = inverse;
  w.byZZ = -k * inverse * inverse;
  w.byZK = -z * inverse * inverse;
  if (std::abs(u) >= kSeriesReach) {
    w.value = std::log1p(u) / k;
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

}  // namespace brenvolt
