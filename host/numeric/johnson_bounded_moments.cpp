#include "host/numeric/johnson_bounded_moments.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

#include "host/numeric/standard_normal.h"

namespace brenvolt {

BoundedMoments MomentsOfBounded(double gamma, double delta) {
  constexpr double kReach = 9.5;
  const double step = std::min(0.25, 0.4 * delta);
  const double upper = kReach + std::min(4.0 / delta, gamma);
  std::vector<double> logs;
  std::vector<double> weights;
  double greatest = -std::numeric_limits<double>::infinity();
  for (double z = -kReach; z <= upper; z += step) {
    const double t = (z - gamma) / delta;
    const double logY = t > 0.0 ? -std::log1p(std::exp(-t)) : t - std::log1p(std::exp(t));
    logs.push_back(logY);
    weights.push_back(std::exp(-0.5 * z * z));
    greatest = std::max(greatest, logY);
  }
  double total = 0.0;
  double first = 0.0;
  for (std::size_t i = 0; i < logs.size(); ++i) {
    logs[i] = std::exp(logs[i] - greatest);
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

// For small delta, where y is nearly 1 for z > gamma and 0 below. Sommerfeld (1928): the mean of y is P(Z > g)
// - sum of c_n delta^2n f^(2n-1)(g), f the normal density; of y^2, that and delta times its derivative by g,
// because y - y^2 is delta dy/dz.
MeanAndVariance NearStep(double gamma, double delta) {
  constexpr double kSquare = std::numbers::pi * std::numbers::pi;
  const double s = kSquare * delta * delta;
  const double c[] = {s / 6.0, 7.0 * s * s / 360.0, 31.0 * s * s * s / 15120.0};
  const double g = gamma;
  const double density = kInverseSqrtTwoPi * ExpMinusHalfSquare(g);
  if (density == 0.0) return {StandardNormalCdf(-g), 0.0};
  const double g2 = g * g;
  // The derivatives of the density are Hermite's polynomials times the density, the odd ones negative.
  const double odd = g * (c[0] + c[1] * (g2 - 3.0) + c[2] * ((g2 - 10.0) * g2 + 15.0));
  const double even =
      c[0] * (g2 - 1.0) + c[1] * ((g2 - 6.0) * g2 + 3.0) + c[2] * (((g2 - 15.0) * g2 + 45.0) * g2 - 15.0);
  const double mean = StandardNormalCdf(-g) + density * odd;
  const double rest = StandardNormalCdf(g) - density * odd;
  return {mean, mean * rest - delta * density * (1.0 + even)};
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
