// Measured values in rational subgroups, and the deviation within them.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "host/base/almost_equal.h"

namespace brenvolt {

// Mean, range and standard deviation (divisor n - 1, kNotSet for one value) of the values of a subgroup.
struct SubgroupStatistics {
  std::size_t count = 0;
  double mean = kNotSet;
  double range = kNotSet;
  double deviation = kNotSet;
};
// `values` at least one, without NaN.
SubgroupStatistics DescribeSubgroup(std::span<const double> values);

// An estimate of the standard deviation, with its effective degrees of freedom: those of the deviation that has, to
// first order, the same variance 1 / (2 degrees).
struct DeviationEstimate {
  double deviation = kNotSet;
  double degrees = kNotSet;
};

// The deviation within subgroups; those of one value tell nothing of it. Subgroups of several sizes count by the
// precision of their estimates (Burr 1969, Control charts for measurements with varying sample sizes, Journal of Quality
// Technology 1, 163-167), which for one size is the mean over its constant. Nothing is set without a subgroup of two
// values.
struct WithinEstimates {
  DeviationEstimate ranges;      // of R / d2
  DeviationEstimate deviations;  // of S / c4
  DeviationEstimate pooled;      // the root of the mean variance, by degrees of freedom
};
WithinEstimates EstimateWithin(std::span<const SubgroupStatistics> subgroups);

}  // namespace brenvolt
