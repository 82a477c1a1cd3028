#include "host/base/axis_scaling.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace brenvolt {
namespace {

constexpr double kLargest = std::numeric_limits<double>::max();
constexpr double kSmallest = std::numeric_limits<double>::denorm_min();

TEST(AxisScaling, RangesGetTheCoarsestRoundStepWithinBothCounts) {
  struct Case {
    double minimum, maximum;
    double roundedMinimum, roundedMaximum, step;
  };
  const Case cases[] = {
      {0, 1, 0, 1, 0.05},          // 0.05: 20 steps
      {0.3, 0.7, 0.3, 0.7, 0.02},  // limits on a multiple stay, though 0.3 / 0.02 is not whole in binary
      {0.31, 0.69, 0.3, 0.7, 0.02},
      {1, 263.25, 0, 270, 10},
      {-3, 99, -5, 100, 5},
      {1.7e9 + 0.001, 1.7e9 + 0.9, 1.7e9, 1.7e9 + 0.9, 0.02},
      {-1e-12, 2e-12, -1e-12, 2e-12, 1e-13},
      {2, 1, 1, 2, 0.05},
  };
  for (const Case& c : cases) {
    double low = c.minimum;
    double high = c.maximum;
    const double step = RoundAxis(low, high, 50, 20);
    SCOPED_TRACE(testing::Message() << c.minimum << " to " << c.maximum);
    EXPECT_DOUBLE_EQ(step, c.step);
    EXPECT_DOUBLE_EQ(low, c.roundedMinimum);
    EXPECT_DOUBLE_EQ(high, c.roundedMaximum);
  }
}

TEST(AxisScaling, EveryFiniteRangeIsEnclosedInWholeSteps) {
  std::vector<std::pair<double, double>> ranges = {{5, 5},
                                                   {0, 0},
                                                   {-7, -7},
                                                   {kLargest, kLargest},
                                                   {-kLargest, kLargest},
                                                   {-kLargest, -kLargest},
                                                   {0, kSmallest},
                                                   {-kSmallest, kSmallest},
                                                   {1e-300, 2e-300},
                                                   {1e-279, 2e-279},
                                                   {1, std::nextafter(1.0, 2.0)},
                                                   {0, kLargest},
                                                   {1e300, 1.1e300},
                                                   {1.79e308, kLargest}};
  std::mt19937_64 engine(4);
  std::uniform_real_distribution<double> exponent(-250, 250);
  std::uniform_real_distribution<double> share(-1, 1);
  for (int i = 0; i < 20000; ++i) {
    const double middle = share(engine) * std::pow(10.0, exponent(engine));
    const double width = std::abs(middle) * std::pow(10.0, share(engine) * 11);
    ranges.emplace_back(middle - width, middle + width);
  }
  for (const auto& [minimum, maximum] : ranges) {
    double low = minimum;
    double high = maximum;
    const double step = RoundAxis(low, high, 50, 20);
    SCOPED_TRACE(testing::Message() << minimum << " to " << maximum);
    ASSERT_GT(step, 0);
    const double steps = high / step - low / step;
    ASSERT_NEAR(steps, std::round(steps), 1e-2 * std::max(1.0, std::abs(low / step) * 1e-13));
    ASSERT_LE(std::round(steps), 50);
    if (std::abs(minimum) < 1e307 && std::abs(maximum) < 1e307) {
      ASSERT_GE(std::round(steps), 19);
      ASSERT_LE(low, minimum + std::abs(minimum) * 4e-15);
      ASSERT_GE(high, maximum - std::abs(maximum) * 4e-15);
    }
  }
}

TEST(AxisScaling, OddCountsAndLimitsThatAreNotFiniteEnd) {
  double low = 0;
  double high = 10;
  EXPECT_DOUBLE_EQ(RoundAxis(low, high, 0, -3), 10);
  EXPECT_DOUBLE_EQ(RoundAxis(low, high, 4, 9), 5) << "no step gives exactly four";
  high = 10;
  low = -HUGE_VAL;
  EXPECT_EQ(RoundAxis(low, high, 50, 20), 0);
  EXPECT_EQ(high, 10);
  low = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(RoundAxis(low, high, 50, 20), 0);
}

}  // namespace
}  // namespace brenvolt
