// Percentiles of a sample.
#pragma once

#include <cstdint>
#include <span>

namespace brenvolt {

// Where the percentile of `count` >= 1 values at `percent` (0 to 100) lies: the part `fraction` of the way
// from the order statistic `below`, counted from 0, to the next; 0 where there is no next.
struct PercentilePlace {
  std::uint64_t below = 0;
  double fraction = 0;
};
PercentilePlace PlaceOfPercentile(std::uint64_t count, double percent);

// The percentile of ascending values at `percent` (0 to 100), linear between order statistics: the one at
// rank 1 + (n - 1) p (Hyndman & Fan 1996, definition 7). kNotSet for an empty sample.
double Percentile(std::span<const double> sorted, double percent);

}  // namespace brenvolt
