// The estimates of all sixteen distributions through the one table of steps.
#include "brv_sra/fitting/estimation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <random>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/distributions/specified_distribution.h"
#include "brv_sra/fitting/ranking.h"
#include "host/base/error.h"
#include "host/numeric/estimation/standard_errors.h"

namespace brenvolt::sra {
namespace {

using Values = std::vector<double>;
using Code = DistributionCode;

struct Data {
  Values values;
  Moments moments;

  explicit Data(Values unsorted) : values(std::move(unsorted)) {
    MomentAccumulator accumulator;
    for (const double x : values) accumulator.Add(x, 1);
    moments = accumulator.Finish();
    std::ranges::sort(values);
  }
  SortedSample Sample() const { return {values, moments}; }
};

// The first column of an example.
Data Example(const std::string& name) {
  std::ifstream file(BRENVOLT_SOURCE_DIR "/examples/" + name + ".csv");
  std::string line;
  std::getline(file, line);
  Values values;
  while (std::getline(file, line)) values.push_back(std::stod(line));
  return Data(std::move(values));
}

ContinuousSpecification Everything(double offset) {
  ContinuousSpecification specification;
  specification.fit.fill(true);
  specification.offsets.fill(offset);
  specification.mixtures = 2;
  return specification;
}

DistributionFit Fit(Code code, const Data& data, double offset = 0) {
  if (static_cast<int>(code) < kContinuousCount)
    return EstimateContinuous(code, data.Sample(), Everything(offset), [] {});
  return EstimateDiscrete(code, data.Sample(), {});
}

TEST(Estimation, MeetsTheAnswersThatTheLiteratureGives) {
  struct Case {
    const char* data;
    Code code;
    Values values;
    double tolerance;
  };
  const Case cases[] = {
      {"portpirie_sea_level", Code::kGeneralExtremeValue, {3.8748, 0.1980, -0.0501}, 6e-5},
      {"groundbeef", Code::kWeibull, {83.348, 2.1859}, 2e-3},
      {"danish_fire_losses", Code::kLogNormal, {0.78695, 0.71655}, 5e-4},
      {"faithful", Code::kGaussianMixture, {0.348, 2.019, 0.236, 0.652, 4.273, 0.437}, 6e-4},
      {"toxocara", Code::kPoisson, {8.679}, 5e-4},
  };
  for (const Case& c : cases) {
    const DistributionFit fit = Fit(c.code, Example(c.data));
    ASSERT_EQ(fit.specification.values.size(), c.values.size()) << c.data;
    for (std::size_t i = 0; i < c.values.size(); ++i)
      EXPECT_NEAR(fit.specification.values[i], c.values[i], c.tolerance) << c.data;
  }
}

Data Mixed(std::size_t count) {
  std::mt19937_64 engine(5);
  std::normal_distribution<double> normal;
  Values values;
  for (std::size_t i = 0; i < count; ++i) values.push_back(std::exp(1 + 0.4 * normal(engine)) + i % 2);
  return Data(std::move(values));
}

TEST(Estimation, LogLikelihoodIsTheSumOfTheLogDensities) {
  const Data continuous = Mixed(2000);
  Values counts;
  for (int i = 0; i < 400; ++i) counts.push_back((i * i) % 7);
  const Data discrete(counts);
  for (int i = 0; i < kDistributionCount; ++i) {
    const auto code = static_cast<Code>(i);
    if (code == Code::kTriangular || code == Code::kBernoulli) continue;
    const Data& data = i < kContinuousCount ? continuous : discrete;
    const DistributionFit fit = Fit(code, data, 0.05);
    ASSERT_TRUE(fit.IsValid()) << i;
    const SpecifiedDistribution distribution(fit.specification);
    long double sum = 0;
    for (const double x : data.values) sum += distribution.LogDensity(x);
    EXPECT_NEAR(fit.logLikelihood, static_cast<double>(sum), 1e-11 * std::abs(static_cast<double>(sum))) << i;
    EXPECT_EQ(fit.Aic(), 2 * (fit.estimatedParameters - fit.logLikelihood));
  }
}

TEST(Estimation, CountsTheParametersThatTheDataDetermined) {
  const Data data = Mixed(500);
  const int expected[] = {2, 2, 2, 1, 1, 2, 5, 4, 3, 2, 3};
  for (int i = 0; i < kContinuousCount; ++i) {
    const DistributionFit fit = Fit(static_cast<Code>(i), data);
    const bool isSl = static_cast<Code>(i) == Code::kJohnson && fit.specification.values[0] == 1;
    EXPECT_EQ(fit.estimatedParameters, isSl ? 3 : expected[i]) << i;
  }
  const Data counts({0, 1, 1, 2, 5});
  EXPECT_EQ(Fit(Code::kHistogram, counts).estimatedParameters, 3);
  EXPECT_EQ(Fit(Code::kBinomial, counts).estimatedParameters, 2);
  const DiscreteSpecification given{{true}, 8, true};
  EXPECT_EQ(EstimateDiscrete(Code::kBinomial, counts.Sample(), given).estimatedParameters, 1);
}

// References: reference/make_standard_errors.py, by mpmath at 30 digits. The first
// sample is that of McNeil (1997), who prints shape 0.497 and scale 6.98.
TEST(Estimation, StandardErrorsAreThoseOfTheObservedInformation) {
  Values large;
  for (const double x : Example("danish_fire_losses").values) {
    if (x > 10) large.push_back(x);
  }
  struct Case {
    Code code;
    Values data;
    double offset;
    Values values;
    Values covariance;
    double logLikelihood;
  };
  const Case cases[] = {
      {Code::kGeneralPareto,
       large,
       10,
       {6.9754682506144367, 0.49698578607803222},
       {1.23986137544032, -0.081946183359647, -0.081946183359647, 0.0185732787151917},
       -374.89299162180478},
      {Code::kFoldedNormal,
       {0.3, 1.1, 0.7, 2.5, 1.8, 0.1, 1.4, 0.9, 3.1, 2.2, 0.5, 1.6, 1.2, 2.8, 0.8, 1.9, 0.2, 1.3},
       0,
       {1.2500215603160202, 1.0125333952630304},
       {0.0813965617281359, -0.030171969333555, -0.030171969333555, 0.0657271997819722},
       -21.092231404920411},
  };
  for (const Case& c : cases) {
    const DistributionFit fit = Fit(c.code, Data(c.data), c.offset);
    ASSERT_EQ(fit.covariance.size(), 4U);
    for (std::size_t i = 0; i < 2; ++i) {
      EXPECT_NEAR(fit.specification.values[i], c.values[i], 1e-9);
      EXPECT_NEAR(fit.standardErrors[i], std::sqrt(c.covariance[3 * i]), 1e-9);
    }
    for (std::size_t i = 0; i < 4; ++i) EXPECT_NEAR(fit.covariance[i], c.covariance[i], 1e-9);
    EXPECT_NEAR(fit.logLikelihood, c.logLikelihood, 1e-9);
  }
}

// Closed forms, e.g. Johnson, Kotz & Balakrishnan (1994); the Port Pirie errors are printed by Coles (2001).
TEST(Estimation, StandardErrorsOfTheOthers) {
  const Data data({1, 2, 4, 8, 10});
  const DistributionFit normal = Fit(Code::kNormal, data);
  EXPECT_NEAR(normal.standardErrors[0], normal.specification.values[1] / std::sqrt(5), 1e-15);
  EXPECT_NEAR(normal.standardErrors[1], normal.specification.values[1] / std::sqrt(10), 1e-15);
  EXPECT_NEAR(Fit(Code::kPoisson, data).standardErrors[0], 1, 1e-15);
  EXPECT_NEAR(Fit(Code::kGeometric, data).standardErrors[0], std::sqrt(5.0 / 6 / 5) / 6, 1e-15);
  EXPECT_NEAR(Fit(Code::kBernoulli, Data({0, 1, 1, 1})).standardErrors[0], std::sqrt(0.75 / 4 / 4), 1e-15);
  const DistributionFit sea = Fit(Code::kGeneralExtremeValue, Example("portpirie_sea_level"));
  EXPECT_NEAR(sea.standardErrors[0], 0.02793, 5e-5);
  EXPECT_NEAR(sea.standardErrors[1], 0.02025, 5e-5);
  EXPECT_NEAR(sea.standardErrors[2], 0.09826, 5e-5);
  for (const Code code : {Code::kGaussianMixture, Code::kJohnson, Code::kTriangular})
    EXPECT_TRUE(Fit(code, Mixed(100)).standardErrors.empty());
}

// Location 0 is an end of the parameters, a shape below -1/2 outside the regular case: no errors, but a fit.
TEST(Estimation, NoStandardErrorsWhereTheTheoryGivesNone) {
  EXPECT_FALSE(FoldedNormalCovariance(Values{1, -1, 1, -1}, 0, 1, 0));
  EXPECT_FALSE(ParetoCovariance(Values{0.1, 0.5, 0.9}, 1, -0.6, 0));
  // Quantiles of extreme value distributions on either side of shape -1/2.
  for (const double shape : {-0.7, -0.3}) {
    Values values;
    for (int i = 0; i < 200; ++i)
      values.push_back(std::expm1(-shape * std::log(-std::log((i + 0.5) / 200))) / shape);
    const DistributionFit fit = Fit(Code::kGeneralExtremeValue, Data(values));
    ASSERT_NEAR(fit.specification.values[2], shape, 0.1);
    EXPECT_EQ(fit.standardErrors.empty(), shape < -0.5) << shape;
    EXPECT_EQ(fit.covariance.empty(), shape < -0.5) << shape;
  }
}

// Squares of standard errors leave the range of a double before the values do.
TEST(Estimation, ExtremeUnitsCostTheErrorsAndNotTheFit) {
  const Data plain = Mixed(200);
  for (const double unit : {5e160, 1e100, 1e-100}) {
    Values values = plain.values;
    for (double& x : values) x *= unit;
    const Data data(values);
    for (const Code code :
         {Code::kNormal, Code::kHalfNormal, Code::kRayleigh, Code::kJohnson, Code::kGeneralExtremeValue}) {
      SCOPED_TRACE(std::to_string(unit) + " " + std::to_string(static_cast<int>(code)));
      const DistributionFit fit = Fit(code, data);
      const DistributionFit reference = Fit(code, plain);
      ASSERT_TRUE(fit.IsValid());
      const std::size_t scale = code == Code::kJohnson                                 ? 3
                                : code == Code::kHalfNormal || code == Code::kRayleigh ? 0
                                                                                       : 1;
      EXPECT_NEAR(fit.specification.values[scale] / unit / reference.specification.values[scale], 1, 1e-9);
      EXPECT_NEAR(fit.logLikelihood, reference.logLikelihood - 200 * std::log(unit),
                  1e-8 * 200 * std::abs(std::log(unit)));
      EXPECT_EQ(fit.standardErrors.empty(), fit.covariance.empty());
      for (const double error : fit.standardErrors) EXPECT_TRUE(std::isfinite(error));
    }
  }
}

TEST(Estimation, FitsTellWhatTheyComeFrom) {
  const Data even({0.5, 1, 1.5, 2, 2.5, 3, 3.5, 4, 4.5, 5});  // a Pareto likelihood without a maximum
  EXPECT_EQ(Fit(Code::kNormal, even).origin, EstimateOrigin::kLikelihood);
  EXPECT_EQ(Fit(Code::kGeneralPareto, even).origin, EstimateOrigin::kMoments);
  EXPECT_EQ(Fit(Code::kGeneralPareto, Data({0.1, 0.2, 0.4, 1, 3, 9})).origin, EstimateOrigin::kLikelihood);
  EXPECT_EQ(Fit(Code::kJohnson, even).origin, EstimateOrigin::kMoments);
  EXPECT_EQ(Fit(Code::kTriangular, even).origin, EstimateOrigin::kExtremes);
  EXPECT_EQ(Fit(Code::kBinomial, Data({0, 1, 2})).origin, EstimateOrigin::kExtremes);
  EXPECT_EQ(Fit(Code::kBernoulli, Data({0, 1, 2})).origin, EstimateOrigin::kNone);
}

// The information about the location is 0 there, and what rounding leaves of it was inverted.
TEST(Estimation, FoldedNormalAtLocationZeroHasNoStandardErrors) {
  const DistributionFit fit = Fit(Code::kFoldedNormal, Data({0.1, 0.1, 0.2, 0.3, 5}));
  ASSERT_TRUE(fit.IsValid());
  EXPECT_EQ(fit.specification.values[0], 0);
  EXPECT_TRUE(fit.standardErrors.empty() && fit.covariance.empty());
}

TEST(Estimation, OneFailureLeavesTheOtherFitsAlone) {
  const Data data({-1, 2, 3, 5, 7, 11, 13, 17});  // below the offset of six distributions
  const auto fits =
      *FitContinuousDistributions(data.Sample(), Everything(0), ChiSquareBinning::kEqualIntervals, [] {});
  ASSERT_EQ(fits.size(), 11U);
  for (const DistributionFit& fit : fits) {
    const bool hasOffset = HasOffset(fit.specification.code);
    EXPECT_EQ(fit.IsValid(), !hasOffset) << static_cast<int>(fit.specification.code);
    EXPECT_EQ(IsNotSet(fit.kolmogorovSmirnov.statistic), hasOffset);
    EXPECT_EQ(IsNotSet(fit.logLikelihood), hasOffset || fit.IsContradicted());
    EXPECT_TRUE(fit.IsValid() || fit.specification.values.size() == 1);
  }
}

TEST(Estimation, FitOutsideItsOwnSupportHasNoLogLikelihood) {
  // Skewed and light-tailed: a bounded Johnson member by the moments, whose ends lie inside the sample.
  Values values(60, 0.0);
  for (std::size_t i = 0; i < values.size(); ++i)
    values[i] = i % 10 == 0 ? 1 + 0.001 * double(i) : 0.01 * double(i % 7);
  const DistributionFit fit = Fit(Code::kJohnson, Data(values));
  if (fit.IsValid()) {
    const SpecifiedDistribution distribution(fit.specification);
    std::int64_t outside = 0;
    for (const double x : values) outside += std::isinf(distribution.LogDensity(x)) ? 1 : 0;
    EXPECT_EQ(fit.valuesWithoutDensity, outside);
    EXPECT_EQ(IsNotSet(fit.logLikelihood), outside > 0);
    EXPECT_EQ(IsNotSet(fit.Aic()), outside > 0);
  }
}

// Without the two values at its ends, which have density 0, the triangular fit had the lowest AIC of all on
// every one of these samples.
TEST(Estimation, TriangularFitHasNoLikelihoodToCompare) {
  std::mt19937_64 engine(13);
  std::normal_distribution<double> normal;
  ContinuousSpecification specification = Everything(0);
  for (int sample = 0; sample < 60; ++sample) {
    Values values;
    for (int i = 0; i < 20; ++i) values.push_back(10 + normal(engine));
    const Data data(std::move(values));
    const auto fits = *FitContinuousDistributions(data.Sample(), specification,
                                                  ChiSquareBinning::kEqualProbabilities, [] {});
    const DistributionFit& triangular = fits.back();
    ASSERT_EQ(triangular.specification.code, Code::kTriangular);
    EXPECT_TRUE(triangular.IsValid());
    EXPECT_EQ(triangular.valuesWithoutDensity, 2);
    EXPECT_TRUE(IsNotSet(triangular.Aic()) && IsNotSet(triangular.Bic(20)));
    EXPECT_EQ(fits.front().valuesWithoutDensity, 0) << "the normal distribution";
    const auto ranked = RankFits(fits, {RankingCriterion::kAkaike, 20, false});
    EXPECT_FALSE(fits[ranked.front()].IsContradicted());
  }
}

TEST(Estimation, JohnsonByPercentilesEndsTheFitOfTheVariableWhereItFails) {
  ContinuousSpecification specification = Everything(0);
  specification.johnsonByPercentiles = true;
  const Data tied({1, 1, 1, 1, 1, 1, 1, 1, 1, 2});
  EXPECT_EQ(EstimateContinuous(Code::kJohnson, tied.Sample(), specification, [] {}).fault,
            (brenvolt::Fault{EstimationFault::kEqualPercentiles}));
  EXPECT_EQ(FitContinuousDistributions(tied.Sample(), specification, ChiSquareBinning::kEqualIntervals, [] {})
                .Reason(),
            (Fault{FaultIdentifier::kPercentilesNotFitted}));
  EXPECT_TRUE(EstimateContinuous(Code::kJohnson, Mixed(300).Sample(), specification, [] {}).IsValid());
  EXPECT_FALSE(Fit(Code::kJohnson, Data({1, 2, 4})).IsValid()) << "three values have no kurtosis";
}

// A mean of exactly kNotSet would read as a failure with a log-likelihood next to it.
TEST(Estimation, FirstValueThatMeansNotSetIsAFailureThroughout) {
  const DistributionFit fit = Fit(Code::kNormal, Data({-446, -444, -442}));
  EXPECT_FALSE(fit.IsValid());
  EXPECT_TRUE(IsNotSet(fit.logLikelihood));
  EXPECT_TRUE(fit.standardErrors.empty());
  EXPECT_EQ(fit.specification.values.size(), 1U);
  EXPECT_TRUE(Fit(Code::kNormal, Data({-446, -444, -442.5})).IsValid());
}

TEST(Estimation, MixturesStayWithinTheirBounds) {
  EXPECT_EQ(HighestMixtures(3), 2);
  EXPECT_EQ(HighestMixtures(39), 19);
  EXPECT_EQ(HighestMixtures(1000), 20);
  EXPECT_EQ(AllowedMixtures(30, 50), 20);
  EXPECT_EQ(AllowedMixtures(30, 21), 10);
  EXPECT_EQ(AllowedMixtures(3, 50), 3);
  EXPECT_EQ(AllowedMixtures(1, 50), 2);
  EXPECT_EQ(AllowedMixtures(kNotSetCount, 50), 2);
  EXPECT_EQ(AllowedMixtures(5, 3), 2);
  EXPECT_FALSE(Fit(Code::kGaussianMixture, Data({1, 2, 4})).IsValid()) << "two components need four values";
}

TEST(Estimation, ResultsDoNotDependOnTheCompany) {
  const Data data = Mixed(400);
  const auto together =
      *FitContinuousDistributions(data.Sample(), Everything(0), ChiSquareBinning::kEqualProbabilities, [] {});
  for (const DistributionFit& fit : together) {
    const DistributionFit alone = Fit(fit.specification.code, data);
    EXPECT_EQ(alone.specification.values, fit.specification.values);
    EXPECT_EQ(alone.logLikelihood, fit.logLikelihood);
  }
}

// Each asks so often that some passes over the data lie between two questions, also where it thins them.
TEST(Estimation, LongEstimatorsLookForCancellationOnTheWay) {
  const Data data = Mixed(30'000);
  for (const Code code :
       {Code::kFoldedNormal, Code::kGaussianMixture, Code::kGeneralExtremeValue, Code::kGeneralPareto}) {
    SCOPED_TRACE(static_cast<int>(code));
    int asked = 0;
    EXPECT_THROW(EstimateContinuous(code, data.Sample(), Everything(0),
                                    [&asked] {
                                      if (++asked == 20) throw UserCancelled();
                                    }),
                 UserCancelled);
    EXPECT_EQ(asked, 20);
  }
}

TEST(Estimation, CancellationEndsEverything) {
  const Data data = Mixed(400);
  EXPECT_THROW(static_cast<void>(FitContinuousDistributions(data.Sample(), Everything(0),
                                                            ChiSquareBinning::kEqualProbabilities,
                                                            [] { throw UserCancelled(); })),
               UserCancelled);
}

}  // namespace
}  // namespace brenvolt::sra
