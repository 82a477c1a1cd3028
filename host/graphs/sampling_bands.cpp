#include "host/graphs/sampling_bands.h"

#include <algorithm>
#include <boost/math/special_functions/beta.hpp>
#include <cmath>
#include <vector>

#include "host/numeric/vector/distribution_values.h"

namespace brenvolt {
namespace {

// Of more values, as many ranks are worked out, evenly spaced, with both ends.
constexpr std::size_t kMostRanks = 201;
constexpr double kTail = (1 - kBandCoverage) / 2;

// Over ranks, ascending: the plotting position and the limits of the probability below the value.
struct RankLimits {
  std::vector<double> position;
  std::vector<double> lower;
  std::vector<double> upper;
};

RankLimits LimitsOfRanks(std::size_t count) {
  RankLimits limits;
  const std::size_t shown = std::min(count, kMostRanks);
  const auto n = static_cast<double>(count);
  for (std::size_t k = 0; k < shown; ++k) {
    const double share = shown > 1 ? static_cast<double>(k) / static_cast<double>(shown - 1) : 0;
    const double rank = 1 + std::round(share * (n - 1));
    limits.position.push_back((rank - 0.5) / n);
    limits.lower.push_back(boost::math::ibeta_inv(rank, n - rank + 1, kTail));
    limits.upper.push_back(boost::math::ibetac_inv(rank, n - rank + 1, kTail));
  }
  return limits;
}

// y over ascending x, straight between its points, and `before` and `after` beyond them.
double Interpolated(const std::vector<double>& x, const std::vector<double>& y, double at, double before,
                    double after) {
  const auto above = std::ranges::upper_bound(x, at);
  if (above == x.begin()) return before;
  if (above == x.end()) return after;
  const auto i = static_cast<std::size_t>(above - x.begin());
  return std::lerp(y[i - 1], y[i], (at - x[i - 1]) / (x[i] - x[i - 1]));
}

}  // namespace

GraphBand ProbabilityBand(std::size_t count, std::string name) {
  const RankLimits limits = LimitsOfRanks(count);
  GraphBand band{std::move(name), {}, {}, {}};
  for (std::size_t k = 0; k < kMostRanks; ++k) {
    const double x = static_cast<double>(k) / static_cast<double>(kMostRanks - 1);
    band.x.push_back(x);
    band.lower.push_back(Interpolated(limits.upper, limits.position, x, 0, limits.position.back()));
    band.upper.push_back(Interpolated(limits.lower, limits.position, x, limits.position.front(), 1));
  }
  return band;
}

GraphBand QuantileBand(std::size_t count, const ArrayFunction& quantile, std::string name) {
  RankLimits limits = LimitsOfRanks(count);
  for (std::vector<double>* values : {&limits.position, &limits.lower, &limits.upper})
    quantile(*values, *values);
  const auto isKnown = [](double x) { return std::isfinite(x) && x != kInvalidQuantile; };
  GraphBand band{std::move(name), {}, {}, {}};
  for (std::size_t k = 0; k < limits.position.size(); ++k) {
    if (!isKnown(limits.position[k]) || !isKnown(limits.lower[k]) || !isKnown(limits.upper[k])) continue;
    band.x.push_back(limits.position[k]);
    band.lower.push_back(limits.lower[k]);
    band.upper.push_back(limits.upper[k]);
  }
  return band;
}

}  // namespace brenvolt
