#include "host/numeric/estimation/johnson/johnson_bounded_moments.h"

#include <algorithm>
#include <boost/math/special_functions/zeta.hpp>
#include <cmath>
#include <limits>
#include <vector>

#include "host/numeric/vector/standard_normal.h"
#include "host/numeric/vector/vector_forms.h"

namespace brenvolt {

BoundedMoments MomentsOfBounded(double gamma, double delta) {
  constexpr double kReach = 9.5;
  const double step = std::min(0.25, 0.4 * delta);
  const double upper = kReach + std::min(4.0 / delta, gamma);
  const auto count = static_cast<std::size_t>((upper + kReach) / step) + 1;
  std::vector<double> logs(count);
  std::vector<double> weights(count);
  std::vector<double> folds(count);
  for (std::size_t i = 0; i < count; ++i) {
    const double z =
        static_cast<double>(i) * step - kReach;  // not by repeated addition, whose rounding shifts a steep y
    logs[i] = (z - gamma) / delta;
    weights[i] = -0.5 * z * z;
    folds[i] = -std::abs(logs[i]);
  }
  elementary::Exp(weights, weights);
  elementary::Exp(folds, folds);
  elementary::Log1p(folds, folds);
  double greatest = -std::numeric_limits<double>::infinity();
  for (std::size_t i = 0; i < count; ++i) {
    logs[i] = std::min(logs[i], 0.0) - folds[i];  // ln y
    greatest = std::max(greatest, logs[i]);
  }
  for (double& x : logs) x -= greatest;
  elementary::Exp(logs, logs);
  double total = 0.0;
  double first = 0.0;
  for (std::size_t i = 0; i < logs.size(); ++i) {
    total += weights[i];
    first += weights[i] * logs[i];
  }
  const double mean = first / total;
  double m2 = 0.0;
  double m3 = 0.0;
  double m4 = 0.0;
  for (std::size_t i = 0; i < logs.size(); ++i) {
    const double d = logs[i] - mean;
    m2 += weights[i] * d * d;
    m3 += weights[i] * d * d * d;
    m4 += weights[i] * d * d * d * d;
  }
  m2 /= total;
  const double unit = std::exp(greatest);
  return {mean * unit, std::sqrt(m2) * unit, m3 / total / (m2 * std::sqrt(m2)), m4 / total / (m2 * m2) - 3.0};
}

namespace {

// For small delta, where y is nearly 1 for z > g and 0 below. Sommerfeld (1928): the mean of y is P(Z > g) -
// the sum of c_n delta^2n f^(2n-1)(g), f the normal density, c_n = 2 (1 - 2^(1-2n)) zeta(2n); of y^2, that
// and delta times its derivative by g, because y - y^2 is delta dy/dz. The m-th derivative of f is (-1)^m
// He_m f, Hermite's polynomial.
MeanAndVariance NearStep(double g, double delta) {
  constexpr int kTerms = 6;
  const double density = kInverseSqrtTwoPi * ExpMinusHalfSquare(g);
  if (density == 0.0) return {StandardNormalCdf(-g), 0.0};
  double odd = 0.0;             // sum of c_n delta^2n He_(2n-1)
  double even = 1.0;            // the same of He_2n, and He_0
  double hermite[] = {1.0, g};  // He_(2n-2), He_(2n-1)
  double power = 1.0;
  for (int n = 1; n <= kTerms; ++n) {
    power *= delta * delta;
    const double term = 2.0 * (1.0 - std::ldexp(2.0, -2 * n)) * boost::math::zeta(2.0 * n) * power;
    const double nextEven = g * hermite[1] - (2 * n - 1) * hermite[0];
    odd += term * hermite[1];
    even += term * nextEven;
    hermite[1] = g * nextEven - 2 * n * hermite[1];
    hermite[0] = nextEven;
  }
  const double mean = StandardNormalCdf(-g) + density * odd;
  const double rest = StandardNormalCdf(g) - density * odd;
  return {mean, mean * rest - delta * density * even};
}

}  // namespace

MeanAndVariance BoundedMeanAndVariance(double gamma, double delta) {
  constexpr double kNearStep = 0.005;
  const double g = std::abs(gamma);  // -z has the same distribution and 1 - y its mirror image
  MeanAndVariance result;
  if (delta < kNearStep) {
    result = NearStep(g, delta);
  } else {
    const BoundedMoments moments = MomentsOfBounded(g, delta);
    result = {moments.mean, moments.deviation * moments.deviation};
  }
  if (gamma < 0.0) result.mean = 1.0 - result.mean;
  return result;
}

}  // namespace brenvolt
