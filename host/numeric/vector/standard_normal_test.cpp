// The parts of the standard normal distribution that no table row reaches.
#include "host/numeric/vector/standard_normal.h"

#include <gtest/gtest.h>

#include <cmath>

#include "host/numeric/vector/vector_forms.h"

namespace brenvolt {
namespace {

TEST(StandardNormal, NormalOfExtremeUniformsIsFiniteAndSymmetric) {
  constexpr double kCell = 0x1p-53;
  EXPECT_NEAR(NormalFromUniform(0.0), -8.292361075813597, 1e-14);  // quantile at 2^-54
  for (const double u : {0.0, kCell, 1e-9, 0.07, 0.25, 0.5 - kCell}) {
    const double whole = std::floor(u / kCell) * kCell;
    const double mirror = (1.0 - kCell) - whole;
    EXPECT_TRUE(std::isfinite(NormalFromUniform(whole)));
    EXPECT_EQ(NormalFromUniform(mirror), -NormalFromUniform(whole)) << u;
  }
  EXPECT_LT(NormalFromUniform(0.5 - kCell), 0.0);
  EXPECT_GT(NormalFromUniform(0.5), 0.0);
}

TEST(StandardNormal, QuantileRisesAcrossTheSeamsOfItsPieces) {
  const double seams[] = {0.075, std::exp(-25.0)};
  for (const double seam : seams) {
    EXPECT_LT(StandardNormalQuantile(seam * (1.0 - 1e-13)), StandardNormalQuantile(seam * (1.0 + 1e-13)));
  }
}

TEST(StandardNormal, LogarithmAgreesWithLibraryOverAllExponents) {
  for (int exponent = -1074; exponent <= 1023; ++exponent) {
    for (const double mantissa : {1.0, 1.0001, 1.37, 1.4142135, 1.4142136, 1.99999}) {
      const double x = std::ldexp(mantissa, exponent);
      const double expected = std::log(x);
      EXPECT_LE(std::abs(elementary::Log(x) - expected), 4e-16 * std::abs(expected)) << x;
    }
  }
  for (const double x : {1.0, std::nextafter(1.0, 2.0), std::nextafter(1.0, 0.0), 0.999, 1.001}) {
    EXPECT_LE(std::abs(elementary::Log(x) - std::log(x)), 4e-16 * std::abs(std::log(x))) << x;
  }
}

}  // namespace
}  // namespace brenvolt
