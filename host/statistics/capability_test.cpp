#include "host/statistics/capability.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <vector>

#include "host/numeric/distributions/distribution_table.h"
#include "host/numeric/distributions/normal.h"
#include "host/numeric/distributions/weibull.h"
#include "host/numeric/random/random_stream.h"

namespace brenvolt {
namespace {

const double kNone = std::numeric_limits<double>::quiet_NaN();

TEST(Proportion, IntervalReference) {
  const struct {
    std::int64_t hits;
    std::int64_t count;
    double confidence;
    double lower;
    double upper;
  } rows[] = {
#include "host/statistics/reference/proportion_intervals.inc"
  };
  for (const auto& row : rows) {
    const ConfidenceInterval interval = ProportionInterval(row.hits, row.count, row.confidence);
    EXPECT_NEAR(interval.lower, row.lower, 1e-11 * row.lower) << row.hits << " of " << row.count;
    EXPECT_NEAR(interval.upper, row.upper, 1e-11 * row.upper) << row.hits << " of " << row.count;
  }
  EXPECT_TRUE(IsNotSet(ProportionInterval(0, 0, 0.95).upper));
}

TEST(SpecificationLimits, ValidOnlyWhereTheyCanBeMet) {
  struct Case {
    SpecificationLimits limits;
    bool valid;
  };
  const double infinity = std::numeric_limits<double>::infinity();
  const Case cases[] = {
      {{1, 3, 2}, true},          {{1, 3, kNone}, true},      {{1, kNone, kNone}, true},
      {{kNone, 3, kNone}, true},  {{kNone, 3, 3}, true},      {{1, kNone, 1}, true},
      {{1, 3, 1}, true},          {{kNone, kNone, 2}, false}, {{kNone, kNone, kNone}, false},
      {{3, 1, 2}, false},         {{1, 1, 1}, false},         {{1, 3, 3.1}, false},
      {{1, 3, 0.9}, false},       {{1, kNone, 0}, false},     {{kNone, 3, 4}, false},
      {{-infinity, 3, 2}, false}, {{1, infinity, 2}, false},  {{1, 3, infinity}, false},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(c.limits.IsValid(), c.valid)
        << c.limits.lower << " " << c.limits.upper << " " << c.limits.target;
  }
}

TEST(SpecificationLimits, AValueOnALimitIsNoDefect) {
  const SpecificationLimits both{1, 3, kNone};
  EXPECT_FALSE(both.IsDefect(1));
  EXPECT_FALSE(both.IsDefect(3));
  EXPECT_TRUE(both.IsDefect(std::nextafter(1.0, 0.0)));
  EXPECT_TRUE(both.IsDefect(std::nextafter(3.0, 4.0)));
  EXPECT_FALSE(both.IsDefect(kNone));
  EXPECT_FALSE((SpecificationLimits{kNone, 3, kNone}.IsDefect(-1e300)));
}

// Costs of processing mortgage loans (Montgomery 2013, Introduction to Statistical Quality Control, 7th ed.,
// section 6.4, the control chart for individuals): mean 300.5, mean moving range 7.79.
TEST(Capability, WithinDeviationIsTheMeanMovingRangeOverItsExpectation) {
  std::vector<double> costs{310, 288, 297, 298, 307, 303, 294, 297, 308, 306,
                            294, 299, 297, 299, 314, 295, 293, 306, 301, 304};
  const ProcessSample sample = DescribeProcess(costs);
  EXPECT_EQ(sample.count, 20);
  EXPECT_DOUBLE_EQ(sample.mean, 300.5);
  EXPECT_NEAR(sample.within * 1.128, 7.79, 0.005);
  EXPECT_NEAR(sample.within, 148.0 / 19 / 1.1283791670955126, 1e-13);
  EXPECT_NEAR(sample.overall, 6.58946527660469, 1e-13);  // R 4.2, sd()
  // (n - 1)^2 / (2 (0.8264 n - 1.082)): Cryer & Ryan (1990).
  EXPECT_NEAR(sample.withinDegrees, 19.0 * 19 / (2 * (0.8264 * 20 - 1.082)), 0.002);
  costs.insert(costs.begin() + 3, kNone);
  costs.push_back(kNone);
  EXPECT_EQ(DescribeProcess(costs).within, sample.within);
}

// Montgomery (2013), section 8.3: the table of process fallout by capability ratio (8.2), the one-sided
// bottle strengths, the two centred and uncentred processes with a target.
TEST(Capability, AgreesWithPublishedExamples) {
  struct Fallout {
    double ratio;
    double oneSided;
    double twoSided;
    double rounding;
  };
  const Fallout fallouts[] = {{0.25, 226628, 453255, 1}, {0.5, 66807, 133614, 1},      {0.8, 8198, 16395, 1},
                              {1.0, 1350, 2700, 1},      {1.2, 159, 318, 1},           {1.5, 4, 7, 1},
                              {1.8, 0.03, 0.06, 0.01},   {2.0, 0.0009, 0.0018, 0.0002}};
  for (const Fallout& f : fallouts) {
    const SpecificationLimits both{-3 * f.ratio, 3 * f.ratio, kNone};
    EXPECT_NEAR(NormalIndices(0, 1, both).least, f.ratio, 1e-15);
    EXPECT_NEAR(NormalParts(0, 1, both).total, f.twoSided, f.rounding) << f.ratio;
    const PartsPerMillion one = NormalParts(0, 1, {kNone, 3 * f.ratio, kNone});
    EXPECT_NEAR(one.above, f.oneSided, f.rounding) << f.ratio;
    EXPECT_TRUE(IsNotSet(one.below));
  }
  const CapabilityIndices bottles = NormalIndices(264, 32, {200, kNone, kNone});
  EXPECT_NEAR(bottles.lower, 0.67, 0.005);
  EXPECT_EQ(bottles.least, bottles.lower);
  EXPECT_TRUE(IsNotSet(bottles.potential));
  EXPECT_TRUE(IsNotSet(bottles.upper));
  EXPECT_NEAR(TaguchiIndex(50, 5, {35, 65, 50}), 1.0, 1e-15);
  EXPECT_NEAR(TaguchiIndex(57.5, 2.5, {35, 65, 50}), 0.63, 0.005);
  EXPECT_NEAR(NormalIndices(57.5, 2.5, {35, 65, 50}).potential, 2.0, 1e-15);
  EXPECT_NEAR(NormalIndices(57.5, 2.5, {35, 65, 50}).least, 1.0, 1e-15);
  // Section 8.3.5: s = 1.75 within 38 to 62, hence Cp = 2.29, and Cpk = 1.33, both from n = 20.
  const ConfidenceInterval cp = PotentialInterval(2.29, 19, 0.95);
  EXPECT_NEAR(NormalIndices(50, 1.75, {38, 62, kNone}).potential, 2.29, 0.005);
  EXPECT_NEAR(cp.lower, 1.57, 0.005);
  EXPECT_NEAR(cp.upper, 3.01, 0.005);
  const ConfidenceInterval cpk = OneSidedInterval(1.33, 20, 19, 0.95);
  EXPECT_NEAR(cpk.lower, 0.88, 0.005);
  EXPECT_NEAR(cpk.upper, 1.78, 0.005);
}

TEST(CapabilityReference, IntervalsAgreeWithTheTable) {
  struct Row {
    double confidence;
    std::int64_t count;
    double degrees, index, cpLower, cpUpper, cpkLower, cpkUpper;
  };
  const Row rows[] = {
#include "host/statistics/reference/capability_intervals.inc"
  };
  for (const Row& r : rows) {
    const ConfidenceInterval cp = PotentialInterval(r.index, r.degrees, r.confidence);
    const ConfidenceInterval cpk = OneSidedInterval(r.index, r.count, r.degrees, r.confidence);
    SCOPED_TRACE(r.degrees);
    EXPECT_NEAR(cp.lower, r.cpLower, 1e-11 * std::abs(r.cpLower));
    EXPECT_NEAR(cp.upper, r.cpUpper, 1e-11 * std::abs(r.cpUpper));
    EXPECT_NEAR(cpk.lower, r.cpkLower, 1e-11);
    EXPECT_NEAR(cpk.upper, r.cpkUpper, 1e-11);
  }
}

// Four thousand samples of 40 normal values with Cp = 1 and Cpk = 0.8: the shares of intervals that hold the
// true index have a standard error of 0.0034.
TEST(Capability, IntervalsHoldTheIndexAsOftenAsTheySay) {
  constexpr std::int64_t kSamples = 4000;
  constexpr std::size_t kSize = 40;
  std::vector<double> values(kSamples * kSize);
  RandomStream(5).FillNormal(0, 1.0, values);
  const SpecificationLimits limits{-3.6, 2.4, kNone};
  const auto holds = [](const ConfidenceInterval& interval, double index) {
    return interval.lower <= index && index <= interval.upper ? 1 : 0;
  };
  const PartsPerMillion parts = NormalParts(0, 1, limits);
  int cp = 0, cpk = 0, pp = 0, ppk = 0, withinAbove = 0, overallBelow = 0, overallTotal = 0;
  for (std::size_t i = 0; i < kSamples; ++i) {
    const CapabilityReport report = *AnalyseCapability(std::span(values).subspan(i * kSize, kSize), limits);
    cp += holds(report.withinIntervals.potential, 1);
    cpk += holds(report.withinIntervals.least, 0.8);
    pp += holds(report.overallIntervals.potential, 1);
    ppk += holds(report.overallIntervals.upper, 0.8);
    withinAbove += holds(report.expectedWithinIntervals.above, parts.above);
    overallBelow += holds(report.expectedOverallIntervals.below, parts.below);
    overallTotal += holds(report.expectedOverallIntervals.total, parts.total);
  }
  EXPECT_NEAR(pp / double{kSamples}, 0.95, 0.012);
  // Effective degrees of freedom and the normal approximation of Bissell are approximations.
  EXPECT_NEAR(cp / double{kSamples}, 0.95, 0.02);
  EXPECT_NEAR(cpk / double{kSamples}, 0.95, 0.02);
  EXPECT_NEAR(ppk / double{kSamples}, 0.95, 0.02);
  EXPECT_NEAR(withinAbove / double{kSamples}, 0.95, 0.02);
  EXPECT_NEAR(overallBelow / double{kSamples}, 0.95, 0.02);
  EXPECT_GT(overallTotal / double{kSamples}, 0.95);
  RecordProperty("ppk", ppk);
  RecordProperty("within above", withinAbove);
  RecordProperty("overall below", overallBelow);
  RecordProperty("overall total", overallTotal);
}

TEST(Capability, TargetOffTheMiddleCountsFromTheNearerLimit) {
  EXPECT_NEAR(TaguchiIndex(10, 1, {4, 13, 10}), 1.0, 1e-15);
  EXPECT_NEAR(TaguchiIndex(10, 1, {kNone, 13, 10}), 1.0, 1e-15);
  EXPECT_NEAR(TaguchiIndex(10, 1, {4, kNone, 10}), 2.0, 1e-15);
  EXPECT_EQ(TaguchiIndex(10, 1, {4, 13, 13}), 0);
  EXPECT_TRUE(IsNotSet(TaguchiIndex(10, 1, {4, 13, kNone})));
}

TEST(Capability, ReportGathersTheIndicesOfBothDeviations) {
  // A drift: neighbours differ little, the whole much.
  std::vector<double> values;
  for (int i = 0; i < 100; ++i) values.push_back(i * 0.1 + (i % 2 == 0 ? 0.5 : -0.5));
  values[50] = kNone;
  const SpecificationLimits limits{-1, 9, 4};
  const CapabilityReport report = *AnalyseCapability(values, limits);
  EXPECT_EQ(report.sample.count, 99);
  EXPECT_LT(report.sample.within, 0.5 * report.sample.overall);
  EXPECT_DOUBLE_EQ(report.within.potential, 10 / (6 * report.sample.within));
  EXPECT_DOUBLE_EQ(report.overall.potential, 10 / (6 * report.sample.overall));
  EXPECT_DOUBLE_EQ(report.overall.least, std::min(report.overall.lower, report.overall.upper));
  EXPECT_LT(report.withinIntervals.potential.lower, report.within.potential);
  EXPECT_GT(report.withinIntervals.potential.upper, report.within.potential);
  EXPECT_LT(report.overallIntervals.least.lower, report.overall.least);
  EXPECT_GT(report.overallIntervals.least.upper, report.overall.least);
  int above = 0;
  for (const double x : values) above += x > 9 ? 1 : 0;
  EXPECT_EQ(report.observed.below, 0);
  EXPECT_DOUBLE_EQ(report.observed.above, above * 1e6 / 99);
  EXPECT_DOUBLE_EQ(report.expectedOverall.total, report.expectedOverall.below + report.expectedOverall.above);
}

TEST(Capability, SamplesThatTellNothingGiveNoIndex) {
  const SpecificationLimits limits{1, 3, 2};
  for (const std::vector<double>& values :
       {std::vector<double>{}, std::vector<double>{2}, std::vector<double>{2, 2, 2, 2},
        std::vector<double>{kNone, 2, kNone}}) {
    const CapabilityReport report = *AnalyseCapability(values, limits);
    for (const double value : {report.within.potential, report.overall.least, report.cpm,
                               report.withinIntervals.potential.lower, report.overallIntervals.least.upper,
                               report.expectedWithin.total, report.expectedWithinIntervals.total.lower}) {
      EXPECT_TRUE(IsNotSet(value)) << values.size();
    }
    EXPECT_EQ(IsNotSet(report.observed.total), values.empty());
  }
}

TEST(Capability, LimitsAndConfidencesThatAreNoneAreFaults) {
  const std::vector<double> values{1, 2};
  const struct {
    SpecificationLimits limits;
    double confidence;
    CapabilityFault fault;
  } rows[] = {{{3, 1, 2}, 0.95, CapabilityFault::kInvalidLimits},
              {{}, 0.95, CapabilityFault::kInvalidLimits},
              {{1, 3, 2}, 1.0, CapabilityFault::kInvalidConfidence},
              {{1, 3, 2}, kNone, CapabilityFault::kInvalidConfidence}};
  for (const auto& row : rows) {
    const auto report = AnalyseCapability(values, row.limits, row.confidence);
    ASSERT_FALSE(report);
    EXPECT_EQ(report.Reason().identifier, row.fault);
  }
  const auto percentiles = AnalysePercentiles(
      {[](double p) { return p; }, [](double x) { return x; }, [](double x) { return 1 - x; }}, {});
  ASSERT_FALSE(percentiles);
  EXPECT_EQ(percentiles.Reason().identifier, CapabilityFault::kInvalidLimits);
}

ProcessDistribution WeibullProcess() {
  return {[](double p) { return Distribution<Weibull>(10, 1.7).Quantile(p); },
          [](double x) { return Distribution<Weibull>(10, 1.7).Cdf(x); },
          [](double x) { return Distribution<Weibull>(10, 1.7).Complement(x); }};
}

// SciPy 1.10, weibull_min(1.7, 0, 10): ppf, cdf and sf; limits 1 and 35.
TEST(Capability, PercentileIndicesStandOnTheDistribution) {
  const PercentileCapability c = *AnalysePercentiles(WeibullProcess(), {1, 35, kNone});
  const std::pair<double, double> values[] = {
      {c.low, 0.20517931606399886},
      {c.median, 8.060610171859208},
      {c.high, 30.36551372315639},
      {c.indices.potential, 1.1273084555721864},
      {c.indices.lower, 0.8988189574159849},
      {c.indices.upper, 1.2077788081972711},
      {c.expected.below, 19754.886867346548},
      {c.expected.above, 222.11442438429816},
  };
  for (const auto& [value, expected] : values) EXPECT_NEAR(value, expected, 1e-12 * expected);
  EXPECT_EQ(c.indices.least, std::min(c.indices.lower, c.indices.upper));
  const PercentileCapability oneSided = *AnalysePercentiles(WeibullProcess(), {kNone, 35, kNone});
  EXPECT_EQ(oneSided.indices.least, c.indices.upper);
  EXPECT_TRUE(IsNotSet(oneSided.indices.potential));
  EXPECT_TRUE(IsNotSet(oneSided.expected.below));
  EXPECT_EQ(oneSided.expected.total, oneSided.expected.above);
  // A normal distribution has the indices by deviations, but for the rounding of the standard's percentages.
  const ProcessDistribution normalProcess{[](double p) { return Distribution<Normal>(5, 2).Quantile(p); },
                                          [](double x) { return Distribution<Normal>(5, 2).Cdf(x); },
                                          [](double x) { return Distribution<Normal>(5, 2).Complement(x); }};
  const SpecificationLimits limits{1, 12, kNone};
  EXPECT_NEAR(AnalysePercentiles(normalProcess, limits)->indices.least, NormalIndices(5, 2, limits).least,
              1e-5);
}

TEST(CapabilityReference, PercentileIndicesAgreeWithScipy) {
  struct Row {
    DistributionCode code;
    std::vector<double> values;
    double lower, upper, potential, ofLower, ofUpper, least, below, above;
  };
  const Row rows[] = {
#include "host/statistics/reference/percentiles.inc"
  };
  const auto expectSame = [](double found, double expected, const char* what) {
    if (std::isnan(expected)) {
      EXPECT_TRUE(IsNotSet(found)) << what;
    } else {
      EXPECT_NEAR(found, expected, 1e-9 * std::abs(expected)) << what;
    }
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(static_cast<int>(row.code));
    const AnyDistribution fit(row.code, row.values, 0);
    const PercentileCapability found =
        *AnalysePercentiles({[&](double p) { return fit.Quantile(p); }, [&](double x) { return fit.Cdf(x); },
                             [&](double x) { return fit.Complement(x); }},
                            {row.lower, row.upper, kNone});
    expectSame(found.indices.potential, row.potential, "Pp");
    expectSame(found.indices.lower, row.ofLower, "Ppl");
    expectSame(found.indices.upper, row.ofUpper, "Ppu");
    expectSame(found.indices.least, row.least, "Ppk");
    if (!std::isnan(row.lower)) expectSame(found.expected.below, row.below, "below");
    if (!std::isnan(row.upper)) expectSame(found.expected.above, row.above, "above");
  }
}

TEST(Capability, NoMoreThanAllPartsMissALimit) {
  const PartsIntervals wide = NormalPartsIntervals(NormalIndices(0, 10, {-1, 1, kNone}), 5, 4, 0.95);
  EXPECT_LT(wide.total.lower, 920344);
  EXPECT_EQ(wide.total.upper, 1e6);
}

TEST(Capability, PercentilesThatAreNoneGiveNoIndex) {
  ProcessDistribution process = WeibullProcess();
  for (const double value : {std::numeric_limits<double>::infinity(), kNone, kInvalidQuantile}) {
    const std::array<double, 3> points =
        value < 0 ? std::array{value, 3.0, 9.0} : std::array{1.0, 3.0, value};
    process.quantile = [points](double p) { return points[p < 0.5 ? 0 : (p > 0.5 ? 2 : 1)]; };
    EXPECT_TRUE(IsNotSet(AnalysePercentiles(process, {1, 35, kNone})->indices.least)) << value;
  }
  process.quantile = [](double p) { return p < 0.9 ? 1.0 : 2.0; };  // a discrete one: median on the low point
  EXPECT_TRUE(IsNotSet(AnalysePercentiles(process, {1, 35, kNone})->indices.least));
}

}  // namespace
}  // namespace brenvolt
