#include "brv_sra/profiler/dialogs/result_documents.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <numeric>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "brv_sra/distributions/specified_distribution.h"
#include "brv_sra/profiler/profiler_run.h"
#include "host/analysis/result_table.h"
#include "host/base/error.h"
#include "host/base/number_text.h"
#include "host/statistics/normality.h"

namespace brenvolt::sra {
namespace {

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

// Of a row by its name, or of a statistic.
// Default arguments below: Clang 14 takes no call of a consteval function there.
constexpr const ResultColumn& kValue = "value"_column;

double Cell(const Spreadsheet& sheet, std::string_view row, const ResultColumn& column = kValue) {
  const ResultTable table = ReadResultTable(sheet);
  const auto found = std::ranges::find(table.rows, row, &ResultRow::name);
  return found != table.rows.end() ? found->Number(column) : throw Error("no row " + std::string(row));
}
double Cell(const Spreadsheet& sheet, const ResultColumn& statistic, const ResultColumn& column = kValue) {
  return ReadResultTable(sheet).Row(statistic).Number(column);
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
  EXPECT_GE(Cell(*table, "normal_p"_column), 0.05);
  // The quantiles of 2000 evenly spread probabilities scatter a little less than their distribution.
  EXPECT_NEAR(Cell(*table, "ppl"_column), 1, 2e-3);
  EXPECT_NEAR(Cell(*table, "ppu"_column), 1.5, 3e-3);
  EXPECT_NEAR(Cell(*table, "pp"_column), 1.25, 3e-3);
  EXPECT_NEAR(Cell(*table, "ppk"_column), 1, 2e-3);
  EXPECT_NEAR(Cell(*table, "cpm"_column), 1, 2e-3);
  EXPECT_NEAR(Cell(*table, "overall_below"_column), 1349.9, 20);
  EXPECT_LT(Cell(*table, "ppk"_column, "lower"_column), 1);
  EXPECT_GT(Cell(*table, "ppk"_column, "upper"_column), 1);
  EXPECT_LT(Cell(*table, "cpk"_column, "lower"_column), Cell(*table, "cpk"_column));
  for (const ResultColumn* row : {&"low_point"_column, &"percentile_ppk"_column, &"percentile_total"_column})
    EXPECT_TRUE(std::isnan(Cell(*table, *row))) << row->identifier;
}

// Y = 3 A - 2 B of independent normal predictors is normal: mean 22, variance 40.
ProfilerDesign LinearDesign(std::int32_t runs, std::int32_t seed) {
  ProfilerDesign design;
  design.runs = runs;
  design.seeded = true;
  design.seed = seed;
  for (const auto& [name, mean, deviation] : {std::tuple{"A", 10.0, 2.0}, std::tuple{"B", 4.0, 1.0}}) {
    ProfilerPredictor predictor;
    predictor.name = name;
    predictor.setting = PredictorSetting::kRandom;
    predictor.specification.values = {mean, deviation};
    design.AddPredictor(std::move(predictor));
  }
  ProfilerDependent dependent;
  dependent.name = "Y";
  dependent.formula = "3*A - 2*B";
  dependent.limits = {10, 34, kNan};
  design.AddDependent(std::move(dependent));
  return design;
}

// The share of 1000 designs of 500 runs whose 95 % limits hold the true value. Limits between order statistics
// and those of a proportion hold it somewhat more often than 95 %; the standard error of a share is 0.7 %.
TEST(ResultDocuments, LimitsOfIndependentRunsHoldTheTrueValue) {
  constexpr int kDesigns = 1000;
  constexpr std::int32_t kRuns = 500;
  const double deviation = std::sqrt(40);
  const std::vector<double> parameters{22, deviation};
  const SpecifiedDistribution truth(DistributionCode::kNormal, parameters, 0);
  VariableFit noFit;
  noFit.invalid = true;
  NoProgress port;
  std::map<std::string, int> held;
  const auto count = [&](const std::string& name, const Spreadsheet& table, const auto& row, double value) {
    const bool holds = Cell(table, row, "lower"_column) <= value && value <= Cell(table, row, "upper"_column);
    held[name] += holds ? 1 : 0;
  };
  for (int i = 0; i < kDesigns; ++i) {
    const ProfilerDesign design = LinearDesign(kRuns, 1000 + i);
    const auto run = RunProfiler(design, port);
    ASSERT_TRUE(static_cast<bool>(run));
    const SimulatedResponse response{*run->output, 2, 0, design.dependents[0].limits, run->independent};
    const auto summary = SummaryDocuments(response);
    const Spreadsheet& percentiles = *summary[static_cast<std::size_t>(SummaryDocument::kPercentiles)];
    for (const double percent : {5.0, 50.0, 95.0})
      count("P" + ShortestNumber(percent), percentiles, "P" + ShortestNumber(percent),
            truth.Quantile(percent / 100));
    const auto capability = CapabilityDocument(response, noFit);
    count("Ppk", *capability, "ppk"_column, 12 / (3 * deviation));
    count("Pp", *capability, "pp"_column, 24 / (6 * deviation));
    count("PPM", *capability, "observed_total"_column, 1e6 * (truth.Cdf(10) + truth.Complement(34)));
  }
  EXPECT_EQ(held.size(), 6U);
  for (const auto& [name, number] : held) {
    RecordProperty(name, number);
    EXPECT_GE(number, 0.935 * kDesigns) << name;
    EXPECT_LE(number, 0.985 * kDesigns) << name;
  }
}

// Those of stratified runs are far wider than their values scatter: none are given, and the tables say why.
TEST(ResultDocuments, StratifiedRunsHaveNoLimits) {
  ProfilerDesign design = LinearDesign(500, 1);
  design.simulateCorrelations = true;
  NoProgress port;
  const auto run = RunProfiler(design, port);
  ASSERT_TRUE(static_cast<bool>(run));
  EXPECT_FALSE(run->independent);
  const SimulatedResponse response{*run->output, 2, 0, design.dependents[0].limits, run->independent};
  const auto summary = SummaryDocuments(response);
  const Spreadsheet& percentiles = *summary[static_cast<std::size_t>(SummaryDocument::kPercentiles)];
  VariableFit noFit;
  noFit.invalid = true;
  const auto capability = CapabilityDocument(response, noFit);
  const Spreadsheet* tables[] = {&percentiles, capability.get()};
  for (const Spreadsheet* table : tables) {
    EXPECT_EQ(table->Title().find("Y: the normal"), std::string::npos) << "nothing was tested";
    EXPECT_NE(table->Title().find("\nNo confidence limits and p-values are given"), std::string::npos)
        << table->Title();
    const ResultTable rows = ReadResultTable(*table);
    for (const ResultRow& row : rows.rows) {
      EXPECT_TRUE(std::isnan(row.Number("lower"_column))) << row.name;
      EXPECT_TRUE(std::isnan(row.Number("upper"_column))) << row.name;
    }
  }
  EXPECT_NEAR(Cell(percentiles, "P50"), 22, 0.1);
  const Spreadsheet& correlations = *summary[static_cast<std::size_t>(SummaryDocument::kCorrelations)];
  EXPECT_GT(Cell(correlations, "A", "spearman"_column), 0.5);
  EXPECT_TRUE(std::isnan(Cell(correlations, "A", "spearman_p"_column)));
  EXPECT_TRUE(std::isnan(Cell(*capability, "normal_p"_column)));
  design.predictors[0].setting = PredictorSetting::kFixed;
  design.predictors[0].fixedValue = 10;
  EXPECT_TRUE(RunProfiler(design, port)->independent) << "a single random predictor has no correlations";
}

// A² is 2.21 where both parameters are fitted: a p-value near 1e-5, though a test for known parameters sees nothing.
TEST(CapabilityDocument, TheNormalityTestAllowsForTheFittedParameters) {
  auto values = Quantiles(DistributionCode::kLogNormal, {0, 0.25}, 300, 67);
  const NormalityTest test = TestNormality(values);
  ASSERT_NEAR(test.statistic, 2.2, 1.0);
  const auto table = CapabilityOf(values, {0.2, 3, kNan});
  EXPECT_EQ(Cell(*table, "normal_p"_column), test.pValue);
  EXPECT_LT(test.pValue, 0.005);
  EXPECT_FALSE(std::isnan(Cell(*table, "high_point"_column)));
  EXPECT_NE(table->Title().find(
                "\nY: the normal distribution is rejected at 5 %. The indices by percentiles apply"),
            std::string::npos)
      << table->Title();
}

// Two separate humps: no distribution with one comes closer than the normal, which is far off.
TEST(CapabilityDocument, ARejectedNormalDistributionWithoutABetterOneIsSaid) {
  auto values = Quantiles(DistributionCode::kNormal, {0, 1}, 200, 67);
  const auto right = Quantiles(DistributionCode::kNormal, {9, 1}, 200, 67);
  values.insert(values.end(), right.begin(), right.end());
  VariableFit normalOnly;
  normalOnly.name = "Y";
  const Spreadsheet sheet = SheetOf({{"Y", values}});
  const auto table = CapabilityDocument({sheet, 0, 0, {-3, 12, kNan}}, normalOnly);
  EXPECT_LT(Cell(*table, "normal_p"_column), 0.05);
  EXPECT_TRUE(std::isnan(Cell(*table, "high_point"_column)));
  EXPECT_NE(table->Title().find("\nY: the normal distribution is rejected at 5 %, and no other fits better."),
            std::string::npos)
      << table->Title();
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
               {{kNan, high, kNan}, kNan, kNan, 1, kNan, 1350},
               {{low, kNan, kNan}, kNan, 1, kNan, 1350, kNan}};
  const auto near = [](double value, double expected, double tolerance) {
    return std::isnan(expected) ? std::isnan(value) : std::abs(value - expected) <= tolerance;
  };
  for (const auto& c : cases) {
    const auto table = CapabilityOf(values, c.limits);
    const std::vector<ResultRow> rows = ReadResultTable(*table).rows;
    EXPECT_EQ(rows.back().Text("description"_column).substr(0, 10), "Log Normal");
    EXPECT_TRUE(std::isnan(rows.front().Number("description"_column)));
    EXPECT_LT(Cell(*table, "normal_p"_column), 0.05);
    EXPECT_NEAR(Cell(*table, "high_point"_column), high, 0.03 * high);
    EXPECT_NEAR(Cell(*table, "median_point"_column), 1, 0.01);
    EXPECT_TRUE(near(Cell(*table, "percentile_pp"_column), c.potential, 0.03));
    EXPECT_TRUE(near(Cell(*table, "percentile_ppl"_column), c.lower, 0.03));
    EXPECT_TRUE(near(Cell(*table, "percentile_ppu"_column), c.upper, 0.03));
    EXPECT_NEAR(Cell(*table, "percentile_ppk"_column), 1, 0.03);
    EXPECT_TRUE(near(Cell(*table, "percentile_below"_column), c.below, 300));
    EXPECT_TRUE(near(Cell(*table, "percentile_above"_column), c.above, 300));
    EXPECT_TRUE(near(Cell(*table, "cp"_column), c.potential, 5)) << "Cp of a one-sided specification";
  }
}

// A normal fit of another place expects hardly any part beyond limits that a tenth of the values miss.
TEST(CapabilityDocument, AFitThatTheObservedPartsContradictIsDoubted) {
  const auto values = Quantiles(DistributionCode::kLogNormal, {0, 0.4}, 400, 67);
  const Spreadsheet sheet = SheetOf({{"Y", values}});
  const double limit = std::exp(0.4 * 1.2816);
  const struct {
    double shape;
    bool isDoubted;
  } cases[] = {{0.4, false}, {0.1, true}};
  for (const auto& c : cases) {
    const SimulatedResponse response{sheet, 0, 0, {kNan, limit, kNan}};
    NoProgress port;
    VariableFit fit = FitResponse(response, port);
    for (DistributionFit& one : fit.fits) {
      one.specification.code = DistributionCode::kLogNormal;
      one.specification.values = {0, c.shape};
    }
    const auto table = CapabilityDocument(response, fit);
    ASSERT_FALSE(std::isnan(Cell(*table, "percentile_above"_column)));
    EXPECT_EQ(table->Title().find("the fitted distribution does not describe this tail") != std::string::npos,
              c.isDoubted)
        << table->Title();
  }
}

TEST(CapabilityDocument, AFewValuesHaveNoIndices) {
  std::vector<double> values;
  for (int i = 0; i < 210; ++i) values.push_back(i % 21);
  const auto many = CapabilityOf(values, {0.5, 19, kNan});
  EXPECT_FALSE(std::isnan(Cell(*many, "ppk"_column)));
  for (double& value : values) value = std::min(value, 19.0);
  const auto few = CapabilityOf(values, {0.5, 18, 10});
  for (const ResultColumn* row : {&"cp"_column, &"cpk"_column, &"cpm"_column, &"ppk"_column,
                                  &"within_total"_column, &"overall_total"_column, &"normal_p"_column})
    EXPECT_TRUE(std::isnan(Cell(*few, *row))) << row->identifier;
  EXPECT_NEAR(Cell(*few, "observed_total"_column), 1e6 * (10 + 20) / 210, 1e-6);
  EXPECT_GT(Cell(*few, "observed_total"_column, "upper"_column), 1e6 * 30 / 210);
  EXPECT_NE(few->Title().find("\nY: no indices and no expected PPM are given"), std::string::npos);
}

TEST(CapabilityDocument, RunsWithoutPredictionAreCountedAndLeftOut) {
  const auto table = CapabilityOf({1, kNan, 2, kInfinity, 3, 4, -kInfinity}, {0, 3.5, kNan});
  EXPECT_EQ(Cell(*table, "n"_column), 4);
  EXPECT_EQ(Cell(*table, "missing"_column), 3);
  EXPECT_EQ(Cell(*table, "mean"_column), 2.5);
  EXPECT_EQ(Cell(*table, "observed_above"_column), 250000);
  EXPECT_EQ(Cell(*table, "observed_below"_column), 0);
  EXPECT_TRUE(std::isnan(Cell(*CapabilityOf({1, 2, 4}, {kNan, 3.5, kNan}), "observed_below"_column)));
  EXPECT_EQ(Cell(*table, "usl"_column), 3.5);
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
    EXPECT_TRUE(std::isnan(Cell(*CapabilityDocument(response, fit), "percentile_ppk"_column)));
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
  EXPECT_NEAR(Cell(table, "A", "standardized_coefficient"_column), 3 / std::sqrt(10), 0.02);
  EXPECT_NEAR(Cell(table, "B", "standardized_coefficient"_column), -1 / std::sqrt(10), 0.02);
  EXPECT_NEAR(Cell(table, "All predictors", "linear_contribution"_column), 1, 1e-9);
  EXPECT_EQ(Cell(table, "All predictors", "contribution_to_variance"_column), 1);
  EXPECT_TRUE(std::isnan(Cell(table, "Fixed", "standardized_coefficient"_column)));
  const Spreadsheet& correlations = *documents[static_cast<std::size_t>(SummaryDocument::kCorrelations)];
  EXPECT_EQ(Rows(correlations), (std::vector<std::string>{"B", "Fixed", "A"}));
  EXPECT_NEAR(Cell(correlations, "A", "pearson"_column), 3 / std::sqrt(10), 0.02);
  EXPECT_LT(Cell(correlations, "B", "spearman"_column), -0.25);
  EXPECT_LT(Cell(correlations, "A", "spearman_p"_column), 1e-10);
}

TEST_F(LinearResponse, TablesDescribeTheResponseAskedForAndNoOther) {
  const auto documents = SummaryDocuments(response);
  const auto document = [&](SummaryDocument which) -> const Spreadsheet& {
    return *documents[static_cast<std::size_t>(which)];
  };
  const Spreadsheet& statistics = document(SummaryDocument::kStatistics);
  EXPECT_EQ(statistics.Title(), "Statistics of Y");
  EXPECT_EQ(Cell(statistics, "Y", "n"_column), kRuns);
  EXPECT_NEAR(Cell(statistics, "Y", "standard_deviation"_column), std::sqrt(10), 0.1);
  const Spreadsheet& percentiles = document(SummaryDocument::kPercentiles);
  for (std::size_t i = 0; i < percentiles.CaseCount(); ++i) {
    const std::string row(percentiles.CaseName(i));
    const double value = Cell(percentiles, row);
    EXPECT_TRUE(i == 0 || value > percentiles.VariableAt(0).Values()[i - 1]) << row;
    // 1000 runs have no limit beyond their outermost points.
    EXPECT_FALSE(Cell(percentiles, row, "lower"_column) > value) << row;
    EXPECT_FALSE(Cell(percentiles, row, "upper"_column) < value) << row;
  }
  EXPECT_TRUE(std::isnan(Cell(percentiles, "P0.135", "lower"_column)));
  EXPECT_GE(Cell(percentiles, "P50", "coverage"_column), 0.95);
  const Spreadsheet& frequencies = document(SummaryDocument::kFrequencies);
  const std::string last(frequencies.CaseName(frequencies.CaseCount() - 1));
  EXPECT_EQ(Cell(frequencies, last, "cumulative_count"_column), kRuns);
  EXPECT_NEAR(Cell(frequencies, last, "cumulative_percent"_column), 100, 1e-9);
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
