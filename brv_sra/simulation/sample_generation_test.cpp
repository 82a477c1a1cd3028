#include "brv_sra/simulation/sample_generation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>

#include "brv_sra/simulation/discrete_table.h"
#include "brv_sra/simulation/simulation_run.h"
#include "brv_sra/simulation/variable_sampler.h"
#include "host/analysis/analysis_memory.h"
#include "host/analysis/headless_user_interface.h"
#include "host/base/error.h"
#include "host/numeric/distributions.h"
#include "host/numeric/kolmogorov_smirnov.h"
#include "host/numeric/random_stream.h"

namespace brenvolt::sra {
namespace {

SimulationVariable Of(DistributionCode code, std::vector<double> values, double offset = kNotSet) {
  SimulationVariable variable;
  variable.specification.code = code;
  variable.specification.values = std::move(values);
  variable.specification.offset = offset;
  return variable;
}

struct Generation : testing::Test {
  HeadlessUserInterface port;
  SimulationDesign design;

  std::vector<double> Generate(SimulationMethod method, double seed, std::int32_t samples) {
    design.numberOfSamples = samples;
    std::vector<double> matrix(static_cast<std::size_t>(samples) * design.variables.size());
    const auto progress = CKroProgressBar::new_ProgressBar(port, "", samples);
    SeedRandomStream(true, seed);
    const bool done = method == SimulationMethod::kMonteCarlo
                          ? GenerateMonteCarlo(design, matrix, *progress)
                          : GenerateLatinHypercube(design, matrix, *progress);
    EXPECT_TRUE(done);
    return matrix;
  }
  std::vector<double> Column(const std::vector<double>& matrix, std::size_t j) const {
    std::vector<double> column;
    for (std::size_t i = j; i < matrix.size(); i += design.variables.size()) column.push_back(matrix[i]);
    return column;
  }
};

// Written straight from the rules: columns in order; each value draws its fallback's uniform, then its
// candidate.
TEST_F(Generation, MonteCarloDrawsInTheFixedOrder) {
  design.variables = {Of(DistributionCode::kNormal, {10, 2}), Of(DistributionCode::kWeibull, {3, 1.5}, 1),
                      Of(DistributionCode::kLogNormal, {0, 1}, 2)};
  const auto matrix = Generate(SimulationMethod::kMonteCarlo, 7, 5);
  rnd_(-7);
  for (int i = 0; i < 100; ++i) rnd_(0);
  for (std::size_t i = 0; i < 5; ++i) {
    rnd_(0);
    EXPECT_EQ(matrix[3 * i], znormal_(2) + 10);
  }
  for (std::size_t i = 0; i < 5; ++i) EXPECT_EQ(matrix[3 * i + 1], weibull::Quantile(rnd_(0), 3, 1.5, 1));
  for (std::size_t i = 0; i < 5; ++i) {
    rnd_(0);
    EXPECT_EQ(matrix[3 * i + 2], std::exp(znormal_(1) + 0) + 2);
  }
}

TEST_F(Generation, LatinHypercubeDrawsThePermutationFirst) {
  design.variables = {Of(DistributionCode::kNormal, {0, 1})};
  const auto matrix = Generate(SimulationMethod::kLatinHypercube, 11, 6);
  rnd_(-11);
  for (int i = 0; i < 100; ++i) rnd_(0);
  std::vector<double> strata{1, 2, 3, 4, 5, 6};
  for (std::size_t t = 1; t <= 6; ++t) {
    const auto r = static_cast<std::size_t>(rnd_(0) * static_cast<double>(6 - t + 1));
    std::swap(strata[r], strata[6 - t]);
  }
  for (std::size_t i = 0; i < 6; ++i) {
    const double width = 1.0 / 6;
    EXPECT_EQ(matrix[i], normal::Quantile((strata[i] - 1) * width + rnd_(0) * width, 0, 1)) << i;
  }
}

TEST_F(Generation, ExcludedVariableStaysZeroAndDrawsNothing) {
  design.variables = {Of(DistributionCode::kNormal, {5, 1}), Of(DistributionCode::kNormal, {0, 1})};
  design.excluded = {0};
  const auto matrix = Generate(SimulationMethod::kMonteCarlo, 3, 4);
  EXPECT_EQ(Column(matrix, 0), std::vector<double>(4, 0.0));
  design.variables = {design.variables[1]};
  design.excluded = {};
  EXPECT_EQ(Generate(SimulationMethod::kMonteCarlo, 3, 4), [&] {
    std::vector<double> second;
    for (std::size_t i = 1; i < 8; i += 2) second.push_back(matrix[i]);
    return second;
  }());
}

struct Law {
  const char* name;
  DistributionCode code;
  std::vector<double> values;
  double offset;
  TestCode testCode;
};
const Law kLaws[] = {{"normal", DistributionCode::kNormal, {3, 0.5}, kNotSet, TestCode::kNormal},
                     {"log-normal", DistributionCode::kLogNormal, {1, 0.3}, -2, TestCode::kLogNormal},
                     {"Weibull", DistributionCode::kWeibull, {80, 2.2}, 5, TestCode::kWeibull},
                     {"Poisson", DistributionCode::kPoisson, {4.5}, kNotSet, TestCode::kPoisson},
                     {"Poisson, large mean", DistributionCode::kPoisson, {60}, kNotSet, TestCode::kPoisson}};

TEST_F(Generation, SamplesFollowTheirLawUnderBothMethods) {
  for (const Law& law : kLaws) {
    for (const auto method : {SimulationMethod::kMonteCarlo, SimulationMethod::kLatinHypercube}) {
      design.variables = {Of(law.code, law.values, law.offset)};
      auto sample = Generate(method, 5, 100'000);
      std::ranges::sort(sample);
      double d = 1;
      ASSERT_NE(ComputeKolmogorovSmirnovTest(law.testCode, law.values, sample,
                                             IsNotSet(law.offset) ? 0 : law.offset, d),
                0);
      std::int32_t error = 0;
      EXPECT_GT(ComputeKolmogorovSmirnovPvalue(100'000, d, error), 1e-6) << law.name << " d = " << d;
    }
  }
}

TEST_F(Generation, LatinHypercubeHoldsOneValuePerStratum) {
  design.variables = {Of(DistributionCode::kWeibull, {80, 2.2}, 5)};
  auto sample = Generate(SimulationMethod::kLatinHypercube, 5, 1000);
  std::vector<int> strata;
  for (const double x : sample) strata.push_back(static_cast<int>(weibull::Cdf(x, 80, 2.2, 5) * 1000));
  std::ranges::sort(strata);
  for (int i = 0; i < 1000; ++i) ASSERT_EQ(strata[static_cast<std::size_t>(i)], i);
}

TEST_F(Generation, TruncationHoldsUnderBothMethods) {
  const double far = normal::Quantile(1 - 1e-9, 0, 1);
  for (const auto method : {SimulationMethod::kMonteCarlo, SimulationMethod::kLatinHypercube}) {
    design.truncate = true;
    design.variables = {Of(DistributionCode::kNormal, {0, 1})};
    auto sample = Generate(method, 9, 20'000);
    EXPECT_GE(std::ranges::min(sample), normal::Quantile(0.005, 0, 1));
    EXPECT_LE(std::ranges::max(sample), normal::Quantile(0.995, 0, 1));
    design.truncate = false;
    design.variables[0].specification.truncateBelow = true;
    design.variables[0].specification.truncationMinimum = 4;
    sample = Generate(method, 9, 20'000);
    EXPECT_GE(std::ranges::min(sample), 4 * (1 - 1e-12)) << "far out, where candidates are always rejected";
    EXPECT_LT(std::ranges::max(sample), far + 3);
  }
}

TEST_F(Generation, SeedsReproduceZeroIncluded) {
  design.variables = {Of(DistributionCode::kNormal, {0, 1})};
  for (const double seed : {0.0, 1.0, 65535.0, 2147483647.0, 4294967296.0, 1e15}) {
    const auto first = Generate(SimulationMethod::kMonteCarlo, seed, 100);
    rnd_(12345);
    EXPECT_EQ(Generate(SimulationMethod::kMonteCarlo, seed, 100), first) << seed;
  }
  EXPECT_NE(Generate(SimulationMethod::kMonteCarlo, 0, 100), Generate(SimulationMethod::kMonteCarlo, 1, 100));
}

TEST(Sampler, RefusesWhatCannotBeSampled) {
  const std::pair<const char*, SimulationVariable> cases[] = {
      {"scale 0", Of(DistributionCode::kNormal, {0, 0})},
      {"NaN", Of(DistributionCode::kWeibull, {NAN, 1}, 0)},
      {"too few values", Of(DistributionCode::kNormal, {0})},
      {"a mode beyond the maximum", Of(DistributionCode::kTriangular, {0, 1, 1.5})}};
  for (const auto& [what, variable] : cases) {
    EXPECT_FALSE(VariableSampler(variable.specification, false).IsValid()) << what;
  }
  auto disjoint = Of(DistributionCode::kNormal, {0, 1}).specification;
  disjoint.truncateBelow = disjoint.truncateAbove = true;
  disjoint.truncationMinimum = 1;
  disjoint.truncationMaximum = -1;
  EXPECT_FALSE(VariableSampler(disjoint, false).IsValid());
}

TEST(RandomPermutation, IsAPermutationAndOneDrawsNothing) {
  inirnd_(5, 0);
  std::vector<double> values(1000);
  RandomPermutation(values);
  std::ranges::sort(values);
  for (std::size_t i = 0; i < values.size(); ++i) ASSERT_EQ(values[i], static_cast<double>(i + 1));
  const auto before = ProcessStreamPosition();
  std::vector<double> one(1);
  RandomPermutation(one);
  EXPECT_EQ(one[0], 1.0);
  EXPECT_EQ(ProcessStreamPosition(), before);
}

// Every 30-bit draw is equally likely: over an even grid of draws each value must come up as often as it
// should.
TEST(DiscreteTable, ReproducesItsProbabilities) {
  for (const double mean : {0.01, 0.7, 21.3, 21.5, 300.0}) {
    const DiscreteTable table = DiscreteTable::Poisson(mean);
    constexpr int kDraws = 1 << 20;
    std::map<double, double> share;
    for (int i = 0; i < kDraws; ++i) share[table.Lookup((i + 0.5) / kDraws)] += 1.0 / kDraws;
    double total = 0;
    for (const auto& [value, measured] : share) {
      EXPECT_NEAR(measured, poisson::Density(value, mean), 1e-4) << mean << " at " << value;
      total += measured;
    }
    EXPECT_NEAR(total, 1, 1e-9);
    EXPECT_GE(table.Lookup(std::nextafter(1.0, 0.0)), 0);
  }
}

TEST(SimulationRun, FailuresReleaseTheirMemoryAndProduceNothing) {
  HeadlessUserInterface port;
  SimulationDesign design;
  design.numberOfSamples = 10;
  design.variables = {Of(DistributionCode::kNormal, {0, 1})};
  const auto before = OutstandingAnalysisBlocks();
  LimitAnalysisAllocations(0);
  EXPECT_EQ(RunSimulation(design, true, 1, port).status, SimulationStatus::kMemoryFailure);
  LimitAnalysisAllocations(kNoAllocationLimit);
  design.excluded = {0};
  EXPECT_EQ(RunSimulation(design, true, 1, port).status, SimulationStatus::kDistributionFailure);
  EXPECT_EQ(OutstandingAnalysisBlocks(), before);
  EXPECT_TRUE(FitsSampleLimit(1, 250'000'000));
  EXPECT_FALSE(FitsSampleLimit(1, 250'000'001));
  EXPECT_FALSE(FitsSampleLimit(3, 83'333'334));
}

}  // namespace
}  // namespace brenvolt::sra
