#include "host/jobs/expected_counts.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>

namespace brenvolt {
namespace {

const std::vector<double> kBounds{-2, -1, 0, 1, 2};

GraphSeries Expected(const char* notation, bool isTruncated = false) {
  return ExpectedCounts(ReadDistribution(notation), isTruncated, kBounds, 1000);
}

// The area under a line through its points.
double AreaUnder(const GraphSeries& line) {
  double area = 0;
  for (std::size_t i = 1; i < line.x.size(); ++i)
    area += (line.x[i] - line.x[i - 1]) * (line.y[i] + line.y[i - 1]) / 2;
  return area;
}

TEST(ExpectedCounts, AContinuousDistributionIsItsDensityInUnitsOfAClass) {
  const GraphSeries line = Expected("normal(0, 1)");
  EXPECT_EQ(line.style, SeriesStyle::kLine);
  EXPECT_EQ(line.name, "normal(location=0, scale=1)");
  EXPECT_EQ(line.x.front(), -2);
  EXPECT_EQ(line.x.back(), 2);
  EXPECT_NEAR(line.y[line.y.size() / 2], 1000 / std::sqrt(2 * M_PI), 1e-9);
  EXPECT_NEAR(AreaUnder(line), 1000 * std::erf(std::sqrt(2.0)), 0.1);
}

TEST(ExpectedCounts, WhatIsLeftOfATruncatedDistributionHoldsAllValues) {
  for (const auto& [notation, isTruncated, from, to] :
       std::vector<std::tuple<const char*, bool, double, double>>{
           {"normal(0, 1) in [-1, 1.5]", false, -1, 1.5},
           {"normal(0, 0.5)", true, -1.288, 1.288},
           {"triangular(min=-1, max=1, mode=0)", false, -2, 2}}) {
    const GraphSeries line = Expected(notation, isTruncated);
    EXPECT_NEAR(line.x.front(), from, 1e-3) << notation;
    EXPECT_NEAR(line.x.back(), to, 1e-3) << notation;
    EXPECT_NEAR(AreaUnder(line), 1000, 3) << notation;
  }
}

TEST(ExpectedCounts, ADiscreteDistributionHasAPointForEachClass) {
  const std::vector<double> bounds{-0.5, 0.5, 1.5, 2.5};
  const GraphSeries points = ExpectedCounts(ReadDistribution("poisson(2)"), false, bounds, 1000);
  EXPECT_EQ(points.style, SeriesStyle::kPoints);
  EXPECT_EQ(points.x, (std::vector<double>{0, 1, 2}));
  for (const std::size_t k : {0u, 1u, 2u})
    EXPECT_NEAR(points.y[k], 1000 * std::exp(-2.0) * std::pow(2, k) / std::tgamma(k + 1.0), 1e-9);
  // A class holds its upper bound, the first its lower one as well.
  const std::vector<double> wide{0, 2, 100};
  const GraphSeries whole = ExpectedCounts(ReadDistribution("poisson(2)"), false, wide, 1000);
  EXPECT_NEAR(whole.y[0], 1000 * 5 * std::exp(-2.0), 1e-9);
  EXPECT_NEAR(whole.y[0] + whole.y[1], 1000, 1e-9);
}

TEST(ExpectedCounts, NothingIsSaidWhereNothingIsKnown) {
  EXPECT_TRUE(Expected("poisson(3) in [2, ]").x.empty());
  EXPECT_TRUE(Expected("poisson(3)", true).x.empty());
}

}  // namespace
}  // namespace brenvolt
