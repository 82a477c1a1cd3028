#include "host/graphs/box_plot.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "host/base/error.h"
#include "host/graphs/sorted_values.h"

namespace brenvolt {
namespace {

constexpr std::size_t kMostShown = kShownByRank + 2 * kShownOfEachTail + 400;

TEST(BoxPlot, QuartilesWhiskersAndOutliersAgreeWithR) {
  struct Case {
    std::vector<double> sample;
    std::vector<double> box;  // lower whisker, quartiles, upper whisker, mean
    std::vector<double> outliers;
  };
  const Case cases[] = {
#include "host/graphs/reference/box_values.inc"
  };
  for (const Case& c : cases) {
    const GraphBox box = MakeBox(c.sample, "x");
    const double values[] = {box.lowerWhisker,  box.lowerQuartile, box.median,
                             box.upperQuartile, box.upperWhisker,  box.mean};
    for (std::size_t i = 0; i < std::size(values); ++i) {
      EXPECT_NEAR(values[i], c.box[i], 1e-14 * std::abs(c.box[i])) << c.sample.size() << " values, " << i;
    }
    EXPECT_EQ(box.outliers, c.outliers);
  }
}

TEST(BoxPlot, ManyOutliersAreThinnedWithTheExtremesKept) {
  std::vector<double> sorted(100000, 0.0);
  for (std::size_t i = 90000; i < sorted.size(); ++i) sorted[i] = static_cast<double>(i);
  const Graph graph = BoxPlot(sorted, {.dataName = "x"});
  const std::vector<double>& shown = graph.boxes[0].outliers;
  EXPECT_LE(shown.size(), kMostShown);
  EXPECT_EQ(shown.front(), 90000);
  EXPECT_EQ(shown.back(), 99999);
  ASSERT_EQ(graph.notes.size(), 1U);
  EXPECT_EQ(graph.notes[0], "outliers: " + std::to_string(shown.size()) + " of 10000 points are shown");
}

TEST(BoxPlot, RefusesEmptyUnsortedAndNonFiniteSamples) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  for (const std::vector<double>& values :
       {std::vector<double>{}, {2, 1}, {1, nan}, {1, std::numeric_limits<double>::infinity()}}) {
    EXPECT_THROW(MakeBox(values, "x"), Error);
  }
}

TEST(ShownRanks, DistancesGrowSlowlyFromTheTailsInwards) {
  for (const std::size_t count : {100'000u, 10'000'000u}) {
    const std::vector<std::size_t> ranks = ShownRanks(count);
    for (std::size_t i = 1; ranks[i] < count / 2; ++i) {
      const auto former = static_cast<double>(std::max(ranks[i - 1], kShownOfEachTail));
      ASSERT_LE(static_cast<double>(ranks[i] - ranks[i - 1]), 0.05 * former) << ranks[i];
    }
  }
}

TEST(ShownRanks, AreAllOfASmallSampleAndKeepTheTailsOfALargeOne) {
  EXPECT_EQ(ShownRanks(3), (std::vector<std::size_t>{0, 1, 2}));
  EXPECT_TRUE(ShownRanks(0).empty());
  for (const std::size_t count : {std::size_t{2200}, std::size_t{2201}, std::size_t{1000000}}) {
    const std::vector<std::size_t> ranks = ShownRanks(count);
    EXPECT_LE(ranks.size(), kMostShown);
    EXPECT_GE(ranks.size(), kShownByRank);
    for (std::size_t i = 0; i < kShownOfEachTail; ++i) {
      EXPECT_EQ(ranks[i], i);
      EXPECT_EQ(ranks[ranks.size() - 1 - i], count - 1 - i);
    }
    for (std::size_t i = 1; i < ranks.size(); ++i) {
      ASSERT_LT(ranks[i - 1], ranks[i]);
      ASSERT_LE(ranks[i] - ranks[i - 1], count / kShownByRank + 1);
    }
  }
}

}  // namespace
}  // namespace brenvolt
