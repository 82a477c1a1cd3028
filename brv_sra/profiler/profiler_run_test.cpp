#include "brv_sra/profiler/profiler_run.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>

#include "brv_sra/profiler/dialogs/profiler_graphs.h"
#include "brv_sra/profiler/profiler_models.h"
#include "host/analysis/ports/headless_user_interface.h"
#include "host/base/error.h"
#include "host/base/parallel.h"
#include "host/numeric/random/random_stream.h"
#include "host/statistics/moments.h"

namespace brenvolt::sra {
namespace {

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

ProfilerPredictor Normal(const std::string& name, double mean, double deviation) {
  ProfilerPredictor predictor;
  predictor.name = name;
  predictor.setting = PredictorSetting::kRandom;
  predictor.specification.values = {mean, deviation};
  return predictor;
}

ProfilerDependent ByFormula(const std::string& name, const std::string& formula) {
  ProfilerDependent dependent;
  dependent.name = name;
  dependent.formula = formula;
  return dependent;
}

// A and B are standard normal, C is fixed at 3; Y = A + 10 C.
ProfilerDesign Design() {
  ProfilerDesign design;
  design.runs = 2000;
  design.seeded = true;
  design.seed = 7;
  design.AddPredictor(Normal("A", 0, 1));
  design.AddPredictor(Normal("B", 5, 2));
  ProfilerPredictor fixed;
  fixed.name = "C";
  fixed.setting = PredictorSetting::kFixed;
  fixed.fixedValue = 3;
  design.AddPredictor(fixed);
  design.AddDependent(ByFormula("Y", "A + 10 * C"));
  return design;
}

void Correlate(std::vector<double>& matrix, std::size_t k, std::size_t i, std::size_t j, double value) {
  matrix[i * k + j] = matrix[j * k + i] = value;
}

std::vector<double> Values(const ProfilerRun& run, std::size_t column) {
  const auto values = run.output->VariableAt(column).Values();
  return {values.begin(), values.end()};
}

Moments MomentsOf(std::span<const double> values) {
  MomentAccumulator sums;
  for (const double value : values) sums.Add(value, 1);
  return sums.Finish();
}

double Correlation(std::span<const double> x, std::span<const double> y) {
  const Moments a = MomentsOf(x);
  const Moments b = MomentsOf(y);
  double sum = 0;
  for (std::size_t i = 0; i < x.size(); ++i) sum += (x[i] - a.mean) * (y[i] - b.mean);
  return sum / static_cast<double>(x.size() - 1) / (a.standardDeviation * b.standardDeviation);
}

struct ProfilerRuns : testing::Test {
  HeadlessUserInterface port;
};

// The order of draws in the header is what makes a seed reproduce its results.
TEST_F(ProfilerRuns, OutputHoldsDrawsFixedValuesAndPredictionsInTheOrderOfTheStream) {
  const ProfilerRun run = *RunProfiler(Design(), port);
  ASSERT_NE(run.output, nullptr);
  ASSERT_EQ(run.output->VariableCount(), 4U);
  ASSERT_EQ(run.output->CaseCount(), 2000U);
  const std::vector<double> a = Values(run, 0);
  const std::vector<double> c = Values(run, 2);
  EXPECT_EQ(std::ranges::count(c, 3.0), 2000);
  for (std::size_t i = 0; i < a.size(); ++i) ASSERT_EQ(Values(run, 3)[i], a[i] + 30.0);
  EXPECT_NEAR(MomentsOf(a).standardDeviation, 1, 0.05);
  EXPECT_NEAR(MomentsOf(Values(run, 1)).mean, 5, 0.15);
  // Noise follows the draws of all predictors.
  ProfilerDesign noisy = Design();
  noisy.dependents[0].addNoise = true;
  noisy.dependents[0].standardDeviation = 0.5;
  const ProfilerRun second = *RunProfiler(noisy, port);
  const std::uint64_t end = ProcessStreamPosition();
  std::vector<double> deviates(2000);
  RandomStream(7).FillNormal(end - 2000, 1.0, deviates);
  EXPECT_EQ(Values(second, 0), a);
  for (std::size_t i = 0; i < a.size(); ++i)
    ASSERT_DOUBLE_EQ(Values(second, 3)[i], a[i] + 30.0 + 0.5 * deviates[i]);
}

TEST_F(ProfilerRuns, SameSeedGivesTheSameBytesAtAnyNumberOfThreads) {
  for (const bool correlated : {false, true}) {
    ProfilerDesign design = Design();
    design.runs = 20000;
    design.simulateCorrelations = correlated;
    Correlate(design.correlations, 3, 0, 1, 0.7);
    design.dependents[0].addNoise = true;
    design.dependents[0].standardDeviation = 1;
    const ProfilerRun all = *RunProfiler(design, port);
    const ThreadLimit one(1);
    const ProfilerRun alone = *RunProfiler(design, port);
    for (std::size_t j = 0; j < 4; ++j) EXPECT_EQ(Values(all, j), Values(alone, j)) << correlated;
    design.seed = 8;
    EXPECT_NE(Values(*RunProfiler(design, port), 0), Values(all, 0)) << "another seed";
  }
}

TEST_F(ProfilerRuns, CorrelationsAreImposedOnStratifiedDrawsOnlyWhereTheyAreAskedFor) {
  ProfilerDesign design = Design();
  Correlate(design.correlations, 3, 0, 1, -0.6);
  EXPECT_NEAR(Correlation(Values(*RunProfiler(design, port), 0), Values(*RunProfiler(design, port), 1)), 0,
              0.06);
  design.simulateCorrelations = true;
  const ProfilerRun run = *RunProfiler(design, port);
  EXPECT_NEAR(Correlation(Values(run, 0), Values(run, 1)), -0.6, 0.01);
  EXPECT_FALSE(run.repair.has_value());
  // One value in each of the strata of equal probability.
  std::vector<double> a = Values(run, 0);
  std::ranges::sort(a);
  for (std::size_t i = 0; i < a.size(); ++i) {
    const double p = 0.5 * std::erfc(-a[i] / std::sqrt(2.0)) * 2000;
    ASSERT_GE(p, static_cast<double>(i) - 1e-6);
    ASSERT_LE(p, static_cast<double>(i + 1) + 1e-6);
  }
}

TEST_F(ProfilerRuns, MatrixThatIsNotPositiveDefiniteIsRepairedAndReported) {
  ProfilerDesign design = Design();
  design.predictors[2] = Normal("C", 0, 1);
  design.simulateCorrelations = true;
  Correlate(design.correlations, 3, 0, 1, 0.9);
  Correlate(design.correlations, 3, 0, 2, 0.9);
  Correlate(design.correlations, 3, 1, 2, -0.9);
  const ProfilerRun run = *RunProfiler(design, port);
  ASSERT_NE(run.output, nullptr);
  ASSERT_TRUE(run.repair.has_value());
  EXPECT_LT(run.repair->smallestEigenvalue, 0);
  EXPECT_NEAR(Correlation(Values(run, 0), Values(run, 1)), run.repair->matrix[3], 0.03);
}

TEST_F(ProfilerRuns, MultivariateNoiseHasTheCovarianceOfMatrixAndDeviations) {
  ProfilerDesign design = Design();
  design.runs = 50000;
  design.AddDependent(ByFormula("Z", "0 * A"));
  design.AddDependent(ByFormula("Quiet", "B"));
  design.AddDependent(ByFormula("Still", "B"));
  for (const std::size_t k : {0U, 1U, 3U}) design.dependents[k].addNoise = true;
  design.dependents[0].formula = "0 * A";
  design.dependents[0].standardDeviation = 2;
  design.dependents[1].standardDeviation = 0.5;
  design.dependents[3].standardDeviation = 0;  // has none, and makes nothing singular
  Correlate(design.correlationsY, 4, 0, 1, 0.8);
  const ProfilerRun run = *RunProfiler(design, port);
  ASSERT_NE(run.output, nullptr);
  EXPECT_NEAR(MomentsOf(Values(run, 3)).standardDeviation, 2, 0.03);
  EXPECT_NEAR(MomentsOf(Values(run, 4)).standardDeviation, 0.5, 0.01);
  EXPECT_NEAR(Correlation(Values(run, 3), Values(run, 4)), 0.8, 0.01);
  EXPECT_EQ(Values(run, 5), Values(run, 1)) << "no noise was asked for";
  EXPECT_EQ(Values(run, 6), Values(run, 1)) << "a deviation of 0 adds nothing";
}

TEST_F(ProfilerRuns, MissingPredictionsAreKeptAndCounted) {
  ProfilerDesign design = Design();
  design.dependents[0].formula = "log(A)";
  design.dependents[0].addNoise = true;
  design.dependents[0].standardDeviation = 1;
  design.AddDependent(ByFormula("None", "1 / (C - 3)"));
  const ProfilerRun run = *RunProfiler(design, port);
  ASSERT_NE(run.output, nullptr);
  const std::vector<double> a = Values(run, 0);
  const std::vector<double> y = Values(run, 3);
  for (std::size_t i = 0; i < a.size(); ++i) EXPECT_EQ(std::isnan(y[i]), a[i] <= 0);
  EXPECT_TRUE(std::ranges::all_of(Values(run, 4), [](double v) { return std::isnan(v); }));
}

TEST_F(ProfilerRuns, FaultyDesignsAreRefusedWithTheirFaultAndDrawNothing) {
  using enum FaultIdentifier;
  const auto second = [](ProfilerDesign& design) {
    design.AddDependent(ByFormula("Z", "B"));
    for (ProfilerDependent& dependent : design.dependents) {
      dependent.addNoise = true;
      dependent.standardDeviation = 2;
    }
  };
  const struct {
    Fault fault;
    std::function<void(ProfilerDesign&)> spoil;
  } rows[] = {
      {{kNoRandomPredictor}, [](auto& design) { design = ProfilerDesign(); }},
      {{kNoRandomPredictor},
       [](auto& design) {
         for (auto& predictor : design.predictors) predictor.setting = PredictorSetting::kFixed;
       }},
      {{kFormulaInvalid, "Y", "formula for Y, character 5: ')' is missing"},
       [](auto& design) { design.dependents[0].formula = "(A+1"; }},
      {{kFormulaInvalid, "Y", "formula for Y, character 1: unknown name 'Q'"},
       [](auto& design) { design.dependents[0].formula = "Q"; }},
      {{kNothingPredicts, "Y"}, [](auto& design) { design.dependents[0].formula = ""; }},
      {{kFormulaPredictorUnspecified, "Y", "C"},
       [](auto& design) { design.predictors[2].setting = PredictorSetting::kNone; }},
      {{kInvalidNoise, "Y"}, [](auto& design) { design.dependents[0].addNoise = true; }},
      {{kSingularNoise},
       [&](auto& design) {
         second(design);
         Correlate(design.correlationsY, 2, 0, 1, 1.0);
       }},
      {{kTruncationNotSampled, "A", "Normal(location=0.0000, scale=1.0000)"},
       [](auto& design) {
         design.predictors[0].specification.truncateBelow = true;
         design.predictors[0].specification.truncationMinimum = 2000;
       }},
      {{kCorrelationsUnusable},
       [](auto& design) {
         design.simulateCorrelations = true;
         Correlate(design.correlations, 3, 0, 1, kNone);
       }},
  };
  for (const auto& row : rows) {
    ProfilerDesign design = Design();
    row.spoil(design);
    EXPECT_EQ(RunProfiler(design, port).Reason(), row.fault);
  }
}

TEST_F(ProfilerRuns, CancellingEndsTheRun) {
  port.pollInterval = std::chrono::milliseconds(0);
  port.cancelled = true;
  ProfilerDesign design = Design();
  design.runs = 100000;
  EXPECT_THROW((void)RunProfiler(design, port), UserCancelled);
}

// ---- Graphs

TEST_F(ProfilerRuns, ProfilesFormAMatrixAndNoteWhatTheyLeaveOut) {
  ProfilerDesign design = Design();
  design.AddDependent(ByFormula("Z", "sqrt(B)"));
  const ProfilerRun run = *RunProfiler(design, port);
  const Graph graph = ProfileGraph(ColumnsOf(*run.output, 3, design), port);
  EXPECT_EQ(graph.title, "Profiles for predicted values");
  ASSERT_EQ(graph.panels.size(), 6U);
  EXPECT_EQ(graph.panelColumns, 3U);
  EXPECT_EQ(graph.extraWidth, 1915);
  EXPECT_EQ(graph.extraHeight, 0);
  EXPECT_EQ(graph.panels[1].title, "Y / B");
  EXPECT_EQ(graph.panels[3].title, "Z / A");
  const GraphSeries& points = graph.panels[0].series[0];
  ASSERT_EQ(points.x.size(), 1000U);
  for (std::size_t i = 0; i < points.x.size(); ++i) EXPECT_EQ(points.y[i], points.x[i] + 30);
  const GraphSeries& means = graph.panels[0].series[1];
  ASSERT_EQ(means.x.size(), 20U);
  for (std::size_t i = 1; i + 1 < means.x.size(); ++i) EXPECT_NEAR(means.y[i], means.x[i] + 30, 0.05);
  EXPECT_EQ(graph.notes.front(), "Y: 1000 of 2000 points are shown");
}

TEST_F(ProfilerRuns, MoreThan1024CellsAreNotPlotted) {
  const struct {
    std::size_t predictors;
    std::size_t dependents;
    bool fits;
  } rows[] = {{32, 32, true}, {33, 32, false}, {33, 1, true}, {1024, 1, true}, {1025, 1, false}};
  const std::vector<double> values{1, 2, 3, 4};
  for (const auto& row : rows) {
    ProfiledColumns columns;
    columns.predictors.assign(row.predictors, {"x", values});
    columns.responses.assign(row.dependents, {"y", values, {}});
    if (row.fits) {
      EXPECT_EQ(ProfileGraph(columns, port).panels.size(), row.predictors * row.dependents);
      continue;
    }
    try {
      ProfileGraph(columns, port);
      ADD_FAILURE() << row.predictors;
    } catch (const Error& error) {
      EXPECT_STREQ(error.what(), "Too Many Graphs to plot. Maximum allowed is 32 predictors.");
    }
  }
}

TEST_F(ProfilerRuns, DependentWithoutAnyPredictionCannotBePlotted) {
  const std::vector<double> values{1, 2};
  const std::vector<double> missing{kNone, kNone};
  const ProfiledColumns columns{{{"x", values}}, {{"y", missing, {}}}};
  try {
    ProfileGraph(columns, port);
    ADD_FAILURE();
  } catch (const Error& error) {
    EXPECT_STREQ(error.what(),
                 "Graph creation failed.  Please review distribution parameters for appropriate values.");
    EXPECT_EQ(error.Where(), "y");
  }
}

}  // namespace
}  // namespace brenvolt::sra
