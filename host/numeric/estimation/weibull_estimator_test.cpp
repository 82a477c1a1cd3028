#include "host/numeric/estimation/weibull_estimator.h"

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <limits>
#include <vector>

namespace brenvolt {
namespace {

constexpr double kTolerance = 1e-9;

std::vector<double> GroundBeef() {
  std::ifstream file(BRENVOLT_SOURCE_DIR "/examples/groundbeef.csv");
  std::string heading;
  std::getline(file, heading);
  std::vector<double> values;
  for (double x = 0; file >> x;) values.push_back(x);
  return values;
}

// Reference: the likelihood equation solved and the Hessian inverted with mpmath at 40 digits.
TEST(WeibullFit, ReachesTheMaximumWithItsStandardErrors) {
  const auto data = GroundBeef();
  ASSERT_EQ(data.size(), 254U);
  const WeibullEstimate fit = EstimateWeibull(data, 0, kTolerance);
  ASSERT_EQ(fit.status, WeibullStatus::kSuccess);
  EXPECT_NEAR(fit.shape, 2.185612332259384, 1e-12);
  EXPECT_NEAR(fit.scale, 83.34666883163219, 1e-11);
  EXPECT_NEAR(fit.shapeStandardError, 0.10456642294714220, 1e-10);
  EXPECT_NEAR(fit.scaleStandardError, 2.5271217033683402, 1e-9);
  EXPECT_NEAR(fit.covariance, 0.08501880342316909, 1e-9);
  // The values printed with this sample in the literature come from an optimiser stopped earlier.
  EXPECT_NEAR(fit.shape, 2.1859, 4e-4);
  EXPECT_NEAR(fit.scale, 83.348, 2e-3);
}

TEST(WeibullFit, FollowsTheUnitsAndTheOffsetOfTheData) {
  const auto data = GroundBeef();
  for (const double factor : {1e-9, 1e3, 1e9}) {
    std::vector<double> scaled;
    for (const double x : data) scaled.push_back(x * factor);
    const WeibullEstimate fit = EstimateWeibull(scaled, 0, kTolerance);
    ASSERT_EQ(fit.status, WeibullStatus::kSuccess) << factor;
    EXPECT_NEAR(fit.shape, 2.185612332259384, 1e-8) << factor;
    EXPECT_NEAR(fit.scale / factor, 83.34666883163219, 1e-6) << factor;
  }
  std::vector<double> shifted;
  for (const double x : data) shifted.push_back(x + 1000);
  const WeibullEstimate fit = EstimateWeibull(shifted, 1000, kTolerance);
  EXPECT_NEAR(fit.shape, 2.185612332259384, 1e-10);
}

TEST(WeibullFit, EveryFailureHasItsStatus) {
  const double tiny = std::numeric_limits<double>::denorm_min();
  struct Case {
    const char* what;
    std::vector<double> data;
    double offset;
    WeibullStatus status;
  };
  const Case cases[] = {
      {"a value equals the offset", {3, 4, 5}, 3, WeibullStatus::kValueAtOffset},
      {"a value is 15 subnormal units above the offset", {3, 4, 15 * tiny}, 0, WeibullStatus::kValueAtOffset},
      {"a value below the offset", {3, 4, 5}, 3.5, WeibullStatus::kNoConvergence},
      {"powers overflow", {1e140, 1.1e140, 1.2e140}, 0, WeibullStatus::kOverflow},
      {"powers vanish", {1e-60, 1.1e-60, 1.2e-60}, 0, WeibullStatus::kSumVanishes},
      {"no values", {}, 0, WeibullStatus::kNoConvergence},
  };
  for (const Case& c : cases) {
    const WeibullEstimate fit = EstimateWeibull(c.data, c.offset, kTolerance);
    EXPECT_EQ(fit.status, c.status) << c.what;
    EXPECT_TRUE(IsNotSet(fit.shape) && IsNotSet(fit.scale)) << c.what;
  }
}

TEST(WeibullFit, SteepDataStartsFromOneAndStillConverges) {
  std::vector<double> data;
  for (int i = 1; i <= 50; ++i) data.push_back(1000 + 0.1 * i);
  const WeibullEstimate fit = EstimateWeibull(data, 0, kTolerance);
  // A shape in the hundreds: the first steps from 1 go wrong or far, the answer must not.
  if (fit.status == WeibullStatus::kSuccess) {
    EXPECT_GT(fit.shape, 300);
  } else {
    EXPECT_EQ(fit.status, WeibullStatus::kOverflow);
  }
}

}  // namespace
}  // namespace brenvolt
