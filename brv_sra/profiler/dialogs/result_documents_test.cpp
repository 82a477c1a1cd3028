#include "brv_sra/profiler/dialogs/result_documents.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "brv_sra/distributions/specified_distribution.h"
#include "host/analysis/response_columns.h"
#include "host/analysis/result_columns.h"
#include "host/base/error.h"

namespace brenvolt::sra {
namespace {

namespace rows = response_table;

const double kNan = std::numeric_limits<double>::quiet_NaN();
const double kInfinity = std::numeric_limits<double>::infinity();

struct NoProgress : ProgressPort {
  void ShowProgress(std::string_view /*caption*/, std::int64_t /*done*/, std::int64_t /*total*/) override {}
  void EndProgress() override {}
  bool IsExternallyCancelled() override { return false; }
};

// The quantiles of a distribution at evenly spread probabilities, in an order that hides it; `step` has no
// divisor in common with `count`.
std::vector<double> Quantiles(DistributionCode code, std::vector<double> values, std::size_t count,
                              std::size_t step) {
  const SpecifiedDistribution distribution(code, values, 0);
  std::vector<double> quantiles(count);
  for (std::size_t i = 0; i < count; ++i) {
    const double rank = static_cast<double>((i * step) % count) + 0.5;
    quantiles[i] = distribution.Quantile(rank / static_cast<double>(count));
  }
  return quantiles;
}

Spreadsheet SheetOf(const std::vector<std::pair<std::string, std::vector<double>>>& columns) {
  Spreadsheet sheet("Simulated", columns.front().second.size());
  for (const auto& [name, values] : columns) {
    Variable column(name, values.size());
    column.AssignValues(values);
    sheet.AddVariable(std::move(column));
  }
  return sheet;
}

double Cell(const Spreadsheet& table, std::string_view row, std::string_view column = result_column::kValue) {
  const auto variable = table.FindVariable(column);
  EXPECT_TRUE(variable.has_value()) << column;
  for (std::size_t i = 0; variable && i < table.CaseCount(); ++i) {
    if (table.CaseName(i) == row) return table.VariableAt(*variable).Values()[i];
  }
  ADD_FAILURE() << "no row " << row;
  return kNan;
}

std::vector<std::string> Rows(const Spreadsheet& table) {
  std::vector<std::string> names;
  for (std::size_t i = 0; i < table.CaseCount(); ++i) names.emplace_back(table.CaseName(i));
  return names;
}

std::unique_ptr<Spreadsheet> CapabilityOf(const std::vector<double>& values,
                                          const SpecificationLimits& limits) {
  const Spreadsheet sheet = SheetOf({{"Y", values}});
  const SimulatedResponse response{sheet, 0, 0, limits};
  NoProgress port;
  return CapabilityDocument(response, FitResponse(response, port));
}

TEST(CapabilityDocument, NormalResponseHasNoIndicesByPercentiles) {
  const auto values = Quantiles(DistributionCode::kNormal, {10, 2}, 2000, 367);
  const auto table = CapabilityOf(values, {4, 19, 10});
  EXPECT_EQ(table->Title(), "Process capability of Y");
  EXPECT_GE(Cell(*table, rows::kNormalPValue), 0.05);
  // The quantiles of 2000 evenly spread probabilities scatter a little less than their distribution.
  EXPECT_NEAR(Cell(*table, rows::kPpl), 1, 2e-3);
  EXPECT_NEAR(Cell(*table, rows::kPpu), 1.5, 3e-3);
  EXPECT_NEAR(Cell(*table, rows::kPp), 1.25, 3e-3);
  EXPECT_NEAR(Cell(*table, rows::kPpk), 1, 2e-3);
  EXPECT_NEAR(Cell(*table, rows::kCpm), 1, 2e-3);
  EXPECT_NEAR(Cell(*table, rows::kOverallBelow), 1349.9, 20);
  EXPECT_LT(Cell(*table, rows::kPpk, rows::kLowerConfidence), 1);
  EXPECT_GT(Cell(*table, rows::kPpk, rows::kUpperConfidence), 1);
  EXPECT_LT(Cell(*table, rows::kCpk, rows::kLowerConfidence), Cell(*table, rows::kCpk));
  for (const std::string_view row : {rows::kLowPoint, rows::kPercentilePpk, rows::kPercentileTotal})
    EXPECT_TRUE(std::isnan(Cell(*table, row))) << row;
}

// The distribution's own points, exp(-3 s), 1 and exp(3 s), make every index by percentiles 1 at these
// limits; the sample of 400 ends far inside of them.
TEST(CapabilityDocument, SkewedResponseTakesPercentilesFromItsBestFitNotFromItsExtremes) {
  constexpr double kShape = 0.4;
  const double low = std::exp(-3 * kShape);
  const double high = std::exp(3 * kShape);
  const auto values = Quantiles(DistributionCode::kLogNormal, {0, kShape}, 200, 67);
  ASSERT_LT(*std::ranges::max_element(values), 0.96 * high);
  const struct {
    SpecificationLimits limits;
    double potential;
    double lower;
    double upper;
    double below;
    double above;
  } cases[] = {{{low, high, kNan}, 1, 1, 1, 1350, 1350},
               {{kNan, high, kNan}, kNan, kNan, 1, 0, 1350},
               {{low, kNan, kNan}, kNan, 1, kNan, 1350, 0}};
  const auto near = [](double value, double expected, double tolerance) {
    return std::isnan(expected) ? std::isnan(value) : std::abs(value - expected) <= tolerance;
  };
  for (const auto& c : cases) {
    const auto table = CapabilityOf(values, c.limits);
    const Variable& description = table->VariableAt(*table->FindVariable(result_column::kDescription));
    EXPECT_EQ(description.Label(description.Values().back()).value_or("").substr(0, 10), "Log Normal");
    EXPECT_TRUE(description.IsMissing(0));
    EXPECT_LT(Cell(*table, rows::kNormalPValue), 0.05);
    EXPECT_NEAR(Cell(*table, rows::kHighPoint), high, 0.03 * high);
    EXPECT_NEAR(Cell(*table, rows::kMedianPoint), 1, 0.01);
    EXPECT_TRUE(near(Cell(*table, rows::kPercentilePp), c.potential, 0.03));
    EXPECT_TRUE(near(Cell(*table, rows::kPercentilePpl), c.lower, 0.03));
    EXPECT_TRUE(near(Cell(*table, rows::kPercentilePpu), c.upper, 0.03));
    EXPECT_NEAR(Cell(*table, rows::kPercentilePpk), 1, 0.03);
    EXPECT_TRUE(near(Cell(*table, rows::kPercentileBelow), c.below, 300));
    EXPECT_TRUE(near(Cell(*table, rows::kPercentileAbove), c.above, 300));
    EXPECT_TRUE(near(Cell(*table, rows::kCp), c.potential, 5)) << "Cp of a one-sided specification";
  }
}

TEST(CapabilityDocument, RunsWithoutPredictionAreCountedAndLeftOut) {
  const auto table = CapabilityOf({1, kNan, 2, kInfinity, 3, 4, -kInfinity}, {0, 3.5, kNan});
  EXPECT_EQ(Cell(*table, result_column::kCount), 4);
  EXPECT_EQ(Cell(*table, result_column::kMissing), 3);
  EXPECT_EQ(Cell(*table, result_column::kMean), 2.5);
  EXPECT_EQ(Cell(*table, rows::kObservedAbove), 250000);
  EXPECT_EQ(Cell(*table, rows::kObservedBelow), 0);
  EXPECT_EQ(Cell(*table, rows::kUpperLimit), 3.5);
}

TEST(CapabilityDocument, RefusesASpecificationThatIsNotValid) {
  for (const SpecificationLimits& limits :
       {SpecificationLimits{3, 1, kNan}, SpecificationLimits{}, SpecificationLimits{1, 3, 4}})
    EXPECT_THROW(CapabilityOf({1, 2, 3}, limits), Error);
}

// What cannot have a density has no fit; the rest is made all the same.
TEST(ResponseFits, FewValuesOrNoneAreNotFittedAndBreakNothing) {
  const std::vector<double> samples[] = {{1, 2, 3, 1, 2, 3, 1, 2}, {5, 5, 5, 5}, {5}, {kNan, kNan}};
  for (const auto& values : samples) {
    const Spreadsheet sheet = SheetOf({{"A", std::vector<double>(values.size(), 1)}, {"Y", values}});
    const SimulatedResponse response{sheet, 1, 0, {0, 4, kNan}};
    NoProgress port;
    const VariableFit fit = FitResponse(response, port);
    EXPECT_TRUE(fit.invalid);
    EXPECT_TRUE(fit.fits.empty());
    EXPECT_TRUE(std::isnan(Cell(*CapabilityDocument(response, fit), rows::kPercentilePpk)));
    EXPECT_EQ(SummaryDocuments(response).size(), kSummaryDocuments);
    if (std::isnan(values.front())) {
      EXPECT_THROW(SummaryGraphs(response, fit), Error);
      continue;
    }
    EXPECT_TRUE(SummaryGraphs(response, fit).panels.front().curves.empty());
  }
}

// Y = 3 A - B of independent columns, and a predictor that never changes.
struct LinearResponse : testing::Test {
  static constexpr std::size_t kRuns = 1000;
  const std::vector<double> a = Quantiles(DistributionCode::kNormal, {0, 1}, kRuns, 367);
  const std::vector<double> b = Quantiles(DistributionCode::kNormal, {0, 1}, kRuns, 173);
  std::vector<double> y;
  Spreadsheet sheet = Make();
  const SimulatedResponse response{sheet, 3, 1, {kNan, 6, 0}};

  Spreadsheet Make() {
    for (std::size_t i = 0; i < kRuns; ++i) y.push_back(3 * a[i] - b[i]);
    return SheetOf({{"B", b}, {"Fixed", std::vector<double>(kRuns, 2)}, {"A", a}, {"Z", b}, {"Y", y}});
  }
};

TEST_F(LinearResponse, SensitivityIsOrderedByInfluenceAndEndsWithAllPredictors) {
  const auto documents = SummaryDocuments(response);
  const Spreadsheet& table = *documents[static_cast<std::size_t>(SummaryDocument::kSensitivity)];
  EXPECT_EQ(Rows(table), (std::vector<std::string>{"A", "B", "Fixed", "All predictors"}));
  EXPECT_NEAR(Cell(table, "A", rows::kStandardizedCoefficient), 3 / std::sqrt(10), 0.02);
  EXPECT_NEAR(Cell(table, "B", rows::kStandardizedCoefficient), -1 / std::sqrt(10), 0.02);
  EXPECT_NEAR(Cell(table, "All predictors", rows::kLinearContribution), 1, 1e-9);
  EXPECT_EQ(Cell(table, "All predictors", rows::kRankContribution), 1);
  EXPECT_TRUE(std::isnan(Cell(table, "Fixed", rows::kStandardizedCoefficient)));
  const Spreadsheet& correlations = *documents[static_cast<std::size_t>(SummaryDocument::kCorrelations)];
  EXPECT_EQ(Rows(correlations), (std::vector<std::string>{"B", "Fixed", "A"}));
  EXPECT_NEAR(Cell(correlations, "A", rows::kPearson), 3 / std::sqrt(10), 0.02);
  EXPECT_LT(Cell(correlations, "B", rows::kSpearman), -0.25);
  EXPECT_LT(Cell(correlations, "A", rows::kSpearmanPValue), 1e-10);
}

TEST_F(LinearResponse, TablesDescribeTheResponseAskedForAndNoOther) {
  const auto documents = SummaryDocuments(response);
  const auto document = [&](SummaryDocument which) -> const Spreadsheet& {
    return *documents[static_cast<std::size_t>(which)];
  };
  const Spreadsheet& statistics = document(SummaryDocument::kStatistics);
  EXPECT_EQ(statistics.Title(), "Statistics of Y");
  EXPECT_EQ(Cell(statistics, "Y", result_column::kCount), kRuns);
  EXPECT_NEAR(Cell(statistics, "Y", result_column::kStandardDeviation), std::sqrt(10), 0.1);
  const Spreadsheet& percentiles = document(SummaryDocument::kPercentiles);
  for (std::size_t i = 0; i < percentiles.CaseCount(); ++i) {
    const std::string row(percentiles.CaseName(i));
    const double value = Cell(percentiles, row);
    EXPECT_TRUE(i == 0 || value > percentiles.VariableAt(0).Values()[i - 1]) << row;
    // 1000 runs have no limit beyond their outermost points.
    EXPECT_FALSE(Cell(percentiles, row, rows::kLowerConfidence) > value) << row;
    EXPECT_FALSE(Cell(percentiles, row, rows::kUpperConfidence) < value) << row;
  }
  EXPECT_TRUE(std::isnan(Cell(percentiles, "P0.135", rows::kLowerConfidence)));
  EXPECT_GE(Cell(percentiles, "P50", rows::kCoverage), 0.95);
  const Spreadsheet& frequencies = document(SummaryDocument::kFrequencies);
  const std::string last(frequencies.CaseName(frequencies.CaseCount() - 1));
  EXPECT_EQ(Cell(frequencies, last, rows::kClassCumulativeCount), kRuns);
  EXPECT_NEAR(Cell(frequencies, last, rows::kClassCumulativePercent), 100, 1e-9);
}

TEST_F(LinearResponse, GraphsDrawTheGivenLimitsAndOneBarPerPredictorThatVaries) {
  NoProgress port;
  const Graph graph = SummaryGraphs(response, FitResponse(response, port));
  ASSERT_EQ(graph.panels.size(), 2U);
  const Graph& histogram = graph.panels[0];
  EXPECT_EQ(histogram.curves.size(), 1U);
  EXPECT_EQ(std::accumulate(histogram.bars[0].heights.begin(), histogram.bars[0].heights.end(), 0.0), kRuns);
  ASSERT_EQ(histogram.series.size(), 2U);
  EXPECT_EQ(histogram.series[0].name, "Target");
  EXPECT_EQ(histogram.series[1].name, "USL");
  EXPECT_EQ(histogram.series[1].x, (std::vector<double>{6, 6}));
  const Graph& tornado = graph.panels[1];
  EXPECT_EQ(GraphKindName(tornado.kind), "tornado");
  ASSERT_EQ(tornado.bars.size(), 2U);
  EXPECT_EQ(tornado.bars[0].name, "A");
  EXPECT_EQ(tornado.bars[1].name, "B");
  EXPECT_GT(tornado.bars[0].heights.front(), 0.9);
  EXPECT_LT(tornado.bars[1].heights.front(), -0.25);
}

}  // namespace
}  // namespace brenvolt::sra
