// The Johnson member through four percentiles, after Slifker & Shapiro (1980): with m, p and n the distances
// between the percentiles at z, 3z (upper), -z, z (middle) and -3z, -z (lower), m n / p^2 is above 1 for SU,
// below 1 for SB and 1 for SL.
#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <span>
#include <vector>

#include "host/numeric/estimation/estimator_support.h"
#include "host/numeric/estimation/johnson/johnson_estimators.h"
#include "host/numeric/estimation/johnson/johnson_fit.h"
#include "host/numeric/vector/standard_normal.h"

namespace brenvolt {
namespace {

using estimation::CheckSample;
using estimation::ScaledSample;
using estimation::ScaleFrom;

constexpr std::size_t kLeastCount = 8;
constexpr double kLineTolerance = 1e-3;  // of m n / p^2 and, for the normal, of m / p and n / p

struct Distances {
  double upper = 0.0;   // m
  double middle = 0.0;  // p
  double lower = 0.0;   // n
  double centre = 0.0;  // midpoint of the percentiles at -z and z
};

// Slifker & Shapiro (1980), section 5: the value at place n P + 1/2. Nothing when the sample does not reach
// there.
std::optional<double> Percentile(std::span<const double> sorted, double normal) {
  const auto n = static_cast<double>(sorted.size());
  const double place = n * StandardNormalCdf(normal) - 0.5;  // from 0
  if (!(place >= 0.0) || !(place <= n - 1.0)) return std::nullopt;
  const auto below = static_cast<std::size_t>(place);
  const std::size_t above = std::min(below + 1, sorted.size() - 1);
  return sorted[below] + (place - static_cast<double>(below)) * (sorted[above] - sorted[below]);
}

std::optional<Distances> MeasureAt(std::span<const double> sorted, double z) {
  const std::optional<double> values[] = {Percentile(sorted, -3.0 * z), Percentile(sorted, -z),
                                          Percentile(sorted, z), Percentile(sorted, 3.0 * z)};
  if (!values[0] || !values[3]) return std::nullopt;
  return Distances{*values[3] - *values[2], *values[2] - *values[1], *values[1] - *values[0],
                   0.5 * (*values[1] + *values[2])};
}

JohnsonFit FitUnbounded(double z, const Distances& d, double m, double n) {
  const double p = d.middle;
  const double sum = m + n;
  const double root = std::sqrt(m * n - 1.0);
  JohnsonFit fit{JohnsonFamily::kUnbounded};
  fit.delta = 2.0 * z / std::acosh(0.5 * sum);
  fit.gamma = fit.delta * std::asinh((n - m) / (2.0 * root));
  fit.lambda = 2.0 * p * root / ((sum - 2.0) * std::sqrt(sum + 2.0));
  fit.xi = d.centre + p * (n - m) / (2.0 * (sum - 2.0));
  return fit;
}

JohnsonFit FitBounded(double z, const Distances& d, double m, double n) {
  const double p = d.middle;
  const double product = (1.0 + 1.0 / m) * (1.0 + 1.0 / n);
  const double excess = 1.0 / (m * n) - 1.0;
  JohnsonFit fit{JohnsonFamily::kBounded};
  fit.delta = z / std::acosh(0.5 * std::sqrt(product));
  fit.gamma = fit.delta * std::asinh((1.0 / n - 1.0 / m) * std::sqrt(product - 4.0) / (2.0 * excess));
  fit.lambda = p * std::sqrt((product - 2.0) * (product - 2.0) - 4.0) / excess;
  fit.xi = d.centre - 0.5 * fit.lambda + p * (1.0 / n - 1.0 / m) / (2.0 * excess);
  return fit;
}

JohnsonFit FitLognormal(double z, const Distances& d, double m) {
  JohnsonFit fit{JohnsonFamily::kLognormal};
  fit.delta = 2.0 * z / std::log(m);
  fit.gamma = fit.delta * std::log((m - 1.0) / (d.middle * std::sqrt(m)));
  fit.xi = d.centre - 0.5 * d.middle * (m + 1.0) / (m - 1.0);
  return fit;
}

// Requires distances above 0.
JohnsonFit FitThrough(double z, const Distances& d) {
  const double m = d.upper / d.middle;
  const double n = d.lower / d.middle;
  if (std::abs(m - 1.0) <= kLineTolerance && std::abs(n - 1.0) <= kLineTolerance) {
    const double delta = 2.0 * z / d.middle;
    return {JohnsonFamily::kNormal, -delta * d.centre, delta, 1.0, 0.0};
  }
  const double product = m * n;
  if (std::abs(product - 1.0) > kLineTolerance) {
    return product > 1.0 ? FitUnbounded(z, d, m, n) : FitBounded(z, d, m, n);
  }
  if (m > 1.0) return FitLognormal(z, d, m);
  // A lognormal with its tail below is not a member with lambda > 0; the SU member next to it is.
  return FitUnbounded(z, d, m, n * (1.0 + kLineTolerance) / product);
}

struct Rank {
  std::size_t inside = 0;  // values within the support
  double logLikelihood = -std::numeric_limits<double>::infinity();

  bool IsBelow(const Rank& other) const {
    return inside != other.inside ? inside < other.inside : logLikelihood < other.logLikelihood;
  }
};

// Log density of one value, without constants; minus infinity outside the support.
double LogDensity(const JohnsonFit& fit, double x) {
  constexpr double kOutside = -std::numeric_limits<double>::infinity();
  const double y = (x - fit.xi) / fit.lambda;
  double g = y;
  double logSlope = 0.0;
  switch (fit.family) {
    case JohnsonFamily::kNormal:
      break;
    case JohnsonFamily::kLognormal:
      if (!(y > 0.0)) return kOutside;
      g = std::log(y);
      logSlope = -g;
      break;
    case JohnsonFamily::kUnbounded:
      g = std::asinh(y);
      logSlope = -std::log(std::hypot(1.0, y));
      break;
    case JohnsonFamily::kBounded:
      if (!(y > 0.0) || !(y < 1.0)) return kOutside;
      g = std::log(y) - std::log1p(-y);
      logSlope = -std::log(y) - std::log1p(-y);
      break;
  }
  const double z = fit.gamma + fit.delta * g;
  return std::log(fit.delta / fit.lambda) + logSlope - 0.5 * z * z;
}

Rank RankOf(const JohnsonFit& fit, std::span<const double> sorted) {
  Rank rank{0, 0.0};
  for (const double x : sorted) {
    const double value = LogDensity(fit, x);
    if (!std::isfinite(value)) continue;
    ++rank.inside;
    rank.logLikelihood += value;
  }
  return rank;
}

bool IsUsable(const JohnsonFit& fit) {
  return fit.delta > 0.0 && fit.lambda > 0.0 && std::isfinite(fit.delta) && std::isfinite(fit.lambda) &&
         std::isfinite(fit.gamma) && std::isfinite(fit.xi);
}

// z from 0.25 to 1.25 in steps of 0.05.
std::vector<double> SpacingGrid() {
  constexpr int kCount = 21;
  std::vector<double> grid;
  for (int i = 0; i < kCount; ++i) grid.push_back(0.25 + 0.05 * i);
  return grid;
}

}  // namespace

EstimationResult<JohnsonEstimate> EstimateJohnsonByPercentiles(std::span<const double> sorted,
                                                               double spacing) {
  if (auto checked = CheckSample(sorted, kLeastCount); !checked) return checked.Reason();
  if (std::isnan(spacing) || !std::is_sorted(sorted.begin(), sorted.end())) {
    return Fault{EstimationFault::kInvalidArgument};
  }
  const ScaledSample sample = ScaleFrom(sorted, sorted[sorted.size() / 2]);
  if (estimation::IsAnyNotFinite(sample.values)) return Fault{EstimationFault::kNotFinite};

  bool isWithinReach = false;
  std::optional<JohnsonFit> best;
  Rank bestRank;
  for (const double z : spacing > 0.0 ? std::vector<double>{spacing} : SpacingGrid()) {
    const std::optional<Distances> distances = MeasureAt(sample.values, z);
    if (!distances) continue;
    isWithinReach = true;
    if (!(std::min({distances->upper, distances->middle, distances->lower}) > 0.0)) continue;
    const JohnsonFit fit = FitThrough(z, *distances);
    if (!IsUsable(fit)) continue;
    const Rank rank = RankOf(fit, sample.values);
    if (best && !bestRank.IsBelow(rank)) continue;
    best = fit;
    bestRank = rank;
  }
  if (!isWithinReach) return FaultAbout(EstimationFault::kInvalidArgument, spacing);
  if (!best) return Fault{EstimationFault::kEqualPercentiles};
  return InUnitsOfData(*best, sample.origin, sample.InUnitsOfData(1.0));
}

}  // namespace brenvolt
