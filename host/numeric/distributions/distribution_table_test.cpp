// Every row of the table bound to its own distribution, with its values in their order, and its functions to
// each other. The functions themselves are held to tables elsewhere.
#include "host/numeric/distributions/distribution_table.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <span>
#include <vector>

namespace brenvolt {
namespace {

// The probability up to x by SciPy 1.10.1 (scipy.stats, the line next to it).
struct Case {
  DistributionCode code;
  std::vector<double> values;
  double offset;  // what x is shifted by; 0 for distributions without one
  double x;       // before the shift
  double cdf;
};

const std::vector<Case>& Cases() {
  using enum DistributionCode;
  static const std::vector<Case> kCases{
      {kNormal, {1.5, 2.0}, 0, 2.25, 0.6461697666727237},          // norm(1.5, 2)
      {kLogNormal, {0.5, 0.75}, 3.0, 1.25, 0.356010967858525},     // lognorm(0.75, scale=exp(0.5))
      {kFoldedNormal, {1.5, 2.0}, 3.0, 2.25, 0.6157734049074624},  // foldnorm(0.75, scale=2)
      {kHalfNormal, {2.0}, -1.0, 1.25, 0.4680289419025989},        // halfnorm(scale=2)
      {kRayleigh, {2.0}, -1.0, 1.25, 0.17742243760133541},         // rayleigh(scale=2)
      {kWeibull, {2.0, 1.25}, 0.5, 1.75, 0.5709887702687955},      // weibull_min(1.25, scale=2)
      {kGaussianMixture,
       {0.25, -1.0, 0.5, 0.75, 2.0, 1.5},
       0,
       0.75,
       0.4016881284529734},  // 0.25 norm(-1, 0.5) + 0.75 norm(2, 1.5)
      {kJohnson,
       {2.0, 0.5, 1.5, 2.0, 1.0},
       0,
       1.75,
       0.8531609209292587},  // johnsonsu(0.5, 1.5, loc=1, scale=2)
      {kGeneralExtremeValue,
       {1.0, 2.0, 0.25},
       0,
       2.5,
       0.6047855498607708},                                         // genextreme(-0.25, loc=1, scale=2)
      {kGeneralPareto, {2.0, 0.25}, 1.0, 2.5, 0.6630210663252452},  // genpareto(0.25, scale=2)
      {kTriangular, {-1.0, 4.0, 1.0}, 0, 2.5, 0.8499999999999999},  // triang(0.4, loc=-1, scale=5)
      {kBinomial, {0.25, 12.0}, 0, 4, 0.8423563241958618},          // binom(12, 0.25)
      {kPoisson, {3.5}, 0, 4, 0.7254449533096043},                  // poisson(3.5)
      {kGeometric, {0.25}, 0, 2, 0.578125},                         // geom(0.25, loc=-1)
      {kBernoulli, {0.25}, 0, 0, 0.75},                             // bernoulli(0.25)
      {kHistogram, {1.0, 0.25, 4.0, 0.5, 7.0, 0.25}, 0, 4, 0.75},   // rv_discrete of (1, 4, 7)
  };
  return kCases;
}

TEST(DistributionTableReference, EveryDistributionAgreesWithSciPy) {
  ASSERT_EQ(Cases().size(), static_cast<std::size_t>(kDistributionCount));
  for (const Case& c : Cases()) {
    SCOPED_TRACE(EntryOf(c.code).facts.name);
    const AnyDistribution distribution(c.code, c.values, c.offset);
    const double x = c.x + c.offset;
    EXPECT_TRUE(distribution.IsValid());
    EXPECT_EQ(distribution.Facts().code, c.code);
    EXPECT_NEAR(distribution.Cdf(x), c.cdf, 1e-12);
    EXPECT_NEAR(distribution.Complement(x), 1.0 - c.cdf, 1e-12);
    EXPECT_NEAR(distribution.LogDensity(x), std::log(distribution.Density(x)), 1e-12);
  }
}

TEST(DistributionTable, FunctionsOfADistributionBelongTogether) {
  for (const Case& c : Cases()) {
    SCOPED_TRACE(EntryOf(c.code).facts.name);
    const AnyDistribution distribution(c.code, c.values, c.offset);
    for (const double p : {0.03, 0.35, 0.8}) {
      const double x = distribution.Quantile(p);
      const double y = distribution.ComplementQuantile(1.0 - p);
      EXPECT_NEAR(x, y, 1e-10 * std::max(1.0, std::abs(x)));
      if (EntryOf(c.code).facts.isContinuous) {
        EXPECT_NEAR(distribution.Cdf(x), p, 1e-12);
        // The density is the slope of the distribution function.
        const double h = 1e-5;
        EXPECT_NEAR(distribution.Density(x), (distribution.Cdf(x + h) - distribution.Cdf(x - h)) / (2 * h),
                    1e-6);
      } else {
        EXPECT_GE(distribution.Cdf(x), p);
        EXPECT_NEAR(distribution.Density(x), distribution.Cdf(x) - distribution.Cdf(x - 0.25), 1e-12);
      }
    }
    const std::vector<double> points{c.x + c.offset, c.x + c.offset + 0.5};
    const std::vector<double> probabilities{0.25, 0.75};
    for (std::size_t f = 0; f < kDistributionFunctionCount; ++f) {
      const auto function = static_cast<DistributionFunction>(f);
      const std::vector<double>& at = TakesProbability(function) ? probabilities : points;
      std::vector<double> out(2);
      distribution.At(function, at, out);
      EXPECT_EQ(out, (std::vector{distribution.At(function, at[0]), distribution.At(function, at[1])}));
    }
  }
}

TEST(DistributionTable, OffsetShiftsThoseThatHaveOneAndNoOther) {
  for (const Case& c : Cases()) {
    const AnyDistribution plain(c.code, c.values, 0.0);
    const AnyDistribution shifted(c.code, c.values, 64.0);
    const double shift = EntryOf(c.code).facts.HasOffset() ? 64.0 : 0.0;
    EXPECT_NEAR(shifted.Cdf(c.x + shift), plain.Cdf(c.x), 1e-12) << EntryOf(c.code).facts.name;
    EXPECT_NEAR(shifted.Quantile(0.5), plain.Quantile(0.5) + shift, 1e-12 * 64) << EntryOf(c.code).facts.name;
  }
}

TEST(DistributionTable, WrongNumberOfValuesIsInvalidNotReadBeyond) {
  for (const Case& c : Cases()) {
    SCOPED_TRACE(EntryOf(c.code).facts.name);
    std::vector<double> few(c.values.begin(), c.values.end() - 1);
    std::vector<double> many = c.values;
    many.push_back(1.0);
    for (const auto& values : {few, many, std::vector<double>{}}) {
      const AnyDistribution distribution(c.code, values, c.offset);
      EXPECT_FALSE(distribution.IsValid()) << values.size();
      EXPECT_EQ(distribution.Cdf(c.x), kInvalidProbability);
      EXPECT_EQ(distribution.LogDensity(c.x), kInvalidProbability);
      EXPECT_EQ(distribution.Quantile(0.5), kInvalidQuantile);
      std::vector<double> out(1);
      distribution.Cdf(std::vector{c.x}, out);
      EXPECT_EQ(out[0], kInvalidProbability);
    }
    const AnyDistribution infinite(c.code, c.values, std::numeric_limits<double>::infinity());
    EXPECT_EQ(infinite.IsValid(), !EntryOf(c.code).facts.HasOffset());
  }
}

}  // namespace
}  // namespace brenvolt
