#include "host/statistics/capability.h"

#include <algorithm>
#include <boost/math/distributions/chi_squared.hpp>
#include <cmath>
#include <limits>
#include <numbers>

#include "host/numeric/distributions/normal.h"
#include "host/statistics/moments.h"

namespace brenvolt {
namespace {

constexpr double kMillion = 1e6;
// The points of ISO 22514-2: what a normal process leaves beyond three standard deviations, as the standard
// rounds it.
constexpr double kLowPoint = 0.00135;
constexpr double kHighPoint = 0.99865;

// The mean moving range of two over its expectation for a unit deviation.
const double kD2 = 2 / std::sqrt(std::numbers::pi);

// The variance of the estimate mean range / d2 is (a n - b) / (n - 1)^2 in units of the deviation squared
// (Hoel 1946; Cryer & Ryan 1990 round a to 0.8264 and b to 1.082): from the variance 2 - 4/pi of a moving
// range and the covariance of neighbouring ones, which are absolute values of normal variables of correlation
// -1/2.
double MovingRangeDegrees(double n) {
  constexpr double kPi = std::numbers::pi;
  const double variance = 2 - 4 / kPi;
  const double covariance = 4 / kPi * (std::numbers::sqrt3 / 2 + kPi / 12 - 1);
  const double ranges = n - 1;
  const double estimate = (ranges * variance + 2 * (ranges - 1) * covariance) / (ranges * ranges * kD2 * kD2);
  // A deviation with nu degrees of freedom has, to first order, the variance 1 / (2 nu).
  return 1 / (2 * estimate);
}

// The index of one limit: its distance from the centre over half the spread.
double OneSided(bool given, double distance, double halfSpread) {
  return given ? distance / halfSpread : kNotSet;
}

CapabilityIndices IndicesFrom(double centre, double lowSpread, double highSpread,
                              const SpecificationLimits& limits) {
  CapabilityIndices indices;
  if (limits.HasLower() && limits.HasUpper()) {
    indices.potential = (limits.upper - limits.lower) / (lowSpread + highSpread);
  }
  indices.lower = OneSided(limits.HasLower(), centre - limits.lower, lowSpread);
  indices.upper = OneSided(limits.HasUpper(), limits.upper - centre, highSpread);
  if (!limits.HasLower()) {
    indices.least = indices.upper;
  } else {
    indices.least = limits.HasUpper() ? std::min(indices.lower, indices.upper) : indices.lower;
  }
  return indices;
}

bool IsDeviation(double deviation) {
  return !IsNotSet(deviation) && deviation > 0 && std::isfinite(deviation);
}

// Shares that miss each limit; the one of a limit that is not given does not count.
PartsPerMillion PartsFrom(double below, double above, const SpecificationLimits& limits) {
  PartsPerMillion parts;
  if (limits.HasLower()) parts.below = below * kMillion;
  if (limits.HasUpper()) parts.above = above * kMillion;
  parts.total = ((limits.HasLower() ? below : 0) + (limits.HasUpper() ? above : 0)) * kMillion;
  return parts;
}

// How many values there are, and how many of them miss a limit.
struct Misses {
  std::int64_t count = 0;
  std::int64_t below = 0;
  std::int64_t above = 0;
};

Misses CountMisses(std::span<const double> values, const SpecificationLimits& limits) {
  Misses misses;
  for (const double x : values) {
    misses.count += std::isnan(x) ? 0 : 1;
    misses.below += limits.IsBelow(x) ? 1 : 0;
    misses.above += limits.IsAbove(x) ? 1 : 0;
  }
  return misses;
}

ConfidenceInterval PartsInterval(std::int64_t misses, std::int64_t count, double confidence) {
  const ConfidenceInterval interval = ProportionInterval(misses, count, confidence);
  return count < 1 ? interval : ConfidenceInterval{interval.lower * kMillion, interval.upper * kMillion};
}

IndexIntervals IntervalsOf(const CapabilityIndices& indices, std::int64_t count, double degrees,
                           double confidence) {
  const auto oneSided = [&](double index) { return OneSidedInterval(index, count, degrees, confidence); };
  return {PotentialInterval(indices.potential, degrees, confidence), oneSided(indices.lower),
          oneSided(indices.upper), oneSided(indices.least)};
}

}  // namespace

ProcessSample DescribeProcess(std::span<const double> values) {
  MomentAccumulator accumulator;
  MomentAccumulator ranges;
  double former = std::numeric_limits<double>::quiet_NaN();
  for (const double x : values) {
    if (std::isnan(x)) continue;
    accumulator.Add(x, 1);
    if (!std::isnan(former)) ranges.Add(std::abs(x - former), 1);
    former = x;
  }
  const Moments moments = accumulator.Finish();
  ProcessSample sample{moments.count, moments.mean};
  if (sample.count < 2) return sample;
  sample.overall = moments.standardDeviation;
  sample.within = ranges.Finish().mean / kD2;
  sample.withinDegrees = MovingRangeDegrees(static_cast<double>(sample.count));
  return sample;
}

CapabilityIndices NormalIndices(double mean, double deviation, const SpecificationLimits& limits) {
  if (!IsDeviation(deviation)) return {};
  return IndicesFrom(mean, 3 * deviation, 3 * deviation, limits);
}

double TaguchiIndex(double mean, double deviation, const SpecificationLimits& limits) {
  if (!limits.HasTarget() || !IsDeviation(deviation)) return kNotSet;
  double distance = std::numeric_limits<double>::infinity();
  if (limits.HasLower()) distance = std::min(distance, limits.target - limits.lower);
  if (limits.HasUpper()) distance = std::min(distance, limits.upper - limits.target);
  return std::isinf(distance) ? kNotSet : distance / (3 * std::hypot(deviation, mean - limits.target));
}

ConfidenceInterval PotentialInterval(double potential, double degrees, double confidence) {
  if (IsNotSet(potential) || IsNotSet(degrees)) return {};
  const boost::math::chi_squared distribution(degrees);
  const double tail = (1 - confidence) / 2;
  return {potential * std::sqrt(quantile(distribution, tail) / degrees),
          potential * std::sqrt(quantile(complement(distribution, tail)) / degrees)};
}

ConfidenceInterval OneSidedInterval(double index, std::int64_t count, double degrees, double confidence) {
  if (IsNotSet(index) || IsNotSet(degrees)) return {};
  const double z = Distribution<Normal>(0, 1).ComplementQuantile((1 - confidence) / 2);
  const double reach = z * std::sqrt(1 / (9 * static_cast<double>(count)) + index * index / (2 * degrees));
  return {index - reach, index + reach};
}

PartsPerMillion ObservedParts(std::span<const double> values, const SpecificationLimits& limits) {
  const Misses misses = CountMisses(values, limits);
  if (misses.count == 0) return {};
  const auto n = static_cast<double>(misses.count);
  PartsPerMillion parts;
  if (limits.HasLower()) parts.below = static_cast<double>(misses.below) * kMillion / n;
  if (limits.HasUpper()) parts.above = static_cast<double>(misses.above) * kMillion / n;
  parts.total = static_cast<double>(misses.below + misses.above) * kMillion / n;
  return parts;
}

PartsIntervals ObservedIntervals(std::span<const double> values, const SpecificationLimits& limits,
                                 double confidence) {
  const Misses misses = CountMisses(values, limits);
  PartsIntervals intervals;
  if (limits.HasLower()) intervals.below = PartsInterval(misses.below, misses.count, confidence);
  if (limits.HasUpper()) intervals.above = PartsInterval(misses.above, misses.count, confidence);
  intervals.total = PartsInterval(misses.below + misses.above, misses.count, confidence);
  return intervals;
}

PartsPerMillion NormalParts(double mean, double deviation, const SpecificationLimits& limits) {
  if (!IsDeviation(deviation)) return {};
  const Distribution<Normal> normal(mean, deviation);
  return PartsFrom(limits.HasLower() ? normal.Cdf(limits.lower) : 0,
                   limits.HasUpper() ? normal.Complement(limits.upper) : 0, limits);
}

PartsIntervals NormalPartsIntervals(const CapabilityIndices& indices, std::int64_t count, double degrees,
                                    double confidence) {
  const Distribution<Normal> normal(0, 1);
  const auto beyond = [&](double index, double level) {
    const ConfidenceInterval interval = OneSidedInterval(index, count, degrees, level);
    if (IsNotSet(interval.lower)) return interval;
    return ConfidenceInterval{normal.Complement(3 * interval.upper) * kMillion,
                              normal.Complement(3 * interval.lower) * kMillion};
  };
  PartsIntervals intervals{beyond(indices.lower, confidence), beyond(indices.upper, confidence), {}};
  if (IsNotSet(indices.lower) || IsNotSet(indices.upper)) {
    intervals.total = IsNotSet(indices.lower) ? intervals.above : intervals.below;
    return intervals;
  }
  const double shared = (1 + confidence) / 2;
  const ConfidenceInterval below = beyond(indices.lower, shared);
  const ConfidenceInterval above = beyond(indices.upper, shared);
  // A part misses one limit alone, so that no more than all of them miss one.
  if (!IsNotSet(below.lower))
    intervals.total = {below.lower + above.lower, std::min(below.upper + above.upper, kMillion)};
  return intervals;
}

CapabilityResult<CapabilityReport> AnalyseCapability(std::span<const double> values,
                                                     const SpecificationLimits& limits, double confidence) {
  return AnalyseCapability(values, DescribeProcess(values), limits, confidence);
}

CapabilityResult<CapabilityReport> AnalyseCapability(std::span<const double> values,
                                                     const ProcessSample& sample,
                                                     const SpecificationLimits& limits, double confidence) {
  if (!limits.IsValid()) return Fault{CapabilityFault::kInvalidLimits};
  if (!(confidence > 0 && confidence < 1)) return Fault{CapabilityFault::kInvalidConfidence};
  CapabilityReport report;
  report.sample = sample;
  const double overallDegrees = sample.count < 2 ? kNotSet : static_cast<double>(sample.count - 1);
  report.within = NormalIndices(sample.mean, sample.within, limits);
  report.overall = NormalIndices(sample.mean, sample.overall, limits);
  report.cpm = TaguchiIndex(sample.mean, sample.overall, limits);
  report.withinIntervals = IntervalsOf(report.within, sample.count, sample.withinDegrees, confidence);
  report.overallIntervals = IntervalsOf(report.overall, sample.count, overallDegrees, confidence);
  report.observed = ObservedParts(values, limits);
  report.observedIntervals = ObservedIntervals(values, limits, confidence);
  report.expectedWithin = NormalParts(sample.mean, sample.within, limits);
  report.expectedWithinIntervals =
      NormalPartsIntervals(report.within, sample.count, sample.withinDegrees, confidence);
  report.expectedOverall = NormalParts(sample.mean, sample.overall, limits);
  report.expectedOverallIntervals =
      NormalPartsIntervals(report.overall, sample.count, overallDegrees, confidence);
  return report;
}

CapabilityResult<PercentileCapability> AnalysePercentiles(const ProcessDistribution& distribution,
                                                          const SpecificationLimits& limits) {
  if (!limits.IsValid()) return Fault{CapabilityFault::kInvalidLimits};
  const double low = distribution.quantile(kLowPoint);
  const double median = distribution.quantile(0.5);
  const double high = distribution.quantile(kHighPoint);
  const bool usable = std::isfinite(low) && std::isfinite(high) && low < median && median < high;
  if (!usable || low == kInvalidQuantile) return PercentileCapability();
  PercentileCapability result{low, median, high, {}, {}};
  result.indices = IndicesFrom(median, median - low, high - median, limits);
  result.expected = PartsFrom(limits.HasLower() ? distribution.cdf(limits.lower) : 0,
                              limits.HasUpper() ? distribution.complement(limits.upper) : 0, limits);
  return result;
}

}  // namespace brenvolt
