#include "host/statistics/control_charts.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <map>
#include <vector>

#include "host/statistics/control_constants.h"
#include "host/tables/csv.h"

namespace brenvolt {
namespace {

TEST(ControlConstants, AgreeWithTheTableReference) {
  struct Row {
    std::size_t count;
    double d2, d3, c4;
  };
  const Row rows[] = {
#include "host/statistics/reference/control_constants.inc"
  };
  for (const Row& row : rows) {
    const RangeConstants range = RangeConstantsOf(row.count);
    EXPECT_NEAR(range.d2, row.d2, 1e-12 * row.d2) << row.count;
    EXPECT_NEAR(range.d3, row.d3, 1e-11 * row.d3) << row.count;
    EXPECT_NEAR(C4(row.count), row.c4, 1e-14) << row.count;
  }
}

// Montgomery (2013), Introduction to Statistical Quality Control, 7th ed., appendix VI, for samples of 2 to 25.
TEST(ControlConstants, AgreeWithThePublishedTable) {
  const double d2[] = {1.128, 1.693, 2.059, 2.326, 2.534, 2.704, 2.847, 2.970, 3.078, 3.173, 3.258, 3.336,
                       3.407, 3.472, 3.532, 3.588, 3.640, 3.689, 3.735, 3.778, 3.819, 3.858, 3.895, 3.931};
  const double d3[] = {0.853, 0.888, 0.880, 0.864, 0.848, 0.833, 0.820, 0.808, 0.797, 0.787, 0.778, 0.770,
                       0.763, 0.756, 0.750, 0.744, 0.739, 0.734, 0.729, 0.724, 0.720, 0.716, 0.712, 0.708};
  const double c4[] = {0.7979, 0.8862, 0.9213, 0.9400, 0.9515, 0.9594, 0.9650, 0.9693,
                       0.9727, 0.9754, 0.9776, 0.9794, 0.9810, 0.9823, 0.9835, 0.9845,
                       0.9854, 0.9862, 0.9869, 0.9876, 0.9882, 0.9887, 0.9892, 0.9896};
  for (std::size_t n = 2; n <= 25; ++n) {
    EXPECT_NEAR(RangeConstantsOf(n).d2, d2[n - 2], 0.00051) << n;
    EXPECT_NEAR(RangeConstantsOf(n).d3, d3[n - 2], 0.00101) << n;  // the table truncates some
    EXPECT_NEAR(C4(n), c4[n - 2], 0.000051) << n;
  }
}

// The values of Bissell (1990) in 15 samples of 5, of which sample i lacks its last i mod (leftOut + 1) values.
std::vector<SubgroupStatistics> ProcessSamples(std::size_t leftOut) {
  const Spreadsheet parts = ReadCsv(BRENVOLT_SOURCE_DIR "/examples/process.csv");
  std::map<double, std::vector<double>> samples;
  for (std::size_t i = 0; i < parts.CaseCount(); ++i)
    samples[parts.VariableAt(0).Values()[i]].push_back(parts.VariableAt(1).Values()[i]);
  std::vector<SubgroupStatistics> subgroups;
  for (auto& [sample, values] : samples) {
    values.resize(5 - (leftOut > 0 ? static_cast<std::size_t>(sample) % (leftOut + 1) : 0));
    subgroups.push_back(DescribeSubgroup(values));
  }
  return subgroups;
}

TEST(SubgroupsReference, DeviationsWithinAgreeWithTheTable) {
  struct Row {
    std::size_t leftOut;
    double range, rangeDegrees, deviation, deviationDegrees, pooled, pooledDegrees;
  };
  const Row rows[] = {
#include "host/statistics/reference/subgroups.inc"
  };
  for (const Row& row : rows) {
    const WithinEstimates found = EstimateWithin(ProcessSamples(row.leftOut));
    EXPECT_NEAR(found.ranges.deviation, row.range, 1e-6 * row.range) << row.leftOut;
    EXPECT_NEAR(found.ranges.degrees, row.rangeDegrees, 1e-5 * row.rangeDegrees);
    EXPECT_NEAR(found.deviations.deviation, row.deviation, 1e-11 * row.deviation);
    EXPECT_NEAR(found.deviations.degrees, row.deviationDegrees, 1e-6 * row.deviationDegrees);
    EXPECT_NEAR(found.pooled.deviation, row.pooled, 1e-11 * row.pooled);
    EXPECT_EQ(found.pooled.degrees, row.pooledDegrees);
  }
  const SubgroupStatistics single = DescribeSubgroup(std::array{74.0});
  EXPECT_TRUE(IsNotSet(EstimateWithin(std::array{single}).pooled.deviation));
}

TEST(ControlChartsReference, LimitsOfSamplesAgreeWithTheTable) {
  struct Row {
    double lower, centre, upper;
  };
  const Row rows[] = {
#include "host/statistics/reference/charts.inc"
  };
  const ControlCharts ranges = SubgroupCharts(ProcessSamples(0), Dispersion::kRange, WesternElectricRules());
  const ControlCharts deviations =
      SubgroupCharts(ProcessSamples(0), Dispersion::kDeviation, WesternElectricRules());
  const ControlChart* charts[] = {&ranges.location, &ranges.dispersion, &deviations.location,
                                  &deviations.dispersion};
  for (std::size_t i = 0; i < std::size(rows); ++i) {
    EXPECT_NEAR(charts[i]->lower[0], rows[i].lower, 1e-7) << i;
    EXPECT_NEAR(charts[i]->centre[0], rows[i].centre, 1e-7) << i;
    EXPECT_NEAR(charts[i]->upper[0], rows[i].upper, 1e-7) << i;
  }
}

// Montgomery (2013), section 6.4, costs of processing mortgage loans: 300.5 within 279.78 and 321.22, moving ranges of 7.79
// below 25.45.
TEST(ControlCharts, LimitsAgreeWithAPublishedExample) {
  const double costs[] = {310, 288, 297, 298, 307, 303, 294, 297, 308, 306,
                          294, 299, 297, 299, 314, 295, 293, 306, 301, 304};
  const ControlCharts loans = IndividualCharts(costs, WesternElectricRules());
  EXPECT_NEAR(loans.location.lower[0], 279.78, 0.015);
  EXPECT_NEAR(loans.location.upper[0], 321.22, 0.015);
  EXPECT_EQ(loans.dispersion.points.size(), 19U);
  EXPECT_NEAR(loans.dispersion.centre[0], 7.79, 0.005);
  EXPECT_NEAR(loans.dispersion.upper[0], 25.45, 0.01);
}

TEST(ControlCharts, LimitsFollowTheSizesOfSubgroups) {
  const ControlCharts charts = SubgroupCharts(ProcessSamples(3), Dispersion::kRange, WesternElectricRules());
  const double sigma = EstimateWithin(ProcessSamples(3)).ranges.deviation;
  for (std::size_t i = 0; i < 15; ++i) {
    const std::size_t size = 5 - (i + 1) % 4;
    const auto n = static_cast<double>(size);
    EXPECT_NEAR(charts.location.upper[i] - charts.location.centre[i], 3 * sigma / std::sqrt(n), 1e-12);
    const RangeConstants constants = RangeConstantsOf(size);
    EXPECT_NEAR(charts.dispersion.upper[i], (constants.d2 + 3 * constants.d3) * sigma, 1e-12);
  }
}

// A chart of centre 0 and deviation 1.
ControlChart Scores(std::vector<double> points) {
  const std::size_t n = points.size();
  return {std::move(points),
          std::vector<double>(n, 0),
          std::vector<double>(n, -3),
          std::vector<double>(n, 3),
          {}};
}

// For every rule a run that is a signal at its last point and at no earlier one, and one that just is none.
TEST(ControlCharts, EveryRuleSignalsAtTheEndOfItsRun) {
  struct Case {
    const char* why;
    bool nelson;
    std::size_t rule;
    std::vector<double> signal;
    std::vector<double> none;
  };
  const Case cases[] = {
      {"beyond a limit", false, 0, {0, 0.5, -3.01}, {0, 0.5, -3}},
      {"2 of 3 beyond 2", false, 1, {2.1, 0, 2.1}, {2.1, 0, -2.1}},
      {"2 of 3, a fourth before", false, 1, {2.1, 2.2}, {2.1, 0, 0, 2.1}},
      {"4 of 5 beyond 1", false, 2, {-1.1, -1.1, 0, -1.1, -1.1}, {-1.1, -1.1, 0, -1.1, -0.9}},
      {"8 on one side", false, 3, {.1, .2, .1, .2, .1, .2, .1, .2}, {.1, .2, .1, .2, .1, .2, .1, -.1}},
      {"9 on one side", true, 1, {.1, .2, .1, .2, .1, .2, .1, .2, .1}, {.1, .2, .1, .2, .1, .2, .1, .2, 0}},
      {"6 rising", true, 2, {-.5, -.4, -.3, -.2, -.1, .1}, {-.5, -.4, -.3, -.2, -.1, -.1}},
      {"6 falling", true, 2, {.5, .4, .3, .2, .1, -.1}, {-.2, -.4, -.3, -.2, -.1, .1}},
      {"14 alternating",
       true,
       3,
       {.1, -.1, .1, -.1, .1, -.1, .1, -.1, .1, -.1, .1, -.1, .1, -.1},
       {.1, .1, .1, -.1, .1, -.1, .1, -.1, .1, -.1, .1, -.1, .1, -.1}},
      {"2 of 3 beyond 2", true, 4, {-2.5, 0, -2.5}, {-2.5, 0, 0}},
      {"4 of 5 beyond 1", true, 5, {1.1, 1.2, 1.1, 1.1}, {1.1, 1.2, -1.1, 1.1, 0}},
      {"15 within 1",
       true,
       6,
       {.1, -.2, .3, .3, -.4, .5, .5, -.6, .1, .7, -.8, .9, -1, -.2, .1},
       {.1, -.2, .3, .3, -.4, .5, .5, -.6, .1, .7, -.8, .9, -1.1, -.2, .1}},
      {"8 beyond 1",
       true,
       7,
       {1.1, -1.1, -1.2, 1.3, 1.1, -1.1, 1.1, -1.1},
       {1.1, -1.1, -1.2, .9, 1.1, -1.1, 1.1, -1.1}}};
  for (const Case& c : cases) {
    const auto rules = c.nelson ? NelsonRules() : WesternElectricRules();
    const auto one = rules.subspan(c.rule, 1);
    const auto found = FindSignals(Scores(c.signal), one);
    ASSERT_EQ(found.size(), 1U) << c.why;
    EXPECT_EQ(found[0].point, c.signal.size() - 1) << c.why;
    EXPECT_TRUE(FindSignals(Scores(c.none), one).empty()) << c.why;
  }
}

TEST(ControlCharts, DispersionIsJudgedByItsLimits) {
  const double values[] = {1, 2, 1, 2, 1, 2, 1, 2, 1, 12, 1, 2};
  const ControlCharts charts = IndividualCharts(values, NelsonRules());
  ASSERT_EQ(charts.dispersion.signals.size(), 2U);
  EXPECT_EQ(charts.dispersion.signals[0].point, 8U);
  EXPECT_EQ(charts.dispersion.signals[1].point, 9U);
}

}  // namespace
}  // namespace brenvolt
