#include "host/statistics/percentiles.h"

#include <cmath>

#include "host/base/almost_equal.h"
#include "host/numeric/distributions/binomial.h"

namespace brenvolt {

PercentilePlace PlaceOfPercentile(std::uint64_t count, double percent) {
  const double place = static_cast<double>(count - 1) * percent / 100;
  const auto below = static_cast<std::uint64_t>(place);
  if (below + 1 >= count) return {count - 1, 0};
  return {below, place - std::floor(place)};
}

double Percentile(std::span<const double> sorted, double percent) {
  if (sorted.empty()) return kNotSet;
  const PercentilePlace place = PlaceOfPercentile(sorted.size(), percent);
  if (place.below + 1 == sorted.size()) return sorted.back();
  return std::lerp(sorted[place.below], sorted[place.below + 1], place.fraction);
}

// The number of values up to the percentile is binomial.
PercentileEstimate EstimatePercentile(std::span<const double> sorted, double percent, double confidence) {
  PercentileEstimate estimate;
  if (sorted.empty()) return estimate;
  estimate.value = Percentile(sorted, percent);
  const auto n = static_cast<double>(sorted.size());
  const double p = percent / 100;
  const double tail = (1 - confidence) / 2;
  // The greatest rank below the percentile, and the least above it, with the confidence of one side.
  const Distribution<Binomial> hits(p, n);  // values up to the percentile
  double low = hits.Quantile(tail);
  if (hits.Cdf(low) <= tail) ++low;
  const double high = hits.ComplementQuantile(tail) + 1;
  if (low >= 1) estimate.lower = sorted[static_cast<std::size_t>(low) - 1];
  if (high <= n) estimate.upper = sorted[static_cast<std::size_t>(high) - 1];
  const double missedBelow = low >= 1 ? hits.Cdf(low - 1) : 0;
  const double missedAbove = high <= n ? hits.Complement(high - 1) : 0;
  estimate.coverage = 1 - missedBelow - missedAbove;
  return estimate;
}

}  // namespace brenvolt
