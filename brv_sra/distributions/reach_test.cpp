#include "brv_sra/distributions/reach.h"

#include <gtest/gtest.h>

#include <cmath>

namespace brenvolt::sra {
namespace {

TEST(Reach, SignsThatTheDataLackAndMomentsThatNoSampleLacks) {
  using enum DistributionCode;
  constexpr double kNone = kNotSet;
  const double beyondOne = 0.15865525393145705;  // of a standard normal deviate
  const struct {
    DistributionSpecification distribution;
    double minimum;
    double maximum;
    double belowZero;
    double aboveZero;
    int infiniteMoment;
  } cases[] = {
      {{kNormal, {1, 1}}, 0.5, 3, beyondOne, kNone, kNotSetCount},
      {{kNormal, {1, 1}}, 0, 3, beyondOne, kNone, kNotSetCount},
      {{kNormal, {1, 1}}, -0.5, 3, kNone, kNone, kNotSetCount},
      {{kNormal, {-1, 1}}, -3, -0.5, kNone, beyondOne, kNotSetCount},
      {{kNormal, {1, 1}, 0, kNone, kNone, true}, 0.5, 3, 0, kNone, kNotSetCount},
      {{kNormal, {1, 1}, kNone, 1, kNone, false, true}, 0.5, 3, 2 * beyondOne, kNone, kNotSetCount},
      {{kNormal, {1, 1}, kNone, kNone, kNone, true}, 0.5, 3, beyondOne, kNone, kNotSetCount},
      {{kWeibull, {1, 2}, kNone, kNone, 0}, 0.5, 3, 0, kNone, kNotSetCount},
      {{kWeibull, {1, 1}, kNone, kNone, -1}, 0.5, 3, 1 - std::exp(-1), kNone, kNotSetCount},
      {{kGeneralPareto, {1, 0.4}, kNone, kNone, 0}, 0.5, 3, 0, kNone, kNotSetCount},
      {{kGeneralPareto, {1, 0.7}, kNone, kNone, 0}, 0.5, 3, 0, kNone, 2},
      {{kGeneralPareto, {1, 1.2}, kNone, kNone, 0}, 0.5, 3, 0, kNone, 1},
      {{kGeneralPareto, {1, 1.2}, kNone, 50, 0, false, true}, 0.5, 3, 0, kNone, kNotSetCount},
      {{kGeneralExtremeValue, {5, 1, 0.6}}, -1, 3, kNone, kNone, 2},
      {{kPoisson, {3}}, 0, 5, kNone, kNone, kNotSetCount},
      {{kNormal, {kNone}}, 1, 5, kNone, kNone, kNotSetCount},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(&c - cases);
    const Reach reach = ReachOf(c.distribution, c.minimum, c.maximum);
    EXPECT_NEAR(reach.belowZero, c.belowZero, 1e-15);
    EXPECT_NEAR(reach.aboveZero, c.aboveZero, 1e-15);
    EXPECT_EQ(reach.infiniteMoment, c.infiniteMoment);
  }
}

}  // namespace
}  // namespace brenvolt::sra
