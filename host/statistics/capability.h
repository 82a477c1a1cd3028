// Process capability and performance against a specification. docs/reference/capability.md gives every
// formula with its source.
//
// Two estimates of the standard deviation are given (AIAG 2005, Statistical Process Control, 2nd
// ed.): `within`, from the moving ranges of neighbouring values or from subgroups, for the indices whose names begin with
// C, and `overall`, the sample standard deviation, for those that begin with P. Values that are simulated
// independently of each other have no drift, and both estimate the same; they differ if values are in the
// order of time.
//
// What cannot be computed is kNotSet: the index of a limit that is not given, Cp and Pp without both limits,
// Cpm without a target, everything if the deviation is 0 or there are fewer than two values.
#pragma once

#include <cstdint>
#include <functional>
#include <span>

#include "host/base/almost_equal.h"
#include "host/base/result.h"
#include "host/statistics/proportion.h"
#include "host/statistics/specification_limits.h"

namespace brenvolt {

// Both deviations of a sample in its order; NaN values are passed over.
struct ProcessSample {
  std::int64_t count = 0;
  double mean = kNotSet;
  double overall = kNotSet;  // divisor n - 1
  double within = kNotSet;
  double withinDegrees = kNotSet;  // its effective degrees of freedom
};
// The deviation within is the mean moving range of two / d2.
ProcessSample DescribeProcess(std::span<const double> values);

// The indices from one deviation. `lower` and `upper` are those of one limit (Cpl, Cpu), `least` the smaller
// of those that there are (Cpk).
struct CapabilityIndices {
  double potential = kNotSet;  // Cp, Pp
  double lower = kNotSet;
  double upper = kNotSet;
  double least = kNotSet;
};
// From mean and standard deviation (Montgomery 2013, sections 8.3.1 and 8.3.2).
CapabilityIndices NormalIndices(double mean, double deviation, const SpecificationLimits& limits);

// Cpm (Chan, Cheng & Spiring 1988): the distance of the target from the nearest limit over 3 tau, where tau^2
// = deviation^2 + (mean - target)^2. It is (upper - lower) / (6 tau) if the target lies midway.
double TaguchiIndex(double mean, double deviation, const SpecificationLimits& limits);

// The confidence interval of Cp or Pp whose deviation has `degrees` degrees of freedom (Kushler & Hurley
// 1992), and of an index of one limit or the smaller of two (Bissell 1990); both in Montgomery 2013, section
// 8.3.5. `confidence` in (0, 1).
ConfidenceInterval PotentialInterval(double potential, double degrees, double confidence);
ConfidenceInterval OneSidedInterval(double index, std::int64_t count, double degrees, double confidence);

struct PartsPerMillion {
  double below = kNotSet;  // also where there is no such limit
  double above = kNotSet;
  double total = kNotSet;
};
// Of the values; NaN values count for nothing.
PartsPerMillion ObservedParts(std::span<const double> values, const SpecificationLimits& limits);
// What the observed parts tell of the probabilities of further values: exact intervals (proportion.h) for
// values that are independent of each other. Not set for a limit that is not given.
struct PartsIntervals {
  ConfidenceInterval below;
  ConfidenceInterval above;
  ConfidenceInterval total;
};
PartsIntervals ObservedIntervals(std::span<const double> values, const SpecificationLimits& limits,
                                 double confidence);
// Of a normal process.
PartsPerMillion NormalParts(double mean, double deviation, const SpecificationLimits& limits);
// Their intervals: what lies beyond a limit falls as the index of that limit rises, whose interval is known. The
// total has the sum of the limits for its two parts, each with half of the error (Bonferroni): it covers at least as
// often as it says.
PartsIntervals NormalPartsIntervals(const CapabilityIndices& indices, std::int64_t count, double degrees,
                                    double confidence);

// The intervals of the indices from one deviation.
struct IndexIntervals {
  ConfidenceInterval potential;
  ConfidenceInterval lower;
  ConfidenceInterval upper;
  ConfidenceInterval least;
};

struct CapabilityReport {
  ProcessSample sample;
  CapabilityIndices within;   // Cp, Cpl, Cpu, Cpk
  CapabilityIndices overall;  // Pp, Ppl, Ppu, Ppk
  double cpm = kNotSet;       // from the overall deviation, as its authors have it
  IndexIntervals withinIntervals;
  IndexIntervals overallIntervals;
  PartsPerMillion observed;
  PartsIntervals observedIntervals;
  PartsPerMillion expectedWithin;
  PartsIntervals expectedWithinIntervals;
  PartsPerMillion expectedOverall;
  PartsIntervals expectedOverallIntervals;
};
enum class CapabilityFault : std::uint8_t {
  kInvalidLimits,     // SpecificationLimits::IsValid
  kInvalidConfidence  // not between 0 and 1
};
template <class T>
using CapabilityResult = Result<T, CapabilityFault>;

// All of it for values in their order.
CapabilityResult<CapabilityReport> AnalyseCapability(std::span<const double> values,
                                                     const SpecificationLimits& limits,
                                                     double confidence = 0.95);
// The same with the deviations that `sample` has, of which the one within may be that of subgroups (subgroups.h).
CapabilityResult<CapabilityReport> AnalyseCapability(std::span<const double> values,
                                                     const ProcessSample& sample,
                                                     const SpecificationLimits& limits, double confidence);

// A fitted distribution, from which the indices of a process that is not normal are taken.
struct ProcessDistribution {
  std::function<double(double p)> quantile;
  std::function<double(double x)> cdf;
  std::function<double(double x)> complement;
};
// Indices by percentiles (ISO 22514-2; Clements 1989): the distances of the limits from the median over the
// distances of the 0.135 % and 99.865 % points from it. The points are those of the distribution, never order
// statistics of the sample, whose extremes say little of such tails.
struct PercentileCapability {
  double low = kNotSet;     // the 0.135 % point
  double median = kNotSet;  // the 50 % point
  double high = kNotSet;    // the 99.865 % point
  CapabilityIndices indices;
  PartsPerMillion expected;
};
// Their intervals, from what bootstrapped fits give.
struct PercentileIntervals {
  IndexIntervals indices;
  PartsIntervals expected;
};
// kInvalidLimits. Nothing is set if a point is not finite or the points do not ascend.
CapabilityResult<PercentileCapability> AnalysePercentiles(const ProcessDistribution& distribution,
                                                          const SpecificationLimits& limits);

}  // namespace brenvolt
