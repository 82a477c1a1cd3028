#include "host/statistics/subgroups.h"

#include <algorithm>
#include <cmath>

#include "host/statistics/control_constants.h"
#include "host/statistics/moments.h"

namespace brenvolt {
namespace {

// Unbiased estimates of one deviation, weighted by the inverse of their variances in units of its square.
class WeightedEstimate {
 public:
  void Add(double estimate, double variance) {
    sum_ += estimate / variance;
    weights_ += 1 / variance;
  }
  DeviationEstimate Finish() const {
    if (!(weights_ > 0)) return {};
    return {sum_ / weights_, weights_ / 2};
  }

 private:
  double sum_ = 0;
  double weights_ = 0;
};

}  // namespace

SubgroupStatistics DescribeSubgroup(std::span<const double> values) {
  MomentAccumulator accumulator;
  for (const double x : values) accumulator.Add(x, 1);
  const Moments moments = accumulator.Finish();
  const auto [least, greatest] = std::ranges::minmax(values);
  return {values.size(), moments.mean, greatest - least,
          values.size() > 1 ? moments.standardDeviation : kNotSet};
}

WithinEstimates EstimateWithin(std::span<const SubgroupStatistics> subgroups) {
  WeightedEstimate ranges;
  WeightedEstimate deviations;
  double squares = 0;
  double degrees = 0;
  for (const SubgroupStatistics& one : subgroups) {
    if (one.count < 2) continue;
    const RangeConstants range = RangeConstantsOf(one.count);
    const double c4 = C4(one.count);
    ranges.Add(one.range / range.d2, std::pow(range.d3 / range.d2, 2));
    deviations.Add(one.deviation / c4, std::pow(C5(one.count) / c4, 2));
    squares += static_cast<double>(one.count - 1) * one.deviation * one.deviation;
    degrees += static_cast<double>(one.count - 1);
  }
  WithinEstimates estimates{ranges.Finish(), deviations.Finish(), {}};
  if (degrees > 0) estimates.pooled = {std::sqrt(squares / degrees), degrees};
  return estimates;
}

}  // namespace brenvolt
