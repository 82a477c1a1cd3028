// What the tables of values cannot show: invalid parameters, NaN, ends of the support, exact jumps, array
// forms.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "host/numeric/distributions/all_distributions.h"
#include "host/numeric/reference/distribution_references.h"

namespace brenvolt {
namespace {

using references::BoundDistribution;
using references::Parameters;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

// A distribution with valid parameters, its support, and what makes its parameters invalid, beside values outside
// their ranges.
struct Case {
  std::string name;
  Parameters parameters;
  double begin;
  double end;
  std::vector<Parameters> invalid;
};

const std::vector<Case>& Cases() {
  static const std::vector<Case> cases = {
      {"normal", {3.0, 2.0}, -kInfinity, kInfinity, {}},
      {"log_normal", {3.0, 2.0, 40.0}, 40.0, kInfinity, {}},
      {"folded_normal", {-3.0, 2.0, 40.0}, 40.0, kInfinity, {}},
      {"half_normal", {2.0, 40.0}, 40.0, kInfinity, {}},
      {"rayleigh", {2.0, 40.0}, 40.0, kInfinity, {}},
      {"weibull", {3.0, 2.0, 40.0}, 40.0, kInfinity, {}},
      {"gaussian_mixture",
       {0.25, -1.0, 1.0, 0.75, 2.0, 0.5},
       -kInfinity,
       kInfinity,
       {{}, {1.0, 0.0}, {0.4, 0.0, 1.0, 0.5, 1.0, 1.0}, {-0.5, 0.0, 1.0, 1.5, 1.0, 1.0}, {0.0, 0.0, 1.0}}},
      {"johnson", {1.0, 0.5, 2.0, 3.0, 40.0}, 40.0, kInfinity, {}},
      {"johnson", {2.0, 0.5, 2.0, 3.0, 40.0}, -kInfinity, kInfinity, {}},
      {"johnson", {3.0, 0.5, 2.0, 3.0, 40.0}, 40.0, 43.0, {}},
      {"johnson", {4.0, 0.5, 2.0, 3.0, 40.0}, -kInfinity, kInfinity, {}},
      {"general_extreme_value", {40.0, 2.0, 0.0}, -kInfinity, kInfinity, {}},
      {"general_extreme_value", {40.0, 2.0, 0.5}, 36.0, kInfinity, {}},
      {"general_extreme_value", {40.0, 2.0, -0.5}, -kInfinity, 44.0, {}},
      {"general_pareto", {2.0, 0.0, 40.0}, 40.0, kInfinity, {}},
      {"general_pareto", {2.0, 0.5, 40.0}, 40.0, kInfinity, {}},
      {"general_pareto", {2.0, -0.5, 40.0}, 40.0, 44.0, {}},
      {"triangular", {3.0, 8.0, 4.0}, 3.0, 8.0, {{3.0, 8.0, 2.9}, {3.0, 8.0, 8.1}, {8.0, 3.0, 5.0}}},
      {"binomial", {0.3, 20.0}, 0.0, 20.0, {}},
      {"poisson", {3.5}, 0.0, kInfinity, {}},
      {"geometric", {0.2}, 0.0, kInfinity, {}},
      {"bernoulli", {0.2}, 0.0, 1.0, {}},
      {"histogram", {4.0, 0.75, 1.0, 0.25}, 1.0, 4.0, {{}, {1.0}, {1.0, 0.5}, {1.0, 1.5, 2.0, -0.5}}},
  };
  return cases;
}

const BoundDistribution& BoundOf(const std::string& name) {
  static const std::vector<BoundDistribution> distributions = references::BoundDistributions();
  return *std::find_if(distributions.begin(), distributions.end(),
                       [&](const BoundDistribution& bound) { return bound.name == name; });
}

bool IsQuantile(const std::string& function) {
  return function.ends_with("Quantile");
}

// Just outside a range, and far.
std::vector<double> OutsideOf(ParameterRange range) {
  constexpr double kLeast = 0x1p-1074;
  constexpr double kAboveOne = 1.0000000000000002;
  switch (range) {
    case ParameterRange::kFinite:
      return {};
    case ParameterRange::kPositive:
      return {0.0, -kLeast, -1.0, kNotSet};
    case ParameterRange::kProportion:
      return {-kLeast, kAboveOne, kNotSet};
    case ParameterRange::kPositiveProportion:
      return {0.0, -kLeast, kAboveOne, kNotSet};
    case ParameterRange::kTrials:
      return {0.0, -1.0, 0.5, 2.5, 0x1p54, kNotSet};
    case ParameterRange::kJohnsonFamily:
      return {0.0, 1.5, 5.0, kNotSet};
  }
  return {};
}

void PrintTo(const Case& distribution, std::ostream* out) {
  *out << distribution.name << testing::PrintToString(distribution.parameters);
}

class Distributions : public testing::TestWithParam<Case> {
 protected:
  const BoundDistribution& bound_ = BoundOf(GetParam().name);

  double Call(const std::string& function, double x) const {
    return bound_.functions.at(function)(x, GetParam().parameters);
  }
};

TEST(DistributionCases, HoldEveryType) {
  for (const BoundDistribution& bound : references::BoundDistributions()) {
    EXPECT_TRUE(std::any_of(Cases().begin(), Cases().end(), [&](const Case& c) {
      return c.name == bound.name;
    })) << bound.name;
  }
}

TEST_P(Distributions, InfinitiesAndEndsOfSupportGiveLimits) {
  const auto expectOutside = [&](double x, bool isAbove) {
    SCOPED_TRACE(x);
    EXPECT_EQ(Call("Density", x), 0.0);
    EXPECT_EQ(Call("LogDensity", x), -kInfinity);
    EXPECT_EQ(Call("Cdf", x), isAbove ? 1.0 : 0.0);
    EXPECT_EQ(Call("Complement", x), isAbove ? 0.0 : 1.0);
  };
  const Case& distribution = GetParam();
  expectOutside(-kInfinity, false);
  expectOutside(kInfinity, true);
  if (std::isfinite(distribution.begin)) expectOutside(distribution.begin - 0.5, false);
  if (std::isfinite(distribution.end)) expectOutside(distribution.end + 0.5, true);
  EXPECT_EQ(Call("Quantile", 0.0), distribution.begin);
  EXPECT_EQ(Call("Quantile", 1.0), distribution.end);
  EXPECT_EQ(Call("ComplementQuantile", 1.0), distribution.begin);
  EXPECT_EQ(Call("ComplementQuantile", 0.0), distribution.end);
}

TEST_P(Distributions, NanStaysNanAndProbabilityOutsideUnitIntervalIsInvalid) {
  for (const auto& [name, function] : bound_.functions) {
    SCOPED_TRACE(name);
    EXPECT_TRUE(std::isnan(Call(name, kNan)));
    if (!IsQuantile(name)) continue;
    EXPECT_EQ(Call(name, -1e-300), kInvalidQuantile);
    EXPECT_EQ(Call(name, 1.0000000000000002), kInvalidQuantile);
  }
}

TEST_P(Distributions, InvalidParametersGiveSentinelsFromEveryFunction) {
  const Case& distribution = GetParam();
  std::vector<Parameters> invalid = distribution.invalid;
  const auto addWith = [&](std::size_t index, double value) {
    invalid.push_back(distribution.parameters);
    invalid.back()[index] = value;
  };
  for (std::size_t i = 0; i < distribution.parameters.size(); ++i) {
    for (const double bad : {kNan, kInfinity, -kInfinity}) addWith(i, bad);
    for (const double bad : OutsideOf(bound_.RangeOf(i))) addWith(i, bad);
  }
  for (const Parameters& parameters : invalid) {
    SCOPED_TRACE(testing::PrintToString(parameters));
    const auto sentinel = [](const std::string& name) {
      return IsQuantile(name) ? kInvalidQuantile : kInvalidProbability;
    };
    for (const auto& [name, function] : bound_.functions) {
      EXPECT_EQ(function(0.5, parameters), sentinel(name)) << name;
    }
    for (const auto& [name, function] : bound_.arrays) {
      std::vector<double> values = {0.25, 0.5, kNan};
      function(values, parameters, values);
      EXPECT_EQ(values, std::vector<double>(3, sentinel(name))) << name;
    }
    for (const auto& [name, moment] : bound_.moments)
      EXPECT_EQ(moment(parameters), kInvalidProbability) << name;
  }
}

TEST_P(Distributions, ArrayFormsInPlaceEqualScalars) {
  const std::vector<double> values = {-kInfinity, -3.0, 0.0, 1e-300, 0.02, 0.5,       0.77, 1.0,
                                      1.5,        7.25, 40., 41.0,   1e9,  kInfinity, kNan};
  for (const auto& [name, function] : bound_.arrays) {
    std::vector<double> array = values;
    function(array, GetParam().parameters, array);
    for (std::size_t i = 0; i < values.size(); ++i) {
      const double scalar = Call(name, values[i]);
      EXPECT_TRUE(array[i] == scalar || (std::isnan(array[i]) && std::isnan(scalar)))
          << name << " at " << values[i] << ": " << array[i] << " for " << scalar;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(BoundDistributions, Distributions, testing::ValuesIn(Cases()),
                         [](const auto& info) { return info.param.name + std::to_string(info.index); });

// Parameters at which the formulas of mean and variance meet 0 times or less infinity.
TEST(DistributionMoments, OfExtremeParametersAreNeverNan) {
  const std::vector<std::pair<std::string, Parameters>> extremes = {
      {"log_normal", {-1e300, 100.0, 0.0}},
      {"log_normal", {700.0, 1e200, 0.0}},
      {"weibull", {1.0, 1e-300, 0.0}},
      {"weibull", {1.0, 1e300, 0.0}},
      {"folded_normal", {1e300, 1e-300, 0.0}},
      {"johnson", {1.0, 1e5, 1e-100, 1.0, 0.0}},
      {"johnson", {2.0, 0.0, 1e-100, 1.0, 0.0}},
      {"johnson", {2.0, 5.0, 1e-3, 1.0, 0.0}},
      {"johnson", {3.0, 5.0, 1e-300, 1.0, 0.0}},
      {"johnson", {3.0, -1e9, 0.5, 1.0, 0.0}},
      {"johnson", {3.0, 0.5, 1e9, 1.0, 0.0}},
      {"general_extreme_value", {0.0, 1.0, -1e300}},
      {"general_extreme_value", {0.0, 1.0, 5e-324}},
      {"general_pareto", {1.0, -1e300, 0.0}},
      {"general_pareto", {1.0, 0.5, 0.0}},
      {"triangular", {-8e307, 8e307, 0.0}}};
  for (const auto& [name, parameters] : extremes) {
    for (const auto& [moment, function] : BoundOf(name).moments) {
      EXPECT_FALSE(std::isnan(function(parameters))) << name << testing::PrintToString(parameters) << moment;
    }
  }
}

TEST(Triangular, OfASinglePointHasAllOfItsProbabilityThere) {
  const Distribution<Triangular> point(2.0, 2.0, 2.0);
  const double below = std::nextafter(2.0, 0.0);
  const double above = std::nextafter(2.0, 3.0);
  EXPECT_EQ(point.Cdf(below), 0.0);
  EXPECT_EQ(point.Cdf(2.0), 1.0);
  EXPECT_EQ(point.Complement(below), 1.0);
  EXPECT_EQ(point.Complement(2.0), 0.0);
  for (const double x : {below, above}) EXPECT_EQ(point.Density(x), 0.0);
  EXPECT_EQ(point.Density(2.0), kInfinity);
  for (const double p : {0.0, 0.3, 0.5, 0.7, 1.0}) {
    EXPECT_EQ(point.Quantile(p), 2.0) << p;
    EXPECT_EQ(point.ComplementQuantile(p), 2.0) << p;
  }
  EXPECT_EQ(point.Mean(), 2.0);
  EXPECT_EQ(point.Variance(), 0.0);
}

TEST(Weibull, DensityAtThresholdDependsOnShape) {
  EXPECT_EQ(Distribution<Weibull>(2.0, 1.0, 5.0).Density(5.0), 0.5);
  EXPECT_EQ(Distribution<Weibull>(2.0, 1.0, 5.0).LogDensity(5.0), -std::log(2.0));
  EXPECT_EQ(Distribution<Weibull>(2.0, 0.5, 5.0).Density(5.0), kInfinity);
  EXPECT_EQ(Distribution<Weibull>(2.0, 0.5, 5.0).LogDensity(5.0), kInfinity);
  EXPECT_EQ(Distribution<Weibull>(2.0, 3.0, 5.0).Density(5.0), 0.0);
  EXPECT_EQ(Distribution<Weibull>(2.0, 3.0, 5.0).LogDensity(5.0), -kInfinity);
}

TEST(Lognormal, DensityNearThresholdSurvivesUnderflowOfItsNormalFactor) {
  // z = -38.4: exp(-z^2 / 2) is subnormal, its quotient by x is not. Value by 50-digit arithmetic.
  EXPECT_NEAR(Distribution<LogNormal>(0.0, 18.0).Density(1e-300) / 3.4845959109324501e-22, 1.0, 1e-12);
}

TEST(GaussianMixture, QuantileEndsWithTheProbabilityAskedFor) {
  constexpr double kRelative = 1e-13;
  const std::vector<Parameters> mixtures = {{0.5, 0.0, 1.0, 0.5, 1e6, 1.0},
                                            {0.45, -1e4, 100.0, 0.55, 3e5, 2e4},
                                            {0.5, 0.0, 1e-300, 0.5, 0.0, 1e300},
                                            {1e-300, 0.0, 1.0, 1.0, 1e9, 1e-9},
                                            {0.5, -1.0, 1e-12, 0.5, 1.0, 1e-12}};
  for (const Parameters& mixture : mixtures) {
    const Distribution<GaussianMixture> distribution(mixture);
    for (const double p : {1e-300, 1e-20, 0.1, 0.25, 0.45, 0.5, 0.55, 0.75, 1.0 - 1e-15}) {
      SCOPED_TRACE(testing::PrintToString(mixture) + " " + std::to_string(p));
      // Neighbours, because one step of x may be a large one of the probability.
      const double x = distribution.Quantile(p);
      EXPECT_LE(distribution.Cdf(std::nextafter(x, -kInfinity)), p * (1.0 + kRelative));
      EXPECT_GE(distribution.Cdf(std::nextafter(x, kInfinity)), p * (1.0 - kRelative));
      const double y = distribution.ComplementQuantile(p);
      EXPECT_GE(distribution.Complement(std::nextafter(y, -kInfinity)), p * (1.0 - kRelative));
      EXPECT_LE(distribution.Complement(std::nextafter(y, kInfinity)), p * (1.0 + kRelative));
    }
  }
}

TEST(Poisson, QuantileAtExactJumpIsThatValueAndAboveItTheNext) {
  for (const double mean : {0.01, 1.0, 3.7, 20.0, 150.0, 1234.5, 1e5, 1e9}) {
    SCOPED_TRACE(mean);
    const Distribution<Poisson> poisson(mean);
    const double deviation = std::sqrt(mean);
    for (const double z : {-6.0, -3.0, -1.0, 0.0, 1.0, 3.0, 4.5}) {
      const double k = std::floor(mean + z * deviation);
      if (k < 0.0) continue;
      const double p = poisson.Cdf(k);
      EXPECT_EQ(poisson.Quantile(p), k);
      EXPECT_EQ(poisson.Quantile(std::nextafter(p, 1.0)), k + 1.0);
      const double q = poisson.Complement(k);
      EXPECT_EQ(poisson.ComplementQuantile(q), k);
      EXPECT_EQ(poisson.ComplementQuantile(std::nextafter(q, 0.0)), k + 1.0);
    }
  }
}

TEST(Poisson, ProbabilityBetweenWholeNumbersIsThatOfTheOneBelow) {
  EXPECT_EQ(Distribution<Poisson>(3.0).Density(2.5), 0.0);
  EXPECT_EQ(Distribution<Poisson>(3.0).LogDensity(2.5), -kInfinity);
  EXPECT_EQ(Distribution<Poisson>(3.0).Cdf(2.999), Distribution<Poisson>(3.0).Cdf(2.0));
  EXPECT_EQ(Distribution<Poisson>(3.0).Complement(2.999), Distribution<Poisson>(3.0).Complement(2.0));
}

}  // namespace
}  // namespace brenvolt
