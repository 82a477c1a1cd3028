#include "brv_sra/distributions/reach.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/distributions/specified_distribution.h"

namespace brenvolt::sra {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

struct Bounds {
  double low = -kInfinity;
  double high = kInfinity;
};

Bounds BoundsOf(const DistributionSpecification& specification) {
  Bounds bounds;
  const auto isInForce = [](bool flag, double bound) { return flag && !IsNotSet(bound); };
  if (isInForce(specification.truncateBelow, specification.truncationMinimum))
    bounds.low = specification.truncationMinimum;
  if (isInForce(specification.truncateAbove, specification.truncationMaximum))
    bounds.high = specification.truncationMaximum;
  return bounds;
}

// The probability of a range, from the nearer tail.
double Between(const SpecifiedDistribution& distribution, double from, double to) {
  if (!(from < to)) return 0;
  if (std::isinf(from) && std::isinf(to)) return 1;
  if (std::isinf(from)) return distribution.Cdf(to);
  if (std::isinf(to)) return distribution.Complement(from);
  const double below = distribution.Cdf(to) - distribution.Cdf(from);
  const double above = distribution.Complement(from) - distribution.Complement(to);
  return distribution.Cdf(from) < distribution.Complement(to) ? below : above;
}

// Only tails that fall like a power lack moments; in extreme units the variance of any distribution overflows.
bool HasPowerTail(DistributionCode code) {
  return code == DistributionCode::kGeneralExtremeValue || code == DistributionCode::kGeneralPareto;
}

}  // namespace

Reach ReachOf(const DistributionSpecification& specification, double minimum, double maximum) {
  Reach reach;
  const SpecifiedDistribution distribution(specification);
  if (!IsContinuous(specification.code) || !distribution.IsValid()) return reach;
  const Bounds bounds = BoundsOf(specification);
  const double all = Between(distribution, bounds.low, bounds.high);
  if (!(all > 0)) return reach;
  if (minimum >= 0) reach.belowZero = Between(distribution, bounds.low, std::min(bounds.high, 0.0)) / all;
  if (maximum <= 0) reach.aboveZero = Between(distribution, std::max(bounds.low, 0.0), bounds.high) / all;
  if (!HasPowerTail(specification.code) || std::isfinite(bounds.high)) return reach;
  if (std::isinf(distribution.Variance())) reach.infiniteMoment = std::isinf(distribution.Mean()) ? 1 : 2;
  return reach;
}

}  // namespace brenvolt::sra
