// Every row of the table of laws bound to its own type, with its values in catalogue order. The functions
// themselves are held to tables elsewhere.
#include "brv_sra/distributions/law.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <span>
#include <vector>

#include "brv_sra/distributions/catalogue.h"
#include "host/numeric/vector/distribution_values.h"

namespace brenvolt::sra {
namespace {

// The probability up to x by SciPy 1.10.1 (scipy.stats, the line beside it).
struct Case {
  DistributionCode code;
  std::vector<double> values;
  double offset;  // what x is shifted by; kNotSet for types without one
  double x;       // before the shift
  double cdf;
};

const std::vector<Case>& Cases() {
  using enum DistributionCode;
  static const std::vector<Case> kCases{
      {kNormal, {1.5, 2.0}, kNotSet, 2.25, 0.6461697666727237},    // norm(1.5, 2)
      {kLogNormal, {0.5, 0.75}, 3.0, 1.25, 0.356010967858525},     // lognorm(0.75, scale=exp(0.5))
      {kFoldedNormal, {1.5, 2.0}, 3.0, 2.25, 0.6157734049074624},  // foldnorm(0.75, scale=2)
      {kHalfNormal, {2.0}, -1.0, 1.25, 0.4680289419025989},        // halfnorm(scale=2)
      {kRayleigh, {2.0}, -1.0, 1.25, 0.17742243760133541},         // rayleigh(scale=2)
      {kWeibull, {2.0, 1.25}, 0.5, 1.75, 0.5709887702687955},      // weibull_min(1.25, scale=2)
      {kGaussianMixture,
       {0.25, -1.0, 0.5, 0.75, 2.0, 1.5},
       kNotSet,
       0.75,
       0.4016881284529734},  // 0.25 norm(-1, 0.5) + 0.75 norm(2, 1.5)
      {kJohnson,
       {2.0, 0.5, 1.5, 2.0, 1.0},
       kNotSet,
       1.75,
       0.8531609209292587},  // johnsonsu(0.5, 1.5, loc=1, scale=2)
      {kGeneralExtremeValue,
       {1.0, 2.0, 0.25},
       kNotSet,
       2.5,
       0.6047855498607708},                                               // genextreme(-0.25, loc=1, scale=2)
      {kGeneralPareto, {2.0, 0.25}, 1.0, 2.5, 0.6630210663252452},        // genpareto(0.25, scale=2)
      {kTriangular, {-1.0, 4.0, 1.0}, kNotSet, 2.5, 0.8499999999999999},  // triang(0.4, loc=-1, scale=5)
      {kBinomial, {0.25, 12.0}, kNotSet, 4, 0.8423563241958618},          // binom(12, 0.25)
      {kPoisson, {3.5}, kNotSet, 4, 0.7254449533096043},                  // poisson(3.5)
      {kGeometric, {0.25}, kNotSet, 2, 0.578125},                         // geom(0.25, loc=-1)
      {kBernoulli, {0.25}, kNotSet, 0, 0.75},                             // bernoulli(0.25)
      {kHistogram, {1.0, 0.25, 4.0, 0.5, 7.0, 0.25}, kNotSet, 4, 0.75},   // rv_discrete of (1, 4, 7)
  };
  return kCases;
}

double Shift(const Case& c) {
  return IsNotSet(c.offset) ? 0.0 : c.offset;
}

TEST(LawReference, EveryTypeAgreesWithSciPy) {
  ASSERT_EQ(Cases().size(), static_cast<std::size_t>(kDistributionCount));
  for (const Case& c : Cases()) {
    SCOPED_TRACE(DisplayName(c.code));
    const Law law(c.code, c.values, c.offset);
    const double x = c.x + Shift(c);
    EXPECT_TRUE(law.IsValid());
    EXPECT_NEAR(law.Cdf(x), c.cdf, 1e-12);
    EXPECT_NEAR(law.Complement(x), 1.0 - c.cdf, 1e-12);
    EXPECT_NEAR(law.LogDensity(x), std::log(law.Density(x)), 1e-12);
  }
}

using Scalar = double (Law::*)(double) const;
using Array = void (Law::*)(std::span<const double>, std::span<double>) const;

TEST(Law, FunctionsOfATypeBelongTogether) {
  for (const Case& c : Cases()) {
    SCOPED_TRACE(DisplayName(c.code));
    const Law law(c.code, c.values, c.offset);
    for (const double p : {0.03, 0.35, 0.8}) {
      const double x = law.Quantile(p);
      const double y = law.ComplementQuantile(1.0 - p);
      EXPECT_NEAR(x, y, 1e-10 * std::max(1.0, std::abs(x)));
      if (IsContinuous(c.code)) {
        EXPECT_NEAR(law.Cdf(x), p, 1e-12);
        // The density is the slope of the distribution function.
        const double h = 1e-5;
        EXPECT_NEAR(law.Density(x), (law.Cdf(x + h) - law.Cdf(x - h)) / (2 * h), 1e-6);
      } else {
        EXPECT_GE(law.Cdf(x), p);
        EXPECT_NEAR(law.Density(x), law.Cdf(x) - law.Cdf(x - 0.25), 1e-12);
      }
    }
    const std::vector<double> points{c.x + Shift(c), c.x + Shift(c) + 0.5};
    const std::vector<double> probabilities{0.25, 0.75};
    const auto expectSame = [&law](const std::vector<double>& at, Scalar scalar, Array array) {
      std::vector<double> out(2);
      (law.*array)(at, out);
      EXPECT_EQ(out, (std::vector{(law.*scalar)(at[0]), (law.*scalar)(at[1])}));
    };
    expectSame(points, &Law::Density, &Law::Density);
    expectSame(points, &Law::LogDensity, &Law::LogDensity);
    expectSame(points, &Law::Cdf, &Law::Cdf);
    expectSame(points, &Law::Complement, &Law::Complement);
    expectSame(probabilities, &Law::Quantile, &Law::Quantile);
    expectSame(probabilities, &Law::ComplementQuantile, &Law::ComplementQuantile);
  }
}

TEST(Law, OffsetShiftsTheTypesThatHaveOneAndNoOther) {
  for (const Case& c : Cases()) {
    const Law plain(c.code, c.values, kNotSet);
    const Law shifted(c.code, c.values, 64.0);
    const double shift = HasOffset(c.code) ? 64.0 : 0.0;
    EXPECT_NEAR(shifted.Cdf(c.x + shift), plain.Cdf(c.x), 1e-12) << DisplayName(c.code);
    EXPECT_NEAR(shifted.Quantile(0.5), plain.Quantile(0.5) + shift, 1e-12 * 64) << DisplayName(c.code);
    EXPECT_NE(IsNotSet(c.offset), HasOffset(c.code)) << DisplayName(c.code);
  }
}

TEST(Law, WrongNumberOfValuesIsInvalidNotReadBeyond) {
  for (const Case& c : Cases()) {
    SCOPED_TRACE(DisplayName(c.code));
    std::vector<double> few(c.values.begin(), c.values.end() - 1);
    std::vector<double> many = c.values;
    many.push_back(1.0);
    for (const auto& values : {few, many, std::vector<double>{}}) {
      const Law law(c.code, values, c.offset);
      EXPECT_FALSE(law.IsValid()) << values.size();
      EXPECT_EQ(law.Cdf(c.x), kInvalidProbability);
      EXPECT_EQ(law.LogDensity(c.x), kInvalidProbability);
      EXPECT_EQ(law.Quantile(0.5), kInvalidQuantile);
      std::vector<double> out(1);
      law.Cdf(std::vector{c.x}, out);
      EXPECT_EQ(out[0], kInvalidProbability);
    }
    const Law infinite(c.code, c.values, std::numeric_limits<double>::infinity());
    EXPECT_EQ(infinite.IsValid(), !HasOffset(c.code));
  }
}

}  // namespace
}  // namespace brenvolt::sra
