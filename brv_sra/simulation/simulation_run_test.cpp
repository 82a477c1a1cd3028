#include "brv_sra/simulation/simulation_run.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

#include "brv_sra/simulation/sample_generation.h"
#include "brv_sra/simulation/simulation_summary.h"
#include "host/analysis/headless_user_interface.h"
#include "host/base/error.h"

namespace brenvolt::sra {
namespace {

using enum DistributionCode;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kSeed = 11;

struct SimulationRuns : testing::Test {
  HeadlessUserInterface userInterface;
  SimulationDesign design;

  SimulationRuns() {
    design.numberOfSamples = 1000;
    design.method = SimulationMethod::kImanConover;
    design.variables = {{1, "a", {.code = kNormal, .values = {5, 2}}, {}},
                        {2, "b", {.code = kRayleigh, .values = {3}, .offset = 0}, {}},
                        {3, "c", {.code = kNormal, .values = {-1, 0.5}}, {}}};
    design.correlations = {1, 0.5, -0.3, 0.5, 1, 0.2, -0.3, 0.2, 1};
  }
  SimulationRun Run() { return RunSimulation(design, true, kSeed, userInterface); }
};

// Spearman's correlation of normal scores of correlation r (Pearson 1907).
double SpearmanOfNormal(double r) {
  return 6 / std::numbers::pi * std::asin(r / 2);
}

double Cell(const Spreadsheet& sheet, std::size_t column, std::size_t row) {
  return sheet.VariableAt(column).Values()[row];
}

TEST_F(SimulationRuns, EachMethodHasItsTitleAndCorrelatedOnesMeetTheirTarget) {
  const struct {
    SimulationMethod method;
    const char* title;
    bool correlated;
  } methods[] = {{SimulationMethod::kMonteCarlo, "Monte Carlo method", false},
                 {SimulationMethod::kLatinHypercube, "Latin Hypercube Sampling method", false},
                 {SimulationMethod::kImanConover, "Iman Conover method", true},
                 {SimulationMethod::kLatinHypercubeImanConover, "LHS with Iman Conover method", true}};
  for (const auto& method : methods) {
    SCOPED_TRACE(method.title);
    design.method = method.method;
    const SimulationRun run = Run();
    ASSERT_EQ(run.status, SimulationStatus::kSuccess);
    EXPECT_EQ(run.output->Title(), method.title);
    ASSERT_EQ(run.correlations.has_value(), method.correlated);
    if (!method.correlated) continue;
    EXPECT_FALSE(run.correlations->repair);
    const auto summary = CorrelationSummary(*run.output, *run.correlations, userInterface);
    ASSERT_EQ(summary->CaseCount(), 3U);
    EXPECT_EQ(summary->CaseName(1), "a, c");
    const double asked[] = {0.5, -0.3, 0.2};
    for (std::size_t row = 0; row < 3; ++row) {
      EXPECT_EQ(Cell(*summary, 0, row), asked[row]);
      EXPECT_EQ(Cell(*summary, 1, row), asked[row]);
      EXPECT_NEAR(Cell(*summary, 3, row), SpearmanOfNormal(asked[row]), 0.02);
    }
    // Two normal variables: the scores' correlation is that of the values.
    EXPECT_NEAR(Cell(*summary, 2, 1), -0.3, 0.02);
  }
}

TEST_F(SimulationRuns, NormalToAnythingSucceedsAndProducesNothing) {
  design.method = SimulationMethod::kNormalToAnything;
  design.correlations.clear();
  const SimulationRun run = Run();
  EXPECT_EQ(run.status, SimulationStatus::kSuccess);
  EXPECT_EQ(run.output, nullptr);
}

TEST_F(SimulationRuns, ExcludedVariableTakesItsCorrelationsAlong) {
  design.excluded = {1};
  for (const std::size_t entry : {1U, 3U, 5U, 7U}) design.correlations[entry] = kNaN;
  const SimulationRun run = Run();
  ASSERT_EQ(run.status, SimulationStatus::kSuccess) << run.where;
  ASSERT_EQ(run.output->VariableCount(), 2U);
  EXPECT_EQ(run.output->VariableAt(1).Name(), "c");
  EXPECT_EQ(run.correlations->asked, (std::vector<double>{1, -0.3, -0.3, 1}));
}

TEST_F(SimulationRuns, WhatCannotBeSimulatedFailsWithItsStatus) {
  design.correlations[7] = kNaN;
  SimulationRun run = Run();
  EXPECT_EQ(run.status, SimulationStatus::kMatrixFailure) << "the triangle above the diagonal is not read";
  EXPECT_EQ(run.where, "the correlation of b and c is missing");
  EXPECT_EQ(run.output, nullptr);
  design.correlations.clear();
  EXPECT_EQ(Run().status, SimulationStatus::kMatrixFailure) << "no matrix";
  design.excluded = {0, 1};
  EXPECT_EQ(Run().status, SimulationStatus::kSuccess) << "one variable needs none";
  design.excluded = {0, 1, 2};
  EXPECT_EQ(Run().status, SimulationStatus::kDistributionFailure);
  design.excluded.clear();
  design.correlations.assign(9, 0);
  design.variables[2].specification.values[1] = -1;
  run = Run();
  EXPECT_EQ(run.status, SimulationStatus::kDistributionFailure);
  EXPECT_TRUE(run.where.starts_with("variable c, ")) << run.where;
}

TEST_F(SimulationRuns, IndefiniteMatrixIsRepairedAndSaidToBe) {
  for (const std::size_t entry : {1U, 2U, 3U, 5U, 6U, 7U}) design.correlations[entry] = -0.9;
  const SimulationRun run = Run();
  ASSERT_EQ(run.status, SimulationStatus::kSuccess);
  ASSERT_TRUE(run.correlations->repair);
  EXPECT_NEAR(run.correlations->repair->smallestEigenvalue, 1 - 2 * 0.9, 1e-12);
  const auto summary = CorrelationSummary(*run.output, *run.correlations, userInterface);
  EXPECT_EQ(Cell(*summary, 0, 2), -0.9);
  // Three equal correlations cannot be less than -1/2.
  EXPECT_NEAR(Cell(*summary, 1, 2), -0.5, 1e-12);
  EXPECT_NEAR(Cell(*summary, 3, 2), SpearmanOfNormal(-0.5), 0.02);
}

TEST_F(SimulationRuns, ErrorWhileProgressIsShownEndsTheReorderingWithItsText) {
  struct FailingPort : HeadlessUserInterface {
    void ShowProgress(std::string_view, std::int64_t, std::int64_t) override { throw Error("no display"); }
    std::chrono::milliseconds PollInterval() const override { return std::chrono::milliseconds(0); }
  } port;
  const SimulationRun run = RunSimulation(design, true, kSeed, port);
  EXPECT_EQ(run.status, SimulationStatus::kDistributionFailure);
  EXPECT_EQ(run.fault, "no display");
  EXPECT_EQ(run.output, nullptr);
}

TEST_F(SimulationRuns, EqualNamesHaveNoCorrelationOfTheirOwn) {
  const MatrixFile file = MatrixFile::Identity({"a", "b", "c"});
  design.variables[2].name = " a";
  EXPECT_EQ(CorrelationsByName(design, file).ambiguous, (std::vector<std::string>{"a", " a"}));
  design.excluded = {0};
  EXPECT_TRUE(CorrelationsByName(design, file).ambiguous.empty());
  EXPECT_EQ(CorrelationsByName(design, MatrixFile::Identity({"a", "a", "b"})).ambiguous,
            std::vector<std::string>{" a"});
}

TEST_F(SimulationRuns, CorrelationsAreFoundByNameInAnyOrder) {
  design.excluded = {1};
  MatrixFile file = MatrixFile::Identity({"c", "other", "a"});
  // Only what stands below the diagonal counts.
  file.correlations = {{1, 0.1, 0.7}, {0.2, 1, 0.8}, {0.3, 0.4, 1}};
  DesignCorrelations found = CorrelationsByName(design, file);
  EXPECT_TRUE(found.missing.empty()) << "an excluded variable is not missed";
  EXPECT_EQ(found.matrix[2], 0.3);
  EXPECT_EQ(found.matrix[6], 0.3);
  EXPECT_TRUE(std::isnan(found.matrix[1]));
  design.excluded.clear();
  design.variables[0].name = " a ";
  found = CorrelationsByName(design, file);
  EXPECT_EQ(found.missing, std::vector<std::string>{"b"});
}

TEST_F(SimulationRuns, UserDefinedLevelsKeepTheirTexts) {
  Spreadsheet sheet("data", 4, 2);
  const char* properties[] = {"(1; 0.25; 4; 0.75)", "(Mean=3.0)"};
  const char* keys[] = {"Histogram", "Poisson"};
  for (const std::size_t v : {0U, 1U}) {
    Variable& variable = sheet.VariableAt(v);
    variable.SetProperty(keys[v], properties[v]);
    variable.SetProperty("zOrder", std::string(keys[v]) + ";");
    variable.SetProperty("zTruncProp", "(0; 0; 0; 0)");
    variable.SetLabel(1, "pass");
    variable.SetLabel(2, "never drawn");
  }
  SimulationOptions options;
  options.variables = {1, 2};
  options.numberOfSamples = 50;
  const SimulationRun run = RunSimulation(ReadDesign(sheet, options), true, kSeed, userInterface);
  ASSERT_NE(run.output, nullptr);
  EXPECT_EQ(run.output->VariableAt(0).Labels(), (std::map<double, std::string>{{1, "pass"}}));
  EXPECT_TRUE(run.output->VariableAt(1).Labels().empty());
}

}  // namespace
}  // namespace brenvolt::sra
