// What is peculiar to the discrete distributions: jumps, ties, point distributions, codes in any order, counts that
// come again.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <map>
#include <string>
#include <vector>

#include "host/numeric/distributions/all_distributions.h"
#include "host/numeric/distributions/common/count_memo.h"
#include "host/numeric/reference/distribution_references.h"

namespace brenvolt {
namespace {

using references::BoundDistribution;
using references::Parameters;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kLastBelowOne = 1.0 - 0x1p-53;

const BoundDistribution& BoundOf(const std::string& name) {
  static const std::map<std::string, BoundDistribution> distributions = [] {
    std::map<std::string, BoundDistribution> byName;
    for (const BoundDistribution& bound : references::BoundDistributions()) byName[bound.name] = bound;
    return byName;
  }();
  return distributions.at(name);
}

struct Tested {
  std::string name;
  Parameters parameters;

  double At(const std::string& function, double x) const {
    return BoundOf(name).functions.at(function)(x, parameters);
  }
  double Moment(const std::string& moment) const { return BoundOf(name).moments.at(moment)(parameters); }
};

void PrintTo(const Tested& distribution, std::ostream* out) {
  *out << distribution.name << testing::PrintToString(distribution.parameters);
}

TEST(DiscreteDistributions, HistogramNeedsCompleteClassesThatAddUpToOne) {
  const Parameters invalid[] = {
      {}, {1.0}, {1.0, 0.5, 2.0}, {1.0, 0.5, 2.0, 0.49997}, {1.0, 0.5, 2.0, 0.50003}};
  for (const Parameters& parameters : invalid) {
    const Tested distribution{"histogram", parameters};
    EXPECT_EQ(distribution.At("Cdf", 1.0), kInvalidProbability) << testing::PrintToString(parameters);
    EXPECT_EQ(distribution.At("Quantile", 0.5), kInvalidQuantile) << testing::PrintToString(parameters);
  }
  EXPECT_EQ((Tested{"histogram", {1.0, 0.5, 2.0, 0.49999}}.At("Cdf", 2.0)), 1.0);
}

TEST(DiscreteDistributions, EndsOfProbabilityGiveEndsOfSupport) {
  struct Case {
    Tested distribution;
    double lowest;
    double highest;
  };
  const Case cases[] = {{{"binomial", {0.3, 17.0}}, 0.0, 17.0},
                        {{"binomial", {1e-300, 0x1p31}}, 0.0, 0x1p31},
                        {{"binomial", {kLastBelowOne, 3.0}}, 0.0, 3.0},
                        {{"binomial", {0.0, 17.0}}, 0.0, 0.0},
                        {{"binomial", {1.0, 1e6}}, 1e6, 1e6},
                        {{"poisson", {1e-10}}, 0.0, kInfinity},
                        {{"poisson", {1e9}}, 0.0, kInfinity},
                        {{"geometric", {0.25}}, 0.0, kInfinity},
                        {{"geometric", {1.0}}, 0.0, 0.0},
                        {{"bernoulli", {0.6}}, 0.0, 1.0},
                        {{"bernoulli", {1e-300}}, 0.0, 1.0},
                        {{"bernoulli", {kLastBelowOne}}, 0.0, 1.0},
                        {{"bernoulli", {0.0}}, 0.0, 0.0},
                        {{"bernoulli", {1.0}}, 1.0, 1.0},
                        {{"histogram", {7.0, 1.0}}, 7.0, 7.0},
                        {{"histogram", {9.0, 0.0, 3.0, 0.5, -2.0, 0.5, -5.0, 0.0}}, -2.0, 3.0},
                        {{"histogram", {1.0, 1e-300, 2.0, 1.0, 3.0, 1e-300}}, 1.0, 3.0}};
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.distribution));
    EXPECT_EQ(c.distribution.At("Quantile", 0.0), c.lowest);
    EXPECT_EQ(c.distribution.At("Quantile", 1.0), c.highest);
    EXPECT_EQ(c.distribution.At("ComplementQuantile", 1.0), c.lowest);
    EXPECT_EQ(c.distribution.At("ComplementQuantile", 0.0), c.highest);
    EXPECT_EQ(c.distribution.At("Cdf", std::nextafter(c.lowest, -kInfinity)), 0.0);
    EXPECT_EQ(c.distribution.At("Complement", std::nextafter(c.lowest, -kInfinity)), 1.0);
    for (const double x : {c.highest, kInfinity}) {
      EXPECT_EQ(c.distribution.At("Cdf", x), 1.0);
      EXPECT_EQ(c.distribution.At("Complement", x), 0.0);
    }
    for (const double x : {-kInfinity, kInfinity, c.lowest + 0.25}) {
      EXPECT_EQ(c.distribution.At("Density", x), 0.0) << x;
      EXPECT_EQ(c.distribution.At("LogDensity", x), -kInfinity) << x;
    }
    for (const char* function :
         {"Density", "LogDensity", "Cdf", "Complement", "Quantile", "ComplementQuantile"}) {
      EXPECT_TRUE(std::isnan(c.distribution.At(function, kNan))) << function;
    }
    for (const double p : {-1e-300, 1.0000000000000002}) {
      EXPECT_EQ(c.distribution.At("Quantile", p), kInvalidQuantile);
      EXPECT_EQ(c.distribution.At("ComplementQuantile", p), kInvalidQuantile);
    }
  }
}

TEST(DiscreteDistributions, PointDistributionsHaveAllProbabilityInOnePlace) {
  const std::pair<Tested, double> points[] = {
      {{"binomial", {0.0, 9.0}}, 0.0}, {{"binomial", {1.0, 9.0}}, 9.0},   {{"binomial", {0.0, 1.0}}, 0.0},
      {{"binomial", {1.0, 1e6}}, 1e6}, {{"geometric", {1.0}}, 0.0},       {{"bernoulli", {0.0}}, 0.0},
      {{"bernoulli", {1.0}}, 1.0},     {{"histogram", {-3.5, 1.0}}, -3.5}};
  for (const auto& [distribution, place] : points) {
    SCOPED_TRACE(testing::PrintToString(distribution));
    for (const double x : {place - 1.0, place, place + 1.0}) {
      EXPECT_EQ(distribution.At("Density", x), x == place ? 1.0 : 0.0);
      EXPECT_EQ(distribution.At("LogDensity", x), x == place ? 0.0 : -kInfinity);
      EXPECT_EQ(distribution.At("Cdf", x), x >= place ? 1.0 : 0.0);
      EXPECT_EQ(distribution.At("Complement", x), x >= place ? 0.0 : 1.0);
    }
    for (const double p : {0x1p-1074, 0.5, kLastBelowOne}) {
      EXPECT_EQ(distribution.At("Quantile", p), place);
      EXPECT_EQ(distribution.At("ComplementQuantile", p), place);
    }
    EXPECT_EQ(distribution.Moment("Mean"), place);
    EXPECT_EQ(distribution.Moment("Variance"), 0.0);
  }
}

// From the lowest to the highest of the counts within some standard deviations, about `count` of them.
std::vector<double> CountsAround(const Tested& distribution, int count) {
  constexpr double kReach = 6.0;
  const double mean = distribution.Moment("Mean");
  const double reach = kReach * std::sqrt(distribution.Moment("Variance"));
  const double step = std::max(1.0, std::floor(2.0 * reach / count));
  std::vector<double> counts;
  for (double k = std::max(0.0, std::floor(mean - reach)); k <= mean + reach; k += step) counts.push_back(k);
  return counts;
}

// The point where the summed tail changes sides, and each method of the binomial, lie within.
const Tested kCountDistributions[] = {{"binomial", {0.5, 40.0}},    {"binomial", {0.3, 41.0}},
                                      {"binomial", {0.97, 5000.0}}, {"binomial", {0.5, 1199.0}},
                                      {"binomial", {0.5, 1200.0}},  {"binomial", {0.02, 1e6}},
                                      {"binomial", {0.3, 0x1p31}},  {"binomial", {kLastBelowOne, 1e9}},
                                      {"binomial", {0.4, 0x1p53}},  {"poisson", {1e-10}},
                                      {"poisson", {12.5}},          {"poisson", {19990.0}},
                                      {"poisson", {1e9}},           {"geometric", {0.5}},
                                      {"geometric", {0.9}},         {"geometric", {1e-9}},
                                      {"geometric", {0.001}},       {"bernoulli", {0.3}}};

TEST(DiscreteDistributions, QuantileAtItsJumpIsThatCountAndAboveItTheNext) {
  for (const Tested& distribution : kCountDistributions) {
    SCOPED_TRACE(testing::PrintToString(distribution));
    for (const double k : CountsAround(distribution, 60)) {
      const double p = distribution.At("Cdf", k);
      const double before = distribution.At("Cdf", k - 1.0);
      ASSERT_LE(before, p) << k;
      if (before < p && p < 1.0) {
        EXPECT_EQ(distribution.At("Quantile", p), k);
        EXPECT_GT(distribution.At("Quantile", std::nextafter(p, 1.0)), k);
      }
      const double q = distribution.At("Complement", k);
      const double above = distribution.At("Complement", k - 1.0);
      ASSERT_GE(above, q) << k;
      if (above > q && q > 0.0) {
        EXPECT_EQ(distribution.At("ComplementQuantile", q), k);
        EXPECT_GT(distribution.At("ComplementQuantile", std::nextafter(q, 0.0)), k);
      }
      EXPECT_EQ(distribution.At("Cdf", std::nextafter(k + 1.0, 0.0)), p);
      EXPECT_EQ(distribution.At("Complement", std::nextafter(k + 1.0, 0.0)), q);
    }
  }
}

// The distribution function climbs by the density: a seam between two methods would show.
TEST(DiscreteDistributions, NeighbouringProbabilitiesDifferByTheDensity) {
  for (const Tested& distribution : kCountDistributions) {
    SCOPED_TRACE(testing::PrintToString(distribution));
    for (const double k : CountsAround(distribution, 60)) {
      const double climb = distribution.At("Cdf", k) - distribution.At("Cdf", k - 1.0);
      EXPECT_NEAR(climb, distribution.At("Density", k), 1e-13) << k;
    }
  }
}

TEST(DiscreteDistributions, ArraysWithRepeatedCountsGiveTheBitsOfTheScalars) {
  for (const Tested& distribution : kCountDistributions) {
    SCOPED_TRACE(testing::PrintToString(distribution));
    std::vector<double> x = {kInfinity, -kInfinity, kNan, -1.0, -0.5, 1e300, 0x1p60, 0.5};
    for (const double k : CountsAround(distribution, 400))
      x.insert(x.end(), {k, k, k + 0.5, k - 8192.0, k + 8192.0, k});
    std::vector<double> p = {0.0, 1.0, kNan, -1.0, 1.5, 1e-300, kLastBelowOne};
    for (int i = 1; i < 600; ++i) p.push_back((i * 377 % 600) / 600.0);
    for (const auto& [function, arguments] : {std::pair("Cdf", x), std::pair("Quantile", p)}) {
      std::vector<double> values = arguments;
      BoundOf(distribution.name).arrays.at(function)(values, distribution.parameters, values);
      for (std::size_t i = 0; i < values.size(); ++i) {
        const double expected = distribution.At(function, arguments[i]);
        ASSERT_TRUE(values[i] == expected || (std::isnan(values[i]) && std::isnan(expected)))
            << function << " at " << arguments[i];
      }
    }
  }
}

TEST(CountMemo, CallsAgainOnlyForACountThatAnotherHasReplaced) {
  CountMemo memo(4);
  int calls = 0;
  const auto at = [&](double count) {
    return memo.At(count, [&](double k) {
      ++calls;
      return 2.0 * k;
    });
  };
  for (int round = 0; round < 3; ++round) {
    for (const double k : {0.0, 1.0, 2.0, 3.0}) EXPECT_EQ(at(k), 2.0 * k);
  }
  EXPECT_EQ(calls, 4);
  for (const double k : {4.0, 0.0, -1.0, 0x1p60, kInfinity, -kInfinity}) EXPECT_EQ(at(k), 2.0 * k);
  EXPECT_EQ(calls, 10);
}

TEST(Histogram, CodesInAnyOrderTwiceOrWithoutShareCountOnce) {
  const Parameters tidy = {-2.0, 0.25, 1.5, 0.25, 6.0, 0.5};
  const Parameters untidy = {6.0, 0.125, 9.0, 0.0, 1.5, 0.25, 6.0, 0.375, -2.0, 0.25, -7.0, 0.0};
  for (const char* function : {"Density", "Cdf", "Complement"}) {
    for (const double x : {-8.0, -7.0, -2.0, 0.0, 1.5, 6.0, 9.0, 10.0}) {
      EXPECT_EQ((Tested{"histogram", tidy}.At(function, x)), (Tested{"histogram", untidy}.At(function, x)));
    }
  }
  const std::pair<double, double> quantiles[] = {{0.0, -2.0}, {0.25, -2.0}, {0.2500000001, 1.5},
                                                 {0.5, 1.5},  {0.75, 6.0},  {1.0, 6.0}};
  for (const auto& [p, code] : quantiles) {
    EXPECT_EQ(Distribution<Histogram>(tidy).Quantile(p), code);
    EXPECT_EQ(Distribution<Histogram>(untidy).Quantile(p), code);
    std::vector<double> values = {p};
    Distribution<Histogram>(untidy).Quantile(values, values);
    EXPECT_EQ(values[0], code);
  }
  EXPECT_EQ(Distribution<Histogram>(untidy).Mean(), 2.875);
  EXPECT_EQ(Distribution<Histogram>(untidy).Variance(), Distribution<Histogram>(tidy).Variance());
}

TEST(Histogram, VarianceSurvivesCodesFarFromZero) {
  EXPECT_NEAR(Distribution<Histogram>(std::vector{1e9, 0.5, 1e9 + 1.0, 0.5}).Variance(), 0.25, 1e-14);
  EXPECT_NEAR(Distribution<Histogram>(std::vector{-1e15, 0.25, 0.1, 0.5, 1e15, 0.25}).Mean(), 0.05, 1e-16);
}

}  // namespace
}  // namespace brenvolt
