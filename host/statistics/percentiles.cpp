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

PercentileEstimate EstimatePercentile(std::span<const double> sorted, double percent, double confidence) {
  return EstimatePercentile(sorted.size(), percent, confidence,
                            [sorted](std::uint64_t rank) { return sorted[rank]; });
}

// The number of values up to the percentile is binomial.
PercentileEstimate EstimatePercentile(std::uint64_t count, double percent, double confidence,
                                      const std::function<double(std::uint64_t rank)>& valueOf) {
  PercentileEstimate estimate;
  if (count == 0) return estimate;
  const PercentilePlace place = PlaceOfPercentile(count, percent);
  estimate.value = valueOf(place.below);
  if (place.below + 1 < count)
    estimate.value = std::lerp(estimate.value, valueOf(place.below + 1), place.fraction);
  const auto n = static_cast<double>(count);
  const double p = percent / 100;
  const double tail = (1 - confidence) / 2;
  // The greatest rank below the percentile, and the least above it, with the confidence of one side.
  const Distribution<Binomial> hits(p, n);  // values up to the percentile
  double low = hits.Quantile(tail);
  if (hits.Cdf(low) <= tail) ++low;
  const double high = hits.ComplementQuantile(tail) + 1;
  if (low >= 1) estimate.lower = valueOf(static_cast<std::uint64_t>(low) - 1);
  if (high <= n) estimate.upper = valueOf(static_cast<std::uint64_t>(high) - 1);
  const double missedBelow = low >= 1 ? hits.Cdf(low - 1) : 0;
  const double missedAbove = high <= n ? hits.Complement(high - 1) : 0;
  estimate.coverage = 1 - missedBelow - missedAbove;
  return estimate;
}

}  // namespace brenvolt
