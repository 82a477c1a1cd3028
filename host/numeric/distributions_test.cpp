// What the tables of values cannot show: invalid parameters, NaN, ends of the support, exact jumps, array
// forms.
#include "host/numeric/distributions.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace brenvolt {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

// All functions of one type at one set of parameters.
struct Bound {
  std::string name;
  double (*density)(double);
  double (*logDensity)(double);
  double (*cdf)(double);
  double (*complement)(double);
  double (*quantile)(double);
  double (*complementQuantile)(double);
  double supportBegin = 0.0;

  std::vector<double (*)(double)> Probabilities() const { return {density, logDensity, cdf, complement}; }
  std::vector<double (*)(double)> Quantiles() const { return {quantile, complementQuantile}; }
};

constexpr double kThreshold = 40.0;

const std::vector<Bound>& ValidTypes() {
  static const std::vector<Bound> types = {
      {"normal", [](double x) { return normal::Density(x, 3.0, 2.0); },
       [](double x) { return normal::LogDensity(x, 3.0, 2.0); },
       [](double x) { return normal::Cdf(x, 3.0, 2.0); },
       [](double x) { return normal::Complement(x, 3.0, 2.0); },
       [](double p) { return normal::Quantile(p, 3.0, 2.0); },
       [](double q) { return normal::ComplementQuantile(q, 3.0, 2.0); }, -kInfinity},
      {"lognormal", [](double x) { return lognormal::Density(x, 3.0, 2.0, kThreshold); },
       [](double x) { return lognormal::LogDensity(x, 3.0, 2.0, kThreshold); },
       [](double x) { return lognormal::Cdf(x, 3.0, 2.0, kThreshold); },
       [](double x) { return lognormal::Complement(x, 3.0, 2.0, kThreshold); },
       [](double p) { return lognormal::Quantile(p, 3.0, 2.0, kThreshold); },
       [](double q) { return lognormal::ComplementQuantile(q, 3.0, 2.0, kThreshold); }, kThreshold},
      {"weibull", [](double x) { return weibull::Density(x, 3.0, 2.0, kThreshold); },
       [](double x) { return weibull::LogDensity(x, 3.0, 2.0, kThreshold); },
       [](double x) { return weibull::Cdf(x, 3.0, 2.0, kThreshold); },
       [](double x) { return weibull::Complement(x, 3.0, 2.0, kThreshold); },
       [](double p) { return weibull::Quantile(p, 3.0, 2.0, kThreshold); },
       [](double q) { return weibull::ComplementQuantile(q, 3.0, 2.0, kThreshold); }, kThreshold},
      {"poisson", [](double x) { return poisson::Density(x, 3.5); },
       [](double x) { return poisson::LogDensity(x, 3.5); }, [](double x) { return poisson::Cdf(x, 3.5); },
       [](double x) { return poisson::Complement(x, 3.5); },
       [](double p) { return poisson::Quantile(p, 3.5); },
       [](double q) { return poisson::ComplementQuantile(q, 3.5); }, 0.0},
  };
  return types;
}

TEST(Distributions, InfinitiesAndEndsOfSupportGiveLimits) {
  for (const Bound& type : ValidTypes()) {
    SCOPED_TRACE(type.name);
    for (const double x : {-kInfinity, kInfinity}) {
      EXPECT_EQ(type.density(x), 0.0);
      EXPECT_EQ(type.logDensity(x), -kInfinity);
      EXPECT_EQ(type.cdf(x), x > 0.0 ? 1.0 : 0.0);
      EXPECT_EQ(type.complement(x), x > 0.0 ? 0.0 : 1.0);
    }
    EXPECT_EQ(type.quantile(0.0), type.supportBegin);
    EXPECT_EQ(type.quantile(1.0), kInfinity);
    EXPECT_EQ(type.complementQuantile(1.0), type.supportBegin);
    EXPECT_EQ(type.complementQuantile(0.0), kInfinity);
    if (!std::isinf(type.supportBegin)) {
      const double below = type.supportBegin - 0.5;
      EXPECT_EQ(type.density(below), 0.0);
      EXPECT_EQ(type.logDensity(below), -kInfinity);
      EXPECT_EQ(type.cdf(below), 0.0);
      EXPECT_EQ(type.complement(below), 1.0);
    }
  }
}

TEST(Distributions, NanStaysNanAndProbabilityOutsideUnitIntervalIsInvalid) {
  for (const Bound& type : ValidTypes()) {
    SCOPED_TRACE(type.name);
    for (const auto function : type.Probabilities()) EXPECT_TRUE(std::isnan(function(kNan)));
    for (const auto function : type.Quantiles()) {
      EXPECT_TRUE(std::isnan(function(kNan)));
      EXPECT_EQ(function(-1e-300), kInvalidQuantile);
      EXPECT_EQ(function(1.0000000000000002), kInvalidQuantile);
    }
  }
}

TEST(Distributions, InvalidParametersGiveSentinelsFromEveryFunction) {
  std::vector<double> x = {1.0, 2.0};
  std::vector<double> out(2);
  const auto expectInvalid = [&](std::array<double, 4> probabilities, std::array<double, 2> quantiles) {
    for (const double p : probabilities) EXPECT_EQ(p, kInvalidProbability);
    for (const double q : quantiles) EXPECT_EQ(q, kInvalidQuantile);
  };
  for (const double bad : {0.0, -1.0, kNotSet, kNan, kInfinity, -kInfinity}) {
    SCOPED_TRACE(bad);
    expectInvalid({normal::Density(1, 0, bad), normal::LogDensity(1, 0, bad), normal::Cdf(1, 0, bad),
                   normal::Complement(1, 0, bad)},
                  {normal::Quantile(0.5, 0, bad), normal::ComplementQuantile(0.5, 0, bad)});
    expectInvalid({lognormal::Density(1, 0, bad, 0), lognormal::LogDensity(1, 0, bad, 0),
                   lognormal::Cdf(1, 0, bad, 0), lognormal::Complement(1, 0, bad, 0)},
                  {lognormal::Quantile(0.5, 0, bad, 0), lognormal::ComplementQuantile(0.5, 0, bad, 0)});
    for (const auto& [scale, shape] : {std::pair(bad, 1.0), std::pair(1.0, bad)}) {
      expectInvalid(
          {weibull::Density(1, scale, shape, 0), weibull::LogDensity(1, scale, shape, 0),
           weibull::Cdf(1, scale, shape, 0), weibull::Complement(1, scale, shape, 0)},
          {weibull::Quantile(0.5, scale, shape, 0), weibull::ComplementQuantile(0.5, scale, shape, 0)});
    }
    expectInvalid({poisson::Density(1, bad), poisson::LogDensity(1, bad), poisson::Cdf(1, bad),
                   poisson::Complement(1, bad)},
                  {poisson::Quantile(0.5, bad), poisson::ComplementQuantile(0.5, bad)});
    weibull::Quantile(x, bad, 1.0, 0.0, out);
    EXPECT_EQ(out, std::vector<double>(2, kInvalidQuantile));
  }
  for (const double bad : {kNan, kInfinity}) {
    EXPECT_EQ(normal::Cdf(1, bad, 1), kInvalidProbability);
    EXPECT_EQ(lognormal::Cdf(1, bad, 1, 0), kInvalidProbability);
    EXPECT_EQ(lognormal::Quantile(0.5, 0, 1, bad), kInvalidQuantile);
    EXPECT_EQ(weibull::Cdf(1, 1, 1, bad), kInvalidProbability);
    EXPECT_EQ(weibull::Quantile(0.5, 1, 1, bad), kInvalidQuantile);
  }
}

TEST(Distributions, ArrayFormsInPlaceEqualScalars) {
  const std::vector<double> x = {-3.0, 0.0, 0.5, 1.0, 7.25, 40.0, 1e9, kNan, kInfinity};
  const std::vector<double> p = {0.0, 1e-300, 0.02, 0.5, 0.77, 1.0, 1.5, kNan};
  const auto expectSame = [](const std::vector<double>& left, const std::vector<double>& right) {
    for (std::size_t i = 0; i < left.size(); ++i) {
      EXPECT_TRUE(left[i] == right[i] || (std::isnan(left[i]) && std::isnan(right[i]))) << i;
    }
  };
  const auto check = [&](auto arrayCdf, auto scalarCdf, auto arrayQuantile, auto scalarQuantile) {
    std::vector<double> array = x;
    std::vector<double> scalar = x;
    arrayCdf(array);
    for (double& value : scalar) value = scalarCdf(value);
    expectSame(array, scalar);
    array = scalar = p;
    arrayQuantile(array);
    for (double& value : scalar) value = scalarQuantile(value);
    expectSame(array, scalar);
  };
  check([](auto& v) { normal::Cdf(v, 1, 2, v); }, [](double v) { return normal::Cdf(v, 1, 2); },
        [](auto& v) { normal::Quantile(v, 1, 2, v); }, [](double v) { return normal::Quantile(v, 1, 2); });
  check([](auto& v) { lognormal::Cdf(v, 1, 2, 0.5, v); },
        [](double v) { return lognormal::Cdf(v, 1, 2, 0.5); },
        [](auto& v) { lognormal::Quantile(v, 1, 2, 0.5, v); },
        [](double v) { return lognormal::Quantile(v, 1, 2, 0.5); });
  check([](auto& v) { weibull::Cdf(v, 1, 2, 0.5, v); }, [](double v) { return weibull::Cdf(v, 1, 2, 0.5); },
        [](auto& v) { weibull::Quantile(v, 1, 2, 0.5, v); },
        [](double v) { return weibull::Quantile(v, 1, 2, 0.5); });
  check([](auto& v) { poisson::Cdf(v, 6.5, v); }, [](double v) { return poisson::Cdf(v, 6.5); },
        [](auto& v) { poisson::Quantile(v, 6.5, v); }, [](double v) { return poisson::Quantile(v, 6.5); });
}

TEST(Weibull, DensityAtThresholdDependsOnShape) {
  EXPECT_EQ(weibull::Density(5.0, 2.0, 1.0, 5.0), 0.5);
  EXPECT_EQ(weibull::LogDensity(5.0, 2.0, 1.0, 5.0), -std::log(2.0));
  EXPECT_EQ(weibull::Density(5.0, 2.0, 0.5, 5.0), kInfinity);
  EXPECT_EQ(weibull::LogDensity(5.0, 2.0, 0.5, 5.0), kInfinity);
  EXPECT_EQ(weibull::Density(5.0, 2.0, 3.0, 5.0), 0.0);
  EXPECT_EQ(weibull::LogDensity(5.0, 2.0, 3.0, 5.0), -kInfinity);
}

TEST(Lognormal, DensityNearThresholdSurvivesUnderflowOfItsNormalFactor) {
  // z = -38.4: exp(-z^2 / 2) is subnormal, its quotient by x is not. Value by 50-digit arithmetic.
  EXPECT_NEAR(lognormal::Density(1e-300, 0.0, 18.0, 0.0) / 3.4845959109324501e-22, 1.0, 1e-12);
}

TEST(Poisson, QuantileAtExactJumpIsThatValueAndAboveItTheNext) {
  for (const double mean : {0.01, 1.0, 3.7, 20.0, 150.0, 1234.5, 1e5, 1e9}) {
    SCOPED_TRACE(mean);
    const double deviation = std::sqrt(mean);
    for (const double z : {-6.0, -3.0, -1.0, 0.0, 1.0, 3.0, 4.5}) {
      const double k = std::floor(mean + z * deviation);
      if (k < 0.0) continue;
      const double p = poisson::Cdf(k, mean);
      EXPECT_EQ(poisson::Quantile(p, mean), k);
      EXPECT_EQ(poisson::Quantile(std::nextafter(p, 1.0), mean), k + 1.0);
      const double q = poisson::Complement(k, mean);
      EXPECT_EQ(poisson::ComplementQuantile(q, mean), k);
      EXPECT_EQ(poisson::ComplementQuantile(std::nextafter(q, 0.0), mean), k + 1.0);
    }
  }
}

TEST(Poisson, ProbabilityBetweenWholeNumbersIsThatOfTheOneBelow) {
  EXPECT_EQ(poisson::Density(2.5, 3.0), 0.0);
  EXPECT_EQ(poisson::LogDensity(2.5, 3.0), -kInfinity);
  EXPECT_EQ(poisson::Cdf(2.999, 3.0), poisson::Cdf(2.0, 3.0));
  EXPECT_EQ(poisson::Complement(2.999, 3.0), poisson::Complement(2.0, 3.0));
}

}  // namespace
}  // namespace brenvolt
