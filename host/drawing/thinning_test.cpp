#include "host/drawing/thinning.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace brenvolt {
namespace {

const std::size_t kMany = 200'000;

TEST(Thinning, PointsShareNoCellAndExtremesStay) {
  std::vector<double> x;
  std::vector<double> y;
  for (std::size_t i = 1; i <= kMany; ++i) {
    x.push_back(std::fmod(static_cast<double>(i) * 0.6180339887, 1.0));
    y.push_back(std::fmod(static_cast<double>(i) * 0.7548776662, 1.0));
  }
  x[150'001] = 1;
  y[170'001] = 0;
  const std::vector<std::size_t> kept = ThinPoints(x, y, {0, 1, 0, 1, 10, 10});
  EXPECT_GE(kept.size(), 100u);
  EXPECT_LE(kept.size(), 104u);
  EXPECT_TRUE(std::ranges::is_sorted(kept));
  EXPECT_TRUE(std::ranges::binary_search(kept, 150'001u));
  EXPECT_TRUE(std::ranges::binary_search(kept, 170'001u));
}

TEST(Thinning, FewPointsAreKeptAllButThoseWithoutValue) {
  const std::vector<double> x{0.5, 0.5, std::nan(""), 2, 0.5};
  const std::vector<double> y{0.5, 0.5, 0.5, 0.5, INFINITY};
  EXPECT_EQ(ThinPoints(x, y, {0, 1, 0, 1, 1, 1}), (std::vector<std::size_t>{0, 1}));
  EXPECT_EQ(ThinLine(x, y, {0, 1, 0, 1, 1, 1}), (std::vector<std::size_t>{0, 1, 3}));
}

TEST(Thinning, ALineKeepsTheLowestAndHighestOfEachColumn) {
  std::vector<double> x;
  std::vector<double> y;
  for (std::size_t i = 0; i < kMany; ++i) {
    x.push_back(static_cast<double>(i));
    y.push_back(std::sin(static_cast<double>(i)));
  }
  y[100'003] = 50;
  y[30'001] = -50;
  const std::vector<std::size_t> kept = ThinLine(x, y, {0, static_cast<double>(kMany), -50, 50, 20, 10});
  EXPECT_LE(kept.size(), 80u);
  EXPECT_EQ(kept.front(), 0u);
  EXPECT_EQ(kept.back(), kMany - 1);
  EXPECT_TRUE(std::ranges::binary_search(kept, 100'003u));
  EXPECT_TRUE(std::ranges::binary_search(kept, 30'001u));
}

}  // namespace
}  // namespace brenvolt
