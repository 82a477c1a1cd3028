#include "host/base/almost_equal.h"

#include <gtest/gtest.h>

#include <limits>

namespace brenvolt {
namespace {

double StepsFrom(double x, int steps) {
  for (; steps > 0; --steps) x = std::nextafter(x, std::numeric_limits<double>::infinity());
  for (; steps < 0; ++steps) x = std::nextafter(x, -std::numeric_limits<double>::infinity());
  return x;
}

TEST(AlmostEqual, EndsAtFifteenUnitsInTheLastPlace) {
  for (const double x : {1.0, -444.0, 1e300, 5e-324, 0.0, -0.0}) {
    EXPECT_TRUE(AlmostEqual(x, StepsFrom(x, 15))) << x;
    EXPECT_TRUE(AlmostEqual(StepsFrom(x, -15), x)) << x;
    EXPECT_FALSE(AlmostEqual(x, StepsFrom(x, 16))) << x;
    EXPECT_FALSE(AlmostEqual(x, StepsFrom(x, -16))) << x;
  }
}

TEST(AlmostEqual, CrossesZeroByCountingRepresentableValues) {
  EXPECT_TRUE(AlmostEqual(0.0, -0.0));
  EXPECT_TRUE(AlmostEqual(StepsFrom(0, 7), StepsFrom(0, -8)));
  EXPECT_FALSE(AlmostEqual(StepsFrom(0, 8), StepsFrom(0, -8)));
}

TEST(AlmostEqual, NonFiniteEqualsNothing) {
  const double infinity = std::numeric_limits<double>::infinity();
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_FALSE(AlmostEqual(infinity, infinity));
  EXPECT_FALSE(AlmostEqual(infinity, std::numeric_limits<double>::max()));
  EXPECT_FALSE(AlmostEqual(nan, nan));
  EXPECT_FALSE(AlmostEqual(-std::numeric_limits<double>::max(), std::numeric_limits<double>::max()));
}

TEST(AlmostEqual, NotSetTakesItsNeighboursAlong) {
  EXPECT_TRUE(IsNotSet(-444.0));
  EXPECT_TRUE(IsNotSet(StepsFrom(-444.0, 1)));
  EXPECT_FALSE(IsNotSet(-443.9));
}

TEST(AlmostEqual, MissingIsNanOrTheCode) {
  EXPECT_TRUE(IsMissingValue(std::numeric_limits<double>::quiet_NaN(), -9999));
  EXPECT_TRUE(IsMissingValue(StepsFrom(-9999, 3), -9999));
  EXPECT_FALSE(IsMissingValue(-9998.9, -9999));
  EXPECT_FALSE(
      IsMissingValue(std::numeric_limits<double>::infinity(), std::numeric_limits<double>::infinity()));
}

}  // namespace
}  // namespace brenvolt
