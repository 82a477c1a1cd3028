// Percentiles of a sample.
#pragma once

#include <cstdint>
#include <functional>
#include <span>

#include "host/base/almost_equal.h"

namespace brenvolt {

// Where the percentile of `count` >= 1 values at `percent` (0 to 100) lies: the part `fraction` of the way
// from the order statistic `below`, counted from 0, to the next; 0 if there is no next.
struct PercentilePlace {
  std::uint64_t below = 0;
  double fraction = 0;
};
PercentilePlace PlaceOfPercentile(std::uint64_t count, double percent);

// The percentile of ascending values at `percent` (0 to 100), linear between order statistics: the one at
// rank 1 + (n - 1) p (Hyndman & Fan 1996, definition 7). kNotSet for an empty sample.
double Percentile(std::span<const double> sorted, double percent);

// A percentile of the population with a confidence interval between two order statistics, which holds for any
// continuous distribution (Hahn & Meeker 1991, section 5.2): the narrowest whose either side misses the
// percentile with a probability of (1 - confidence)/2 at most.
struct PercentileEstimate {
  double value = kNotSet;
  double lower = kNotSet;     // not set if the sample is too small for a limit on this side
  double upper = kNotSet;     // the same
  double coverage = kNotSet;  // the probability with which the interval, open where not set, holds it
};
PercentileEstimate EstimatePercentile(std::span<const double> sorted, double percent, double confidence);
// The same of `count` values of which any order statistic is known by its rank from 0; it asks for at most four, always in
// the same order. Not set where there are no values.
PercentileEstimate EstimatePercentile(std::uint64_t count, double percent, double confidence,
                                      const std::function<double(std::uint64_t rank)>& valueOf);

}  // namespace brenvolt
