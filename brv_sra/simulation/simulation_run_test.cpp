#include "brv_sra/simulation/simulation_run.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/simulation/sampling/sample_generation.h"
#include "brv_sra/simulation/simulation_summary.h"
#include "host/analysis/ports/headless_user_interface.h"
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
  Result<SimulationRun> Run() { return RunSimulation(design, true, kSeed, userInterface); }
  // Of a run that must fail.
  Fault FaultOfRun() { return Run().Reason(); }
};

// Spearman's correlation of normal scores of correlation r (Pearson 1907).
double SpearmanOfNormal(double r) {
  return 6 / std::numbers::pi * std::asin(r / 2);
}

TEST_F(SimulationRuns, OnlyCorrelatedMethodsCorrelateAndTheyMeetTheirTarget) {
  const struct {
    SimulationMethod method;
    bool correlated;
  } methods[] = {{SimulationMethod::kMonteCarlo, false},
                 {SimulationMethod::kLatinHypercube, false},
                 {SimulationMethod::kImanConover, true},
                 {SimulationMethod::kLatinHypercubeImanConover, true}};
  for (const auto& method : methods) {
    SCOPED_TRACE(static_cast<int>(method.method));
    design.method = method.method;
    const Result<SimulationRun> run = Run();
    ASSERT_TRUE(run);
    ASSERT_EQ(run->correlations.has_value(), method.correlated);
    if (!method.correlated) continue;
    EXPECT_FALSE(run->correlations->repair);
    EXPECT_EQ(run->correlations->asked, design.correlations);
    EXPECT_EQ(run->correlations->Used(), design.correlations);
    const ReachedCorrelations reached = CorrelateOutput(*run->output, userInterface);
    for (std::size_t i = 0; i < 9; ++i)
      EXPECT_NEAR(reached.spearman[i], SpearmanOfNormal(design.correlations[i]), 0.02);
    // Two normal variables: the scores' correlation is that of the values.
    EXPECT_NEAR(reached.pearson[2], -0.3, 0.02);
  }
}

TEST_F(SimulationRuns, NormalToAnythingSucceedsAndProducesNothing) {
  design.method = SimulationMethod::kNormalToAnything;
  design.correlations.clear();
  const Result<SimulationRun> run = Run();
  ASSERT_TRUE(run);
  EXPECT_EQ(run->output, nullptr);
}

TEST_F(SimulationRuns, ExcludedVariableTakesItsCorrelationsAlong) {
  design.excluded = {1};
  for (const std::size_t entry : {1U, 3U, 5U, 7U}) design.correlations[entry] = kNaN;
  const Result<SimulationRun> run = Run();
  ASSERT_TRUE(run);
  ASSERT_EQ(run->output->VariableCount(), 2U);
  EXPECT_EQ(run->output->VariableAt(1).Name(), "c");
  EXPECT_EQ(run->correlations->asked, (std::vector<double>{1, -0.3, -0.3, 1}));
}

TEST_F(SimulationRuns, WhatCannotBeSimulatedFailsWithItsFault) {
  using enum FaultIdentifier;
  design.correlations[7] = kNaN;
  EXPECT_EQ(FaultOfRun(), (Fault{kCorrelationMissing, "b", "c"})) << "only the triangle below is read";
  design.correlations.clear();
  EXPECT_EQ(FaultOfRun().identifier, kCorrelationMissing) << "no matrix";
  design.excluded = {0, 1};
  EXPECT_TRUE(Run()) << "one variable needs none";
  design.excluded = {0, 1, 2};
  EXPECT_EQ(FaultOfRun(), Fault{kNotSampled});
  design.excluded.clear();
  design.correlations.assign(9, 0);
  design.variables[2].specification.values[1] = -1;
  EXPECT_EQ(FaultOfRun().identifier, kTruncationNotSampled);
  EXPECT_EQ(FaultOfRun().about, "c");
}

TEST_F(SimulationRuns, IndefiniteMatrixIsRepairedAndReported) {
  for (const std::size_t entry : {1U, 2U, 3U, 5U, 6U, 7U}) design.correlations[entry] = -0.9;
  const Result<SimulationRun> run = Run();
  ASSERT_TRUE(run);
  ASSERT_TRUE(run->correlations->repair);
  EXPECT_NEAR(run->correlations->repair->smallestEigenvalue, 1 - 2 * 0.9, 1e-12);
  EXPECT_EQ(run->correlations->asked[5], -0.9);
  // Three equal correlations cannot be less than -1/2.
  EXPECT_NEAR(run->correlations->Used()[5], -0.5, 1e-12);
  EXPECT_NEAR(CorrelateOutput(*run->output, userInterface).spearman[5], SpearmanOfNormal(-0.5), 0.02);
}

TEST_F(SimulationRuns, ErrorWhileProgressIsShownEndsTheReorderingWithItsText) {
  struct FailingPort : HeadlessUserInterface {
    void ShowProgress(std::string_view, std::int64_t, std::int64_t) override { throw Error("no display"); }
    std::chrono::milliseconds PollInterval() const override { return std::chrono::milliseconds(0); }
  } port;
  EXPECT_EQ(RunSimulation(design, true, kSeed, port).Reason(),
            (Fault{FaultIdentifier::kReorderingEnded, "no display"}));
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
  // Only what is below the diagonal counts.
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
  const SimulationRun run =
      *RunSimulation(*ReadDesign(SheetPropertyStore(sheet, SpacedKey), options), true, kSeed, userInterface);
  ASSERT_NE(run.output, nullptr);
  EXPECT_EQ(run.output->VariableAt(0).Labels(), (std::map<double, std::string>{{1, "pass"}}));
  EXPECT_TRUE(run.output->VariableAt(1).Labels().empty());
}

}  // namespace
}  // namespace brenvolt::sra
