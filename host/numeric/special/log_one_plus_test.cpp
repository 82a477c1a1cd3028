#include "host/numeric/special/log_one_plus.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace brenvolt {
namespace {

TEST(LogOnePlus, SeriesAndQuotientsAgreeWhereTheyMeet) {
  for (const double edge : {0.03, -0.03}) {
    for (const double z : {0.01, 1.0, -7.0, 300.0}) {
      const LogOnePlus inner = DifferentiateLogOnePlus(z, edge * (1.0 - 1e-15) / z);
      const LogOnePlus outer = DifferentiateLogOnePlus(z, edge * (1.0 + 1e-15) / z);
      EXPECT_NEAR(inner.value / outer.value, 1.0, 4e-15);
      EXPECT_NEAR(inner.byK / outer.byK, 1.0, 1e-12);
      EXPECT_NEAR(inner.byKK / outer.byKK, 1.0, 1e-10);
    }
  }
}

TEST(LogOnePlus, DerivativesAreSlopes) {
  constexpr double kStep = 1e-5;
  for (const double k : {-0.5, -0.02, 0.0, 1e-6, 0.02, 0.7}) {
    for (const double z : {-0.9, 0.3, 1.5}) {
      const LogOnePlus w = DifferentiateLogOnePlus(z, k);
      const LogOnePlus left = DifferentiateLogOnePlus(z, k - kStep);
      const LogOnePlus right = DifferentiateLogOnePlus(z, k + kStep);
      const LogOnePlus above = DifferentiateLogOnePlus(z + kStep, k);
      const LogOnePlus below = DifferentiateLogOnePlus(z - kStep, k);
      EXPECT_NEAR(w.byK, (right.value - left.value) / (2 * kStep), 1e-8);
      EXPECT_NEAR(w.byKK, (right.byK - left.byK) / (2 * kStep), 1e-7 * std::max(1.0, w.byKK));
      EXPECT_NEAR(w.byZ, (above.value - below.value) / (2 * kStep), 1e-8);
      EXPECT_NEAR(w.byZZ, (above.byZ - below.byZ) / (2 * kStep), 1e-7);
      EXPECT_NEAR(w.byZK, (right.byZ - left.byZ) / (2 * kStep), 1e-7);
    }
  }
}

}  // namespace
}  // namespace brenvolt
