#include "brv_sra/simulation/sampling/sample_generation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <numeric>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/simulation/sampling/discrete_table.h"
#include "brv_sra/simulation/sampling/random_permutation.h"
#include "brv_sra/simulation/sampling/reference_generator_test.h"
#include "brv_sra/simulation/sampling/sampled_distributions_test.h"
#include "brv_sra/simulation/sampling/variable_sampler.h"
#include "brv_sra/simulation/simulation_run.h"
#include "host/analysis/analysis_memory.h"
#include "host/analysis/ports/headless_user_interface.h"
#include "host/base/error.h"
#include "host/base/parallel.h"
#include "host/numeric/distributions/normal.h"
#include "host/numeric/goodness_of_fit/chi_square_tail.h"
#include "host/numeric/goodness_of_fit/kolmogorov_smirnov.h"
#include "host/numeric/random/random_stream.h"
#include "host/numeric/vector/sorting.h"

namespace brenvolt::sra {
namespace {

SimulationMethod MethodOf(bool latinHypercube) {
  return latinHypercube ? SimulationMethod::kLatinHypercube : SimulationMethod::kMonteCarlo;
}

struct Generation : testing::Test {
  HeadlessUserInterface port;
  SimulationDesign design;

  std::vector<double> Generate(SimulationMethod method, double seed, std::int32_t samples) {
    design.numberOfSamples = samples;
    std::vector<double> matrix(static_cast<std::size_t>(samples) * design.variables.size());
    const auto progress = std::make_unique<ProgressBar>(port, "", samples);
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

TEST_F(Generation, FastEngineGivesTheBitsOfOneDrawAfterAnother) {
  for (const SampledTruncation& truncation : kTruncations) {
    design.variables.clear();
    for (const SimulationVariable& distribution : SampledDistributions())
      design.variables.push_back(Truncated(distribution, truncation));
    design.excluded = {2};
    design.truncate = truncation.band;
    for (const bool latinHypercube : {false, true}) {
      for (const std::int32_t n : {1, 2, 5, 1000, 70'000}) {
        if (n == 70'000 && truncation.below > 0) continue;  // the plain way is slow there
        for (const auto source : {ParameterSource::kUserSpecified, ParameterSource::kFitted}) {
          if (n > 5 && source == ParameterSource::kFitted) continue;
          design.source = source;
          design.numberOfSamples = n;
          SeedRandomStream(true, 7);
          const auto expected = reference::Generate(design, latinHypercube);
          const auto position = ProcessStreamPosition();
          for (const std::size_t threads : {1, 4}) {
            SCOPED_TRACE(testing::Message() << truncation.name << ", hypercube " << latinHypercube << ", n "
                                            << n << ", threads " << threads);
            const ThreadLimit limit(threads);
            const auto matrix = Generate(MethodOf(latinHypercube), 7, n);
            EXPECT_EQ(ProcessStreamPosition(), position);
            for (std::size_t i = 0; i < matrix.size(); ++i) {
              const std::size_t j = i % design.variables.size();
              ASSERT_EQ(matrix[i], expected[i]) << "row " << i / design.variables.size() << ", column " << j;
            }
          }
        }
      }
    }
  }
}

// Untruncated candidates that overflow are rejected as well, and move the draws of all later values.
TEST_F(Generation, CandidatesBeyondWhatADoubleHoldsAreDrawnAgain) {
  design.variables = {VariableOf(DistributionCode::kLogNormal, {600, 80}, 0),
                      VariableOf(DistributionCode::kNormal, {0, 1})};
  const auto matrix = Generate(SimulationMethod::kMonteCarlo, 3, 1000);
  SeedRandomStream(true, 3);
  EXPECT_EQ(matrix, reference::Generate(design, false));
  EXPECT_LE(std::ranges::max(matrix), 1e300);
}

TEST_F(Generation, ExcludedVariableStaysZeroAndDrawsNothing) {
  design.variables = {VariableOf(DistributionCode::kNormal, {5, 1}),
                      VariableOf(DistributionCode::kNormal, {0, 1})};
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

// P(X <= x) of the values that a method draws. Inversion takes the range of probabilities; rejection the
// range of values, the lower end included.
double CdfOf(const VariableSampler& sampler, const SpecifiedDistribution& distribution, bool byInversion,
             double x) {
  const double low =
      byInversion ? sampler.LowerProbability()
                  : distribution.Cdf(std::nextafter(std::max(sampler.LowestValue(), -1e300), -INFINITY));
  const double high = byInversion ? sampler.UpperProbability() : distribution.Cdf(sampler.HighestValue());
  return std::clamp((distribution.Cdf(x) - low) / (high - low), 0.0, 1.0);
}

double KolmogorovPValue(std::vector<double> sample, const VariableSampler& sampler,
                        const SpecifiedDistribution& distribution) {
  SortAscending(sample);
  const auto n = static_cast<double>(sample.size());
  std::vector<double> cdf(sample.size());
  distribution.Cdf(sample, cdf);
  const double low = sampler.LowerProbability();
  double d = 0;
  for (std::size_t i = 0; i < cdf.size(); ++i) {
    const double f = (cdf[i] - low) / (sampler.UpperProbability() - low);
    d = std::max({d, f - static_cast<double>(i) / n, static_cast<double>(i + 1) / n - f});
  }
  return *KolmogorovSmirnovPValue(static_cast<std::int64_t>(sample.size()), d);
}

// Over bins of equal probability within the range.
double ChiSquarePValueOfBins(const std::vector<double>& sample, const VariableSampler& sampler,
                             const SpecifiedDistribution& distribution) {
  constexpr std::size_t kBins = 200;
  std::vector<double> cdf(sample.size());
  distribution.Cdf(sample, cdf);
  std::array<double, kBins> counts{};
  const double low = sampler.LowerProbability();
  for (const double f : cdf) {
    const double within = (f - low) / (sampler.UpperProbability() - low);
    ++counts[std::min(kBins - 1, static_cast<std::size_t>(within * kBins))];
  }
  const double expected = static_cast<double>(sample.size()) / kBins;
  double statistic = 0;
  for (const double count : counts) statistic += (count - expected) * (count - expected) / expected;
  return ChiSquareTail(statistic, kBins - 1);
}

// Neighbouring values are pooled until 20 are expected. Zero when a value is drawn that cannot be.
double ChiSquarePValue(const std::vector<double>& sample, const VariableSampler& sampler,
                       const SpecifiedDistribution& distribution, bool byInversion) {
  std::map<double, double> counts;
  for (const double x : sample) ++counts[x];
  const auto n = static_cast<double>(sample.size());
  double statistic = 0;
  double cells = 0;
  double seen = 0;
  double before = 0;
  for (double x = std::floor(counts.begin()->first); x <= counts.rbegin()->first; ++x) {
    const double below = CdfOf(sampler, distribution, byInversion, x - 1);
    const double here = CdfOf(sampler, distribution, byInversion, x);
    const auto count = counts.find(x);
    if (count != counts.end()) {
      if (here <= below) return 0;
      seen += count->second;
    }
    const bool isLast = x == counts.rbegin()->first;
    const double expected = ((isLast ? 1 : here) - before) * n;
    if ((expected < 20 || (1 - here) * n < 20) && !isLast) continue;
    statistic += (seen - expected) * (seen - expected) / expected;
    ++cells;
    seen = 0;
    before = here;
  }
  return cells > 1 ? ChiSquareTail(statistic, cells - 1) : 1;
}

TEST_F(Generation, SamplesFollowTheirDistributionUnderBothMethodsTruncatedOrNot) {
  for (const SampledTruncation& truncation : {kTruncations[0], kTruncations[2], kTruncations[3]}) {
    for (const SimulationVariable& plain : SampledDistributions()) {
      for (const bool latinHypercube : {false, true}) {
        design.truncate = truncation.band;
        design.variables = {Truncated(plain, truncation)};
        const DistributionSpecification& specification = design.variables[0].specification;
        const auto sample = Generate(MethodOf(latinHypercube), 5, 1'000'000);
        const VariableSampler sampler(specification, truncation.band);
        const SpecifiedDistribution distribution(specification);
        const double p = IsContinuous(specification.code)
                             ? std::min(KolmogorovPValue(sample, sampler, distribution),
                                        ChiSquarePValueOfBins(sample, sampler, distribution))
                             : ChiSquarePValue(sample, sampler, distribution, latinHypercube);
        EXPECT_GT(p, 1e-6) << SpacedKey(specification.code) << ", " << truncation.name << ", hypercube "
                           << latinHypercube;
      }
    }
  }
}

TEST_F(Generation, LatinHypercubeHoldsOneValuePerStratum) {
  constexpr int kStrata = 1000;
  for (const SampledTruncation& truncation : kTruncations) {
    for (const SimulationVariable& plain : SampledDistributions()) {
      if (!IsContinuous(plain.specification.code)) continue;
      design.truncate = truncation.band;
      design.variables = {Truncated(plain, truncation)};
      auto sample = Generate(SimulationMethod::kLatinHypercube, 5, kStrata);
      const VariableSampler sampler(design.variables[0].specification, truncation.band);
      const SpecifiedDistribution distribution(design.variables[0].specification);
      SortAscending(sample);
      for (int i = 0; i < kStrata; ++i) {
        const double f = CdfOf(sampler, distribution, true, sample[static_cast<std::size_t>(i)]) * kStrata;
        ASSERT_NEAR(f, i + 0.5, 0.5 + 1e-6) << SpacedKey(plain.specification.code) << ", " << truncation.name;
      }
    }
  }
}

TEST_F(Generation, TruncationHoldsUnderBothMethods) {
  const double far = Distribution<Normal>(0, 1).Quantile(1 - 1e-9);
  for (const auto method : {SimulationMethod::kMonteCarlo, SimulationMethod::kLatinHypercube}) {
    design.truncate = true;
    design.variables = {VariableOf(DistributionCode::kNormal, {0, 1})};
    auto sample = Generate(method, 9, 20'000);
    EXPECT_GE(std::ranges::min(sample), Distribution<Normal>(0, 1).Quantile(0.005));
    EXPECT_LE(std::ranges::max(sample), Distribution<Normal>(0, 1).Quantile(0.995));
    design.truncate = false;
    design.variables[0].specification.truncateBelow = true;
    design.variables[0].specification.truncationMinimum = 4;
    sample = Generate(method, 9, 20'000);
    EXPECT_GE(std::ranges::min(sample), 4) << "far out, where candidates are always rejected";
    EXPECT_LT(std::ranges::max(sample), far + 3);
  }
}

// Limits so far out that the range of probabilities is much smaller than the steps of a uniform deviate.
TEST_F(Generation, DeepUpperLimitSpreadsTheValuesBelowIt) {
  using enum DistributionCode;
  const std::pair<SimulationVariable, double> cases[] = {{VariableOf(kNormal, {0, 1}), -9},
                                                         {VariableOf(kNormal, {0, 1}), -30},
                                                         {VariableOf(kLogNormal, {1, 0.3}, 0), 0.18},
                                                         {VariableOf(kWeibull, {80, 5}, 0), 0.04},
                                                         {VariableOf(kGeneralExtremeValue, {1, 2, 0}), -8}};
  for (const auto& [variable, limit] : cases) {
    for (const bool latinHypercube : {false, true}) {
      design.variables = {variable};
      DistributionSpecification& specification = design.variables[0].specification;
      specification.truncateAbove = true;
      specification.truncationMaximum = limit;
      const auto sample = Generate(MethodOf(latinHypercube), 5, 100'000);
      EXPECT_GT(KolmogorovPValue(sample, VariableSampler(specification, false),
                                 SpecifiedDistribution(specification)),
                1e-6)
          << SpacedKey(specification.code) << " below " << limit << ", hypercube " << latinHypercube;
    }
  }
}

// Where the probability at the limit is rounded to that of a value before it.
TEST_F(Generation, DiscreteValuesStayWithinLimitsFarOut) {
  using enum DistributionCode;
  const std::tuple<SimulationVariable, double, double> cases[] = {
      {VariableOf(kPoisson, {1}), 14.5, INFINITY},
      {VariableOf(kPoisson, {1}), 16.5, INFINITY},
      {VariableOf(kGeometric, {0.5}), 50.5, INFINITY},
      {VariableOf(kBinomial, {0.5, 60}), 56.5, INFINITY},
      {VariableOf(kHistogram, {1, 0.5, 2.5, 0.5 - 1e-12, 4, 1e-12}), 3, INFINITY},
      {VariableOf(kPoisson, {100}), 5.5, 12.5}};
  for (const auto& [variable, minimum, maximum] : cases) {
    for (const bool latinHypercube : {false, true}) {
      SCOPED_TRACE(testing::Message() << SpacedKey(variable.specification.code) << " from " << minimum);
      design.variables = {variable};
      DistributionSpecification& specification = design.variables[0].specification;
      specification.truncateBelow = true;
      specification.truncationMinimum = minimum;
      specification.truncateAbove = std::isfinite(maximum);
      specification.truncationMaximum = maximum;
      const auto sample = Generate(MethodOf(latinHypercube), 5, 100'000);
      EXPECT_GE(std::ranges::min(sample), minimum);
      EXPECT_LE(std::ranges::max(sample), maximum);
    }
  }
}

TEST_F(Generation, SeedsReproduceZeroIncluded) {
  design.variables = {VariableOf(DistributionCode::kNormal, {0, 1})};
  for (const double seed : {0.0, 1.0, 65535.0, 2147483647.0, 4294967296.0, 1e15}) {
    const auto first = Generate(SimulationMethod::kMonteCarlo, seed, 100);
    SeedProcessStream(12345);
    EXPECT_EQ(Generate(SimulationMethod::kMonteCarlo, seed, 100), first) << seed;
  }
  EXPECT_NE(Generate(SimulationMethod::kMonteCarlo, 0, 100), Generate(SimulationMethod::kMonteCarlo, 1, 100));
}

TEST(Sampler, RefusesWhatCannotBeSampled) {
  const std::pair<const char*, SimulationVariable> cases[] = {
      {"scale 0", VariableOf(DistributionCode::kNormal, {0, 0})},
      {"NaN", VariableOf(DistributionCode::kWeibull, {NAN, 1}, 0)},
      {"too few values", VariableOf(DistributionCode::kNormal, {0})},
      {"a mode beyond the maximum", VariableOf(DistributionCode::kTriangular, {0, 1, 1.5})}};
  for (const auto& [what, variable] : cases) {
    EXPECT_FALSE(VariableSampler(variable.specification, false).IsValid()) << what;
  }
}

TEST(Sampler, RefusesLimitsThatLeaveNothing) {
  struct Case {
    const char* what;
    SimulationVariable variable;
    double minimum;
    double maximum;
    bool isValid;
  };
  const auto normal = VariableOf(DistributionCode::kNormal, {0, 1});
  const auto binomial = VariableOf(DistributionCode::kBinomial, {0.5, 5});
  const Case cases[] = {{"disjoint", normal, 1, -1, false},
                        {"beyond every probability", normal, 40, 50, false},
                        {"where candidates hardly come", normal, 7, 50, true},
                        {"no number", normal, NAN, 50, false},
                        {"between neighbouring counts", binomial, 3.2, 3.8, false},
                        {"a single count", binomial, 3, 3.5, true},
                        {"the last count", binomial, 5, 9, true},
                        {"below all counts", binomial, -3, -1, false}};
  for (const Case& c : cases) {
    auto specification = c.variable.specification;
    specification.truncateBelow = specification.truncateAbove = true;
    specification.truncationMinimum = c.minimum;
    specification.truncationMaximum = c.maximum;
    const VariableSampler sampler(specification, false);
    ASSERT_EQ(sampler.IsValid(), c.isValid) << c.what;
    if (!c.isValid) continue;
    std::vector<double> values(2000);
    for (const bool latinHypercube : {false, true}) {
      if (latinHypercube)
        sampler.DrawStratified(RandomStream(3), 0, values);
      else
        sampler.DrawInOrder(RandomStream(3), 0, values);
      EXPECT_GE(std::ranges::min(values), c.minimum) << c.what;
      EXPECT_LE(std::ranges::max(values), c.maximum) << c.what;
    }
    EXPECT_TRUE(VariableSampler(specification, false, ParameterSource::kFitted).FixedDraws().has_value())
        << "limits do not count for fitted distributions";
  }
}

TEST(RandomPermutation, IsAPermutationAndOneDrawsNothing) {
  const RandomStream stream(5);
  std::vector<double> values(1000);
  std::iota(values.begin(), values.end(), 1.0);
  EXPECT_EQ(Shuffle(stream, 7, std::span(values)), 1007U);
  EXPECT_FALSE(std::ranges::is_sorted(values));
  std::ranges::sort(values);
  for (std::size_t i = 0; i < values.size(); ++i) ASSERT_EQ(values[i], static_cast<double>(i + 1));
  std::vector<double> one{1.0};
  EXPECT_EQ(Shuffle(stream, 7, std::span(one)), 7U);
  EXPECT_EQ(one[0], 1.0);
}

// Every 30-bit draw is equally likely: over an even grid of draws each value must come up as often as it
// should.
TEST(DiscreteTable, ReproducesItsProbabilities) {
  using enum DistributionCode;
  const std::pair<DistributionCode, std::vector<double>> cases[] = {
      {kPoisson, {0.01}},        {kPoisson, {0.7}},        {kPoisson, {21.3}},  {kPoisson, {21.5}},
      {kPoisson, {300}},         {kBinomial, {0, 4}},      {kBinomial, {1, 4}}, {kBinomial, {0.999, 8}},
      {kBinomial, {0.5, 10000}}, {kBinomial, {1e-9, 2e9}}, {kGeometric, {1}},   {kGeometric, {0.3}},
      {kGeometric, {0.01}}};
  for (const auto& [code, values] : cases) {
    const auto variable = VariableOf(code, values);
    const SpecifiedDistribution distribution(variable.specification);
    const auto table = DiscreteTable::Of(variable.specification);
    ASSERT_TRUE(table.has_value()) << SpacedKey(code) << ' ' << values[0];
    constexpr int kDraws = 1 << 20;
    std::map<double, double> share;
    for (int i = 0; i < kDraws; ++i) share[table->Lookup((i + 0.5) / kDraws)] += 1.0 / kDraws;
    double total = 0;
    for (const auto& [value, measured] : share) {
      EXPECT_NEAR(measured, distribution.Density(value), 1e-4)
          << SpacedKey(code) << ' ' << values[0] << " at " << value;
      total += measured;
    }
    EXPECT_NEAR(total, 1, 1e-9);
    EXPECT_GE(share.begin()->first, table->Lowest());
    EXPECT_LE(share.rbegin()->first, table->Highest());
  }
}

TEST(DiscreteTable, IsRefusedWhereThirtyBitsDoNotCarryTheDistribution) {
  using enum DistributionCode;
  for (const auto& [code, value] : {std::pair{kPoisson, 1e10}, {kGeometric, 1e-7}, {kGeometric, 1e-12}}) {
    const auto variable = VariableOf(code, {value});
    EXPECT_FALSE(DiscreteTable::Of(variable.specification).has_value()) << value;
    const VariableSampler sampler(variable.specification, false);
    std::vector<double> values(5);
    EXPECT_EQ(sampler.DrawInOrder(RandomStream(1), 0, values), 5U) << "inverted, one draw each";
    EXPECT_EQ(values[4], SpecifiedDistribution(variable.specification).Quantile(RandomStream(1).Uniform(4)));
  }
}

TEST(SimulationRun, FailuresReleaseTheirMemoryAndProduceNothing) {
  HeadlessUserInterface port;
  SimulationDesign design;
  design.numberOfSamples = 10;
  design.variables = {VariableOf(DistributionCode::kNormal, {0, 1})};
  const auto before = OutstandingAnalysisBlocks();
  LimitAnalysisAllocations(0);
  EXPECT_THROW((void)RunSimulation(design, true, 1, port), std::bad_alloc);
  LimitAnalysisAllocations(kNoAllocationLimit);
  design.excluded = {0};
  EXPECT_EQ(RunSimulation(design, true, 1, port).Reason(), Fault{FaultIdentifier::kNotSampled});
  EXPECT_EQ(OutstandingAnalysisBlocks(), before);
  EXPECT_TRUE(FitsSampleLimit(1, 250'000'000));
  EXPECT_FALSE(FitsSampleLimit(1, 250'000'001));
  EXPECT_FALSE(FitsSampleLimit(3, 83'333'334));
}

}  // namespace
}  // namespace brenvolt::sra
