#include "host/statistics/percentiles.h"

#include <cmath>

#include "host/base/almost_equal.h"

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

}  // namespace brenvolt
