#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "host/statistics/moments.h"
#include "host/statistics/order_statistics.h"
#include "host/statistics/percentiles.h"

namespace brenvolt {
namespace {

Moments MomentsOf(const std::vector<double>& values) {
  MomentAccumulator accumulator;
  for (const double x : values) accumulator.Add(x, 1);
  return accumulator.Finish();
}

// References: SciPy 1.10, skew(bias=False), kurtosis(bias=False), std(ddof=1), of the same numbers.
TEST(Moments, AgreeWithReferencesAndIgnoreALargeShift) {
  const std::vector<double> values{2, 8, 0, 4, 1, 9, 9, 0.5, 3.25, 7};
  for (const double shift : {0.0, 1e6}) {
    std::vector<double> shifted;
    for (const double x : values) shifted.push_back(x + shift);
    const Moments m = MomentsOf(shifted);
    EXPECT_NEAR(m.mean - shift, 4.375, 1e-9);
    EXPECT_NEAR(m.standardDeviation, 3.580910033310899, 1e-8);
    EXPECT_NEAR(m.skewness, 0.206721705068322, 1e-8);
    EXPECT_NEAR(m.kurtosis, -1.8301896379806526, 1e-8);
    EXPECT_EQ(m.minimum, shift);
    EXPECT_EQ(m.maximum, 9 + shift);
  }
}

TEST(Moments, FourthPowersNeitherOverflowNorVanishInExtremeUnits) {
  const std::vector<double> values{2, 8, 0, 4, 1, 9, 9, 0.5, 3.25, 7};
  const Moments reference = MomentsOf(values);
  for (const int exponent : {-530, -400, -270, 270, 530, 1000}) {
    SCOPED_TRACE(exponent);
    std::vector<double> scaled;
    for (const double x : values) scaled.push_back(std::scalbn(x, exponent));
    const Moments m = MomentsOf(scaled);
    EXPECT_EQ(m.standardDeviation, std::scalbn(reference.standardDeviation, exponent));
    EXPECT_EQ(m.skewness, reference.skewness);
    EXPECT_EQ(m.kurtosis, reference.kurtosis);
  }
  // A first value in another unit than the rest.
  for (const double first : {1e-300, 1e-90, 5e-324}) {
    const Moments m = MomentsOf({first, 2, 8, 0, 4, 1, 9, 9, 0.5, 3.25, 7});
    const Moments zero = MomentsOf({0, 2, 8, 0, 4, 1, 9, 9, 0.5, 3.25, 7});
    EXPECT_NEAR(m.skewness, zero.skewness, 1e-14);
    EXPECT_NEAR(m.kurtosis, zero.kurtosis, 1e-13);
  }
}

TEST(Moments, SmallSamplesLeaveWhatTheyCannotTell) {
  const Moments none = MomentsOf({});
  EXPECT_EQ(none.count, 0);
  EXPECT_TRUE(IsNotSet(none.mean));
  const Moments one = MomentsOf({5});
  EXPECT_EQ(one.standardDeviation, 0);
  EXPECT_EQ(one.logMean, std::log(5));
  EXPECT_TRUE(IsNotSet(one.logStandardDeviation));
  const Moments two = MomentsOf({5, 6});
  EXPECT_TRUE(IsNotSet(two.skewness));
  EXPECT_TRUE(IsNotSet(MomentsOf({5, 6, 8}).kurtosis));
  const Moments constant = MomentsOf({3, 3, 3, 3, 3});
  EXPECT_EQ(constant.standardDeviation, 0);
  EXPECT_EQ(constant.kurtosis, 0);
}

TEST(Moments, LogarithmsEndAtTheFirstValueThatIsNotPositive) {
  const Moments positive = MomentsOf({1, std::exp(1.0), std::exp(2.0)});
  EXPECT_NEAR(positive.logMean, 1, 1e-15);
  EXPECT_NEAR(positive.logStandardDeviation, 1, 1e-15);
  EXPECT_TRUE(IsNotSet(MomentsOf({1, 2, 0, 3}).logMean));
  EXPECT_TRUE(IsNotSet(MomentsOf({1, 2, -1}).logStandardDeviation));
}

TEST(Moments, WeightEqualsRepetition) {
  MomentAccumulator weighted;
  weighted.Add(1.5, 3);
  weighted.Add(4, 1);
  weighted.Add(2, 2);
  const Moments a = weighted.Finish();
  const Moments b = MomentsOf({1.5, 1.5, 1.5, 4, 2, 2});
  EXPECT_EQ(a.count, b.count);
  EXPECT_NEAR(a.standardDeviation, b.standardDeviation, 1e-15);
  EXPECT_NEAR(a.kurtosis, b.kurtosis, 1e-12);
  EXPECT_NEAR(a.logStandardDeviation, b.logStandardDeviation, 1e-14);
}

TEST(Moments, BlocksAgreeWithOneValueAtATime) {
  std::vector<double> values;
  for (int i = 0; i < 1003; ++i) values.push_back(std::exp(2 * std::sin(1.7 * i)) - (i % 5));
  for (const int exponent : {-500, -270, 0, 270, 1000}) {
    for (const double shift : {0.0, 1e5}) {
      std::vector<double> scaled;
      for (const double x : values) scaled.push_back(std::scalbn(x + shift, exponent));
      const Moments one = MomentsOf(scaled);
      for (const std::size_t piece : {1, 7, 64, 500, 1003}) {
        SCOPED_TRACE(testing::Message() << exponent << " " << shift << " " << piece);
        MomentAccumulator accumulator;
        for (std::size_t i = 0; i < scaled.size(); i += piece)
          accumulator.Add(std::span(scaled).subspan(i, std::min(piece, scaled.size() - i)));
        const Moments blocks = accumulator.Finish();
        EXPECT_EQ(blocks.count, one.count);
        EXPECT_EQ(blocks.minimum, one.minimum);
        EXPECT_EQ(blocks.maximum, one.maximum);
        EXPECT_NEAR(blocks.mean / one.mean, 1, 1e-13);
        EXPECT_NEAR(blocks.standardDeviation / one.standardDeviation, 1, 1e-11);
        EXPECT_NEAR(blocks.skewness, one.skewness, 1e-8);
        EXPECT_NEAR(blocks.kurtosis, one.kurtosis, 1e-8);
      }
    }
  }
  MomentAccumulator constant;
  for (int i = 0; i < 3; ++i) constant.Add(std::vector<double>{1e-150, 1e-150});
  constant.Add(std::vector<double>{2e-150, 4e-150});
  EXPECT_NEAR(constant.Finish().skewness, MomentsOf({1, 1, 1, 1, 1, 1, 2, 4}).skewness, 1e-12);
}

TEST(OrderStatisticSearch, FindsWhatSortingFinds) {
  std::vector<double> spread;    // every part is kept at once
  std::vector<double> crowded;   // two hundred thousand values share their first bits
  std::vector<double> repeated;  // and their last ones
  for (int i = 0; i < 200'000; ++i) {
    const double u = std::fmod(0.5 + i * 0.6180339887498949, 1.0);
    spread.push_back(std::tan(3 * (u - 0.5)));
    crowded.push_back(1e6 + u);
    repeated.push_back(i % 3 == 0 ? -7.0 : std::floor(4 * u));
  }
  repeated[5] = -std::numeric_limits<double>::infinity();
  repeated[6] = std::numeric_limits<double>::infinity();
  for (const auto& values : {spread, crowded, repeated, std::vector<double>{3}}) {
    std::vector<double> sorted = values;
    std::ranges::sort(sorted);
    const std::size_t n = sorted.size();
    const std::vector<std::uint64_t> ranks{n / 2, 0, n - 1, n / 100, n / 100, 99 * (n / 100), n / 3};
    OrderStatisticSearch search(ranks);
    int passes = 0;
    for (; !search.IsDone(); ++passes) {
      search.Add(std::span(values).first(n / 3));
      search.Add(std::span(values).subspan(n / 3));
      search.EndPass();
    }
    EXPECT_LE(passes, 4);
    for (std::size_t i = 0; i < ranks.size(); ++i) EXPECT_EQ(search.Value(i), sorted[ranks[i]]) << i;
  }
}

// References: NumPy 1.24, percentile(method="linear").
TEST(Percentile, InterpolatesBetweenOrderStatistics) {
  const std::vector<double> sorted{1, 2, 4, 8};
  EXPECT_EQ(Percentile(sorted, 0), 1);
  EXPECT_DOUBLE_EQ(Percentile(sorted, 25), 1.75);
  EXPECT_DOUBLE_EQ(Percentile(sorted, 50), 3);
  EXPECT_DOUBLE_EQ(Percentile(sorted, 90), 6.8);
  EXPECT_EQ(Percentile(sorted, 100), 8);
  EXPECT_EQ(Percentile(std::vector<double>{7}, 99), 7);
  EXPECT_TRUE(IsNotSet(Percentile({}, 50)));
}

}  // namespace
}  // namespace brenvolt
