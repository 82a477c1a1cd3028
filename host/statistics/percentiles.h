// Percentiles of a sample.
#pragma once

#include <span>

namespace brenvolt {

// The percentile of ascending values at `percent` (0 to 100), linear between order statistics: the one at
// rank 1 + (n - 1) p (Hyndman & Fan 1996, definition 7). kNotSet for an empty sample.
double Percentile(std::span<const double> sorted, double percent);

}  // namespace brenvolt
