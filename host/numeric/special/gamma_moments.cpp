#include "host/numeric/special/gamma_moments.h"

#include <array>
#include <boost/math/special_functions/gamma.hpp>
#include <boost/math/special_functions/zeta.hpp>
#include <cmath>
#include <limits>
#include <numbers>

namespace brenvolt {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

// (ln Gamma(1 - 2 k) - 2 ln Gamma(1 - k)) / k^2 = sum of zeta(n) (2^n - 2) k^(n - 2) / n from n = 2, for |k|
// <= kSeriesReach. Abramowitz & Stegun (1964), 6.1.33.
constexpr double kSeriesReach = 0.125;
constexpr int kTerms = 28;  // (2 * 0.125)^27 / 28 is below 2^-58

double LogGammaRatio(double k) {
  static const std::array<double, kTerms> coefficients = [] {
    std::array<double, kTerms> values{};
    for (int i = 0; i < kTerms; ++i) {
      const int n = i + 2;
      values[i] = boost::math::zeta(static_cast<double>(n)) * (std::ldexp(1.0, n) - 2.0) / n;
    }
    return values;
  }();
  double sum = 0.0;
  for (int i = kTerms - 1; i >= 0; --i) sum = sum * k + coefficients[i];
  return sum;
}

}  // namespace

double GammaPowerMean(double k) {
  constexpr double kTiny = 1e-17;
  constexpr double kNearOne = -2.0;  // Gamma is near 1 from here on
  if (k >= 1.0) return kInfinity;
  if (std::abs(k) < kTiny) return std::numbers::egamma;
  return k > kNearOne ? boost::math::tgamma1pm1(-k) / k : (std::tgamma(1.0 - k) - 1.0) / k;
}

double GammaPowerVariance(double k) {
  if (k >= 0.5) return kInfinity;
  const double mean = std::tgamma(1.0 - k);
  if (std::abs(k) <= kSeriesReach) {
    const double ratio = LogGammaRatio(k);
    const double logarithm = k * k * ratio;
    // expm1(y) / y is 1 where y vanishes.
    return mean * mean * ratio * (logarithm > 0.0 ? std::expm1(logarithm) / logarithm : 1.0);
  }
  const double square = std::tgamma(1.0 - 2.0 * k);
  return std::isinf(square) ? kInfinity : (square - mean * mean) / (k * k);
}

}  // namespace brenvolt
