#include "host/base/correlation_rules.h"

#include <gtest/gtest.h>

#include <limits>

namespace brenvolt {
namespace {

TEST(CorrelationRules, EntriesAndStoredValuesDifferInTheToleranceAboveOne) {
  constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
  const double below = std::nextafter(-1.0, -2.0);
  const double above = std::nextafter(1.0, 2.0);
  struct Case {
    double value;
    std::optional<double> entered;
    bool isStored;
    bool isDiagonal;
  };
  const Case cases[] = {{0.5, 0.5, true, false},    {1, 1, true, true},      {-1, -1, true, false},
                        {below, -1, true, false},   {above, {}, true, true}, {1.001, {}, false, false},
                        {-1.001, {}, false, false}, {kNan, {}, false, false}};
  for (const Case& c : cases) {
    EXPECT_EQ(CorrelationEntry(c.value), c.entered) << c.value;
    EXPECT_EQ(IsStoredCorrelation(c.value, false), c.isStored) << c.value;
    EXPECT_EQ(IsStoredCorrelation(c.value, true), c.isDiagonal) << c.value;
  }
}

TEST(CorrelationRules, AnEigenvalueOfNothingButRoundingIsNotPositive) {
  EXPECT_TRUE(IsPositiveEigenvalue(1e-17));
  for (const double value : {0.0, -1e-17, std::numeric_limits<double>::denorm_min()})
    EXPECT_FALSE(IsPositiveEigenvalue(value)) << value;
}

}  // namespace
}  // namespace brenvolt
