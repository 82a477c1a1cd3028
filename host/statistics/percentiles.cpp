#include "host/statistics/percentiles.h"

#include <cmath>

#include "host/base/almost_equal.h"

namespace brenvolt {

double Percentile(std::span<const double> sorted, double percent) {
  if (sorted.empty()) return kNotSet;
  const double place = static_cast<double>(sorted.size() - 1) * percent / 100;
  const auto below = static_cast<std::size_t>(place);
  if (below + 1 >= sorted.size()) return sorted.back();
  return std::lerp(sorted[below], sorted[below + 1], place - std::floor(place));
}

}  // namespace brenvolt
