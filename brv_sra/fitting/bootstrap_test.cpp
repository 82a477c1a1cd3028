// The bootstrap against published critical values for estimated parameters, the uniformity of its p-values
// under the hypothesis, and what they must not depend on.
#include "brv_sra/fitting/bootstrap.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cmath>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/distributions/specified_distribution.h"
#include "brv_sra/fitting/fit_run.h"
#include "brv_sra/fitting/goodness_of_fit.h"
#include "host/analysis/ports/headless_user_interface.h"
#include "host/base/error.h"
#include "host/numeric/goodness_of_fit/kolmogorov_smirnov.h"
#include "host/numeric/vector/sorting.h"

namespace brenvolt::sra {
namespace {

using enum DistributionCode;
constexpr auto kBinning = ChiSquareBinning::kEqualProbabilities;

DistributionSpecification SpecificationOf(DistributionCode code, std::vector<double> values) {
  DistributionSpecification specification;
  specification.code = code;
  specification.values = std::move(values);
  return specification;
}

DistributionFit Estimate(DistributionCode code, const SortedSample& sample) {
  if (!IsContinuous(code)) return EstimateDiscrete(code, sample, {});
  ContinuousSpecification specification;
  specification.offsets.fill(0);
  specification.mixtures = 2;
  return EstimateContinuous(code, sample, specification, [] {});
}

// The normal distribution with the standard deviation of divisor n - 1, on which published tables rest.
DistributionFit EstimateUnbiasedNormal(const SortedSample& sample) {
  DistributionFit fit;
  fit.specification = SpecificationOf(kNormal, {sample.moments.mean, sample.moments.standardDeviation});
  fit.estimatedParameters = 2;
  return fit;
}

BootstrapJob JobOf(DistributionFit& fit, std::int64_t count, RandomStream stream) {
  const DistributionCode code = fit.specification.code;
  return {&fit, count, stream,
          [code](const SortedSample& sample, const Poll&) { return Estimate(code, sample); }};
}

struct SampleData {
  std::vector<double> values;
  Moments moments;
};

SampleData Draw(const DistributionSpecification& specification, std::size_t count,
                const RandomStream& stream) {
  SampleData data;
  data.values.resize(count);
  stream.FillUniform(0, data.values);
  SpecifiedDistribution(specification).Quantile(data.values, data.values);
  MomentAccumulator moments;
  for (const double x : data.values) moments.Add(x, 1);
  data.moments = moments.Finish();
  SortAscending(data.values);
  return data;
}

// Upper tail points of statistics whose parameters are estimated from the sample. Kolmogorov-Smirnov: Molin &
// Abdi (1998). Anderson-Darling: D'Agostino & Stephens (1986), tables 4.7, 4.11 (exponential; squares of
// Rayleigh values are) and 4.17 (extreme value; logarithms of Weibull values are, upside down).
TEST(Bootstrap, GivesThePublishedLevelsOfCriticalValues) {
  constexpr std::int32_t kSamples = 20'000;
  struct Point {
    DistributionFit fit;
    std::int64_t count;
    double level;
    double kolmogorovSmirnov;
    double andersonDarling;
  };
  const auto of = [](DistributionCode code, std::vector<double> values) {
    DistributionFit fit;
    fit.specification = SpecificationOf(code, std::move(values));
    return fit;
  };
  const auto normalCase = [](double n) { return 1 + 0.75 / n + 2.25 / (n * n); };
  const auto scaleCase = [](double n) { return 1 + 0.6 / n; };
  const auto extremeCase = [](double n) { return 1 + 0.2 / std::sqrt(n); };
  const Point points[] = {
      {of(kNormal, {3, 2}), 20, 0.05, 0.192, 0.752 / normalCase(20)},
      {of(kNormal, {0, 1}), 50, 0.10, kNotSet, 0.631 / normalCase(50)},
      {of(kNormal, {-5, 0.1}), 10, 0.01, kNotSet, 1.035 / normalCase(10)},
      {of(kRayleigh, {2}), 30, 0.05, kNotSet, 1.321 / scaleCase(30)},
      {of(kWeibull, {3, 1.5}), 50, 0.10, kNotSet, 0.637 / extremeCase(50)},
      {of(kWeibull, {3, 7}), 50, 0.05, kNotSet, 0.757 / extremeCase(50)},
  };
  for (Point point : points) {
    SCOPED_TRACE(std::string(SpacedKey(point.fit.specification.code)) + " " + std::to_string(point.level));
    point.fit.kolmogorovSmirnov.statistic = point.kolmogorovSmirnov;
    point.fit.andersonDarling.statistic = point.andersonDarling;
    BootstrapJob job = JobOf(point.fit, point.count, RandomStream(4).Substream(1, 2));
    if (point.fit.specification.code == kNormal) {
      job.estimate = [](const SortedSample& sample, const Poll&) { return EstimateUnbiasedNormal(sample); };
    }
    HeadlessUserInterface port;
    RunBootstrap({&job, 1}, kSamples, kBinning, port);
    const BootstrapResult& result = point.fit.bootstrap;
    EXPECT_EQ(result.samples, kSamples);
    // Four standard errors of the simulation, and what the digits of the tables leave open.
    const double tolerance = 4 * std::sqrt(point.level * (1 - point.level) / kSamples) + 0.03 * point.level;
    EXPECT_NEAR(result.andersonDarling, point.level, tolerance);
    EXPECT_EQ(IsNotSet(result.kolmogorovSmirnov), IsNotSet(point.kolmogorovSmirnov));
    if (!IsNotSet(point.kolmogorovSmirnov)) {
      EXPECT_NEAR(result.kolmogorovSmirnov, point.level, tolerance);
    }
    EXPECT_TRUE(IsNotSet(result.chiSquare)) << "no statistic was given";
  }
}

// The p-value of a Kolmogorov-Smirnov test of p-values against the uniform distribution.
double Uniformity(std::vector<double> pValues) {
  std::ranges::sort(pValues);
  return *KolmogorovSmirnovPValue(std::ssize(pValues), KolmogorovSmirnovStatistic(pValues));
}

TEST(Bootstrap, PValuesAreUniformUnderTheHypothesisWherePlainOnesAreNot) {
  constexpr std::size_t kSets = 200;
  constexpr double kLeast = 1e-4;
  for (const auto& specification : {SpecificationOf(kNormal, {10, 3}), SpecificationOf(kWeibull, {2, 1.7}),
                                    SpecificationOf(kPoisson, {30})}) {
    SCOPED_TRACE(SpacedKey(specification.code));
    std::vector<double> plain;
    std::vector<double> kolmogorovSmirnov;
    std::vector<double> chiSquare;
    std::vector<double> andersonDarling;
    std::vector<DistributionFit> fits;
    std::vector<BootstrapJob> jobs;
    for (std::size_t set = 0; set < kSets; ++set) {
      const SampleData data = Draw(specification, 50, RandomStream(11).Substream(set, 0));
      fits.push_back(Estimate(specification.code, {data.values, data.moments}));
      TestFit(fits.back(), data.values, kBinning);
    }
    for (std::size_t set = 0; set < kSets; ++set)
      jobs.push_back(JobOf(fits[set], 50, RandomStream(12).Substream(set, 0)));
    HeadlessUserInterface port;
    RunBootstrap(jobs, 99, kBinning, port);
    for (const DistributionFit& fit : fits) {
      plain.push_back(fit.kolmogorovSmirnov.pValue);
      kolmogorovSmirnov.push_back(fit.bootstrap.kolmogorovSmirnov);
      chiSquare.push_back(fit.bootstrap.chiSquare);
      andersonDarling.push_back(fit.bootstrap.andersonDarling);
    }
    EXPECT_LT(Uniformity(plain), 1e-6);
    EXPECT_GT(Uniformity(kolmogorovSmirnov), kLeast);
    EXPECT_GT(Uniformity(chiSquare), kLeast);
    if (IsContinuous(specification.code)) {
      EXPECT_GT(Uniformity(andersonDarling), kLeast);
    }
  }
}

bool AreSame(const BootstrapResult& a, const BootstrapResult& b) {
  return a.kolmogorovSmirnov == b.kolmogorovSmirnov && a.chiSquare == b.chiSquare &&
         a.andersonDarling == b.andersonDarling && a.samples == b.samples;
}

struct BootstrapRun : testing::Test {
  HeadlessUserInterface port;
  Spreadsheet sheet{"data"};
  FitSpecification specification;

  void SetUp() override {
    const RandomStream stream(21);
    Add(Draw(SpecificationOf(kWeibull, {4, 1.4}), 60, stream.Substream(1, 0)).values);
    Add(Draw(SpecificationOf(kPoisson, {3}), 60, stream.Substream(2, 0)).values);
    Add(Draw(SpecificationOf(kGaussianMixture, {0.4, 5, 1, 0.6, 9, 1}), 60, stream.Substream(3, 0)).values);
    specification.continuous = {1, 3};
    specification.continuousSpecifications.resize(2);
    for (ContinuousSpecification& each : specification.continuousSpecifications) {
      each.fit.fill(true);
      each.offsets.fill(0);
      each.mixtures = 2;
    }
    specification.discrete = {2};
    specification.discreteSpecifications.resize(1);
    specification.discreteSpecifications[0].fit.fill(true);
    specification.discreteSpecifications[0].fit[PlaceInKind(kBernoulli)] = false;
    specification.bootstrapSamples = 19;
  }
  void Add(const std::vector<double>& values) {
    Variable variable("V" + std::to_string(sheet.VariableCount() + 1), 0);
    variable.AssignValues(values);
    sheet.AddVariable(std::move(variable));
  }
  std::vector<VariableFit> Run() { return *RunFit(sheet, specification, {}, port); }
};

TEST_F(BootstrapRun, EveryTypeIsDrawnEstimatedAndTested) {
  specification.continuous = {1};
  specification.continuousSpecifications.resize(1);
  const auto results = Run();
  ASSERT_EQ(results.size(), 2U);
  for (const VariableFit& variable : results) {
    for (const DistributionFit& fit : variable.fits) {
      SCOPED_TRACE(variable.name + " " + std::string(SpacedKey(fit.specification.code)));
      ASSERT_TRUE(fit.IsValid());
      EXPECT_GE(fit.bootstrap.samples, 17) << "of 19";
      EXPECT_LE(fit.bootstrap.samples, 19);
      const auto expectPValue = [](double p, double statistic) {
        EXPECT_EQ(IsNotSet(p), IsNotSet(statistic));
        if (!IsNotSet(p)) {
          EXPECT_TRUE(p >= 0.05 && p <= 1) << p;
        }
      };
      expectPValue(fit.bootstrap.kolmogorovSmirnov, fit.kolmogorovSmirnov.statistic);
      expectPValue(fit.bootstrap.chiSquare, fit.chiSquare.statistic);
      expectPValue(fit.bootstrap.andersonDarling, fit.andersonDarling.statistic);
    }
  }
}

TEST_F(BootstrapRun, ResultsDependNeitherOnCompanyNorOnTheProcessStream) {
  SeedProcessStream(5);
  const auto together = Run();
  EXPECT_EQ(ProcessStreamPosition(), 0U) << "a simulation in between would go on elsewhere";
  SeedProcessStream(6);
  FitSpecification all = specification;
  specification.discrete.clear();
  specification.discreteSpecifications.clear();
  specification.continuous = {3};
  specification.continuousSpecifications.resize(1);
  for (const DistributionCode code : {kWeibull, kGaussianMixture, kTriangular}) {
    SCOPED_TRACE(SpacedKey(code));
    auto& flags = specification.continuousSpecifications[0].fit;
    flags.fill(false);
    flags[PlaceInKind(code)] = true;
    const auto alone = Run();
    EXPECT_TRUE(
        AreSame(alone[0].fits[0].bootstrap, together[1].fits[static_cast<std::size_t>(code)].bootstrap));
  }
  specification = all;
  specification.bootstrapSeed = 2;
  const auto reseeded = Run();
  int different = 0;
  for (std::size_t i = 0; i < 11; ++i)
    different += AreSame(reseeded[0].fits[i].bootstrap, together[0].fits[i].bootstrap) ? 0 : 1;
  EXPECT_GT(different, 5) << "the seed does nothing";
}

// Bernoulli and histogram reproduce the data's distribution: their statistics are 0 but for rounding, and a
// p-value from that would be noise.
TEST_F(BootstrapRun, FitThatReproducesTheDataHasPValueOne) {
  Spreadsheet bits("data");
  Variable variable("V1", 0);
  variable.AssignValues(Draw(SpecificationOf(kBernoulli, {0.3}), 70, RandomStream(8)).values);
  bits.AddVariable(std::move(variable));
  specification.continuous.clear();
  specification.continuousSpecifications.clear();
  specification.discrete = {1};
  specification.discreteSpecifications[0].fit.fill(true);
  specification.bootstrapSamples = 200;
  const auto results = *RunFit(bits, specification, {}, port);
  for (const DistributionCode code : {kBernoulli, kHistogram}) {
    const DistributionFit& fit = results[0].fits[PlaceInKind(code)];
    EXPECT_EQ(fit.bootstrap.kolmogorovSmirnov, 1);
    EXPECT_EQ(fit.bootstrap.chiSquare, 1);
    EXPECT_EQ(fit.bootstrap.samples, 200);
  }
}

TEST(Bootstrap, SamplesWithoutAFitAreLeftOutOfThePValueAndOfTheCount) {
  DistributionFit fit;
  fit.specification = SpecificationOf(kNormal, {0, 1});
  fit.kolmogorovSmirnov.statistic = 1e9;
  std::atomic<int> fitted{0};
  BootstrapJob job{&fit, 5, RandomStream(3), [&](const SortedSample& sample, const Poll&) {
                     if (sample.values[0] < -1.5 || sample.values[4] > 1.5) return DistributionFit{};
                     ++fitted;
                     return EstimateUnbiasedNormal(sample);
                   }};
  HeadlessUserInterface port;
  RunBootstrap({&job, 1}, 1000, kBinning, port);
  EXPECT_GT(fitted, 100);
  EXPECT_LT(fitted, 900);
  EXPECT_EQ(fit.bootstrap.samples, fitted);
  EXPECT_EQ(fit.bootstrap.kolmogorovSmirnov, 1.0 / (fitted + 1));

  job.estimate = [](const SortedSample&, const Poll&) { return DistributionFit{}; };
  RunBootstrap({&job, 1}, 10, kBinning, port);
  EXPECT_EQ(fit.bootstrap.samples, 0);
  EXPECT_TRUE(IsNotSet(fit.bootstrap.kolmogorovSmirnov));
}

// The moments of values far above the offset give such a shape. Samples of such a fit are mostly as far from
// their estimates as these values, which no Pareto distribution above 0 describes.
TEST(Bootstrap, ParetoThatIsInfiniteAtItsEndGetsNoPValueRatherThanAFlatteringOne) {
  const SampleData data =
      Draw(SpecificationOf(kGeneralExtremeValue, {3.87, 0.2, -0.05}), 65, RandomStream(7));
  DistributionFit fit = Estimate(kGeneralPareto, {data.values, data.moments});
  TestFit(fit, data.values, kBinning);
  ASSERT_TRUE(fit.IsValid());
  ASSERT_LT(fit.specification.values[1], -1);
  ASSERT_LT(fit.kolmogorovSmirnov.pValue, 1e-6);
  const BootstrapJob job = JobOf(fit, 65, RandomStream(3));
  HeadlessUserInterface port;
  RunBootstrap({&job, 1}, 100, kBinning, port);
  EXPECT_EQ(fit.bootstrap.samples, 0);
  EXPECT_TRUE(IsNotSet(fit.bootstrap.kolmogorovSmirnov));
}

TEST(Bootstrap, CancellationEndsARunThatWouldTakeHours) {
  HeadlessUserInterface port;
  port.cancelled = true;
  const SampleData data =
      Draw(SpecificationOf(kGaussianMixture, {0.5, 0, 1, 0.5, 4, 1}), 2000, RandomStream(2));
  DistributionFit fit = Estimate(kGaussianMixture, {data.values, data.moments});
  const BootstrapJob job = JobOf(fit, 2000, RandomStream(3));
  EXPECT_THROW(RunBootstrap({&job, 1}, 1'000'000, kBinning, port), UserCancelled);
}

}  // namespace
}  // namespace brenvolt::sra
