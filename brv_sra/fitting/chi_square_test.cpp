#include "brv_sra/fitting/chi_square.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/distributions/specified_distribution.h"

namespace brenvolt::sra {
namespace {

DistributionFit FitOf(DistributionCode code, std::vector<double> values, double offset = kNotSet) {
  DistributionFit fit;
  fit.specification.code = code;
  fit.specification.values = std::move(values);
  fit.specification.offset = offset;
  return fit;
}

// The quantiles at (i - 1/2) / n: data that a fit of the same distribution matches.
std::vector<double> QuantilesOf(const DistributionFit& fit, std::size_t n) {
  const SpecifiedDistribution distribution(fit.specification);
  std::vector<double> data;
  for (std::size_t i = 0; i < n; ++i)
    data.push_back(distribution.Quantile((static_cast<double>(i) + 0.5) / static_cast<double>(n)));
  return data;
}

TEST(ChiSquareBins, CountsAndExpectationsAddUpForEveryTypeAndBinning) {
  using enum DistributionCode;
  const DistributionFit fits[] = {FitOf(kNormal, {4, 2.5}),
                                  FitOf(kLogNormal, {1, 0.75}, 100),
                                  FitOf(kGaussianMixture, {0.25, -40, 1, 0.75, 60, 2}),
                                  FitOf(kGeneralPareto, {4, 0.6}, -7),
                                  FitOf(kTriangular, {0, 1, 0}),
                                  FitOf(kBinomial, {0.4, 200}),
                                  FitOf(kPoisson, {4}),
                                  FitOf(kGeometric, {0.001}),
                                  FitOf(kBernoulli, {0.4}),
                                  FitOf(kHistogram, {7, 0.25, -1.5, 0.5, 4, 0.25})};
  for (const DistributionFit& fit : fits) {
    const auto data = QuantilesOf(fit, 700);
    for (const auto binning : {ChiSquareBinning::kEqualProbabilities, ChiSquareBinning::kEqualIntervals}) {
      SCOPED_TRACE(testing::Message() << SpacedKey(fit.specification.code) << static_cast<int>(binning));
      const auto bins = ChiSquareBins(fit.specification, data, binning);
      ASSERT_FALSE(bins.empty());
      EXPECT_LE(bins.size(), 51U);
      const auto merged = MergeSmallBins(bins);
      double observed = 0;
      double expected = 0;
      for (const ChiSquareBin& bin : merged) {
        observed += bin.observed;
        expected += bin.expected;
        EXPECT_GE(bin.expected, kLeastExpectedCount);
        // Such data leave a value at most on the wrong side of either boundary; ties of counts a few more.
        EXPECT_NEAR(bin.observed, bin.expected, 2.01);
      }
      EXPECT_EQ(observed, 700);
      EXPECT_NEAR(expected, 700, 1e-9);
    }
  }
}

TEST(ChiSquareBins, BoundariesFollowTheBinning) {
  const auto fit = FitOf(DistributionCode::kWeibull, {2, 1}, 3.0);
  std::vector<double> data(101);
  std::iota(data.begin(), data.end(), 3.0);  // 0 to 100 less the offset: 20 steps of 5
  auto bins = ChiSquareBins(fit.specification, data, ChiSquareBinning::kEqualIntervals);
  ASSERT_EQ(bins.size(), 20U);
  EXPECT_DOUBLE_EQ(bins[0].upper, 5);
  EXPECT_EQ(bins[0].observed, 6) << "0 to 5, the boundary included";
  EXPECT_EQ(bins[1].observed, 5);
  EXPECT_DOUBLE_EQ(bins[19].upper, 100);
  // Far in the tail the smaller tail keeps the digits that 1 - F has lost.
  EXPECT_NEAR(bins[18].expected / (101 * (std::exp(-45.0) - std::exp(-47.5))), 1, 1e-9);
  bins = ChiSquareBins(fit.specification, data, ChiSquareBinning::kEqualProbabilities);
  ASSERT_EQ(bins.size(), 20U);
  EXPECT_NEAR(bins[0].upper, -2 * std::log(0.95), 1e-12);
  EXPECT_EQ(bins[19].upper, kTopBoundary);
  for (const ChiSquareBin& bin : bins) EXPECT_NEAR(bin.expected, 101 / 20.0, 1e-9);
}

TEST(ChiSquareBins, RoundDataOnRoundBoundariesCountBelowWhateverTheOffset) {
  // 4.1 - 3.5 is 0.5999999999999996, and 0.3 three times 0.1 is more than 0.3.
  for (const double offset : {0.0, 3.5, -0.7}) {
    const auto fit = FitOf(DistributionCode::kRayleigh, {1}, offset);
    std::vector<double> data;
    for (int i = 0; i <= 20; ++i) data.push_back(i / 10.0 + offset);
    const auto bins = ChiSquareBins(fit.specification, data, ChiSquareBinning::kEqualIntervals);
    ASSERT_EQ(bins.size(), 20U);
    EXPECT_EQ(bins[0].observed, 2) << offset;
    for (std::size_t i = 1; i < bins.size(); ++i) EXPECT_EQ(bins[i].observed, 1) << offset << ' ' << i;
  }
}

TEST(ChiSquareBins, CountsGetWholeNumbersOrGroupsOfThem) {
  struct Case {
    DistributionFit fit;
    std::vector<double> data;
    std::vector<double> firstBoundaries;
    std::size_t bins;
  };
  using enum DistributionCode;
  const Case cases[] = {{FitOf(kPoisson, {4}), {1, 2, 2, 9}, {1, 2, 3}, 9},
                        {FitOf(kPoisson, {4}), {3, 3}, {kTopBoundary}, 1},
                        {FitOf(kGeometric, {0.01}), {0, 50}, {0, 2, 4}, 26},
                        {FitOf(kGeometric, {0.001}), {3, 1996}, {0, 100, 200}, 21},
                        {FitOf(kBernoulli, {0.4}), {0, 0, 1}, {0, kTopBoundary}, 2},
                        {FitOf(kHistogram, {7, 0.25, -1.5, 0.5, 4, 0.25}), {4, 7}, {-1.5, 4}, 3}};
  for (const Case& c : cases) {
    const auto bins = ChiSquareBins(c.fit.specification, c.data, ChiSquareBinning::kEqualProbabilities);
    EXPECT_EQ(bins.size(), c.bins) << c.data.back();
    for (std::size_t i = 0; i < c.firstBoundaries.size(); ++i) {
      ASSERT_LT(i, bins.size());
      EXPECT_EQ(bins[i].upper, c.firstBoundaries[i]) << c.data.back();
    }
  }
}

TEST(MergeSmallBins, GrowsFromBothTailsAndLeavesNoSmallMiddle) {
  struct Case {
    std::vector<double> expected;
    std::vector<double> merged;
  };
  const Case cases[] = {
      {{}, {}},
      {{3}, {3}},
      {{6, 7, 8}, {6, 7, 8}},
      {{1, 2, 3, 20, 3, 2, 1}, {6, 20, 6}},
      {{1, 2, 20, 2, 1}, {26}},
      {{4, 4, 20, 1}, {8, 21}},
      {{6, 1, 7}, {7, 7}},       // 1 holds the median: it joins the smaller neighbour
      {{9, 1, 6.5}, {10, 6.5}},  // what a tail has not finished joins the middle
      {{1, 1, 1, 1}, {4}},
      {{0, 0, 5, 5, 0, 0}, {5, 5}},
  };
  for (const Case& c : cases) {
    std::vector<ChiSquareBin> bins;
    for (std::size_t i = 0; i < c.expected.size(); ++i)
      bins.push_back({static_cast<double>(i), 1.0, c.expected[i]});
    std::vector<double> merged;
    double observed = 0;
    for (const ChiSquareBin& bin : MergeSmallBins(bins)) {
      merged.push_back(bin.expected);
      observed += bin.observed;
    }
    EXPECT_EQ(merged, c.merged);
    EXPECT_EQ(observed, static_cast<double>(c.expected.size()));
  }
}

TEST(ChiSquareTest, DegreesOfFreedomLoseTheEstimatedParametersDownToOne) {
  auto fit = FitOf(DistributionCode::kBernoulli, {0.4});
  const std::vector<double> data{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1};
  for (const int parameters : {0, 1, 7}) {
    fit.estimatedParameters = parameters;
    const auto result = ComputeChiSquareTest(fit, data, ChiSquareBinning::kEqualProbabilities);
    EXPECT_EQ(result.degreesOfFreedom, 1);
    // (12 - 14.4)^2 / 14.4 + (12 - 9.6)^2 / 9.6 = 1; P(X > 1) = erfc(sqrt(1/2)).
    EXPECT_NEAR(result.statistic, 1.0, 1e-12);
    EXPECT_NEAR(result.pValue, std::erfc(std::sqrt(0.5)), 1e-12);
  }
}

TEST(ChiSquareTest, FailsWhereNoTwoBinsAreLeft) {
  struct Case {
    DistributionFit fit;
    std::vector<double> data;
  };
  using enum DistributionCode;
  const Case cases[] = {{FitOf(kNormal, {0, 1}), {-1, 0, 1}},
                        {FitOf(kNormal, {0, 1}), {0, HUGE_VAL}},
                        {FitOf(kNormal, {1e305, 1e305}), {-1, 0, 1}},
                        {FitOf(kNormal, {0, 0}), std::vector<double>(100, 1.0)}};
  for (const Case& c : cases) {
    for (const auto binning : {ChiSquareBinning::kEqualProbabilities, ChiSquareBinning::kEqualIntervals}) {
      const auto result = ComputeChiSquareTest(c.fit, c.data, binning);
      EXPECT_TRUE(IsNotSet(result.statistic) && IsNotSet(result.pValue)) << c.data.back();
      EXPECT_EQ(result.degreesOfFreedom, kNotSetCount);
    }
  }
}

}  // namespace
}  // namespace brenvolt::sra
