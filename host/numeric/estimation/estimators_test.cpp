#include "host/numeric/estimation/estimators.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "host/numeric/estimation/estimation_support_test.h"

namespace brenvolt {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

struct Fit {
  double parameters[2] = {0.0, 0.0};
  Ended error;
};

Fit Of(const EstimationResult<NormalEstimate>& result) {
  return result ? Fit{{result->mean, result->standardDeviation}, kNone} : Fit{{}, EndOf(result)};
}

Fit FitNormal(const std::vector<double>& data) {
  return Of(EstimateNormal(data));
}

Fit FitLognormal(const std::vector<double>& data, double offset) {
  return Of(EstimateLogNormal(data, offset));
}

void ExpectFailure(const Fit& fit, Ended error) {
  EXPECT_EQ(fit.error, error);
}

TEST(NormalFit, DividesByCountNotByCountLessOne) {
  const Fit fit = FitNormal({1.0, 2.0, 3.0, 4.0});
  EXPECT_EQ(fit.error, kNone);
  EXPECT_EQ(fit.error, kNone);
  EXPECT_DOUBLE_EQ(fit.parameters[0], 2.5);
  EXPECT_DOUBLE_EQ(fit.parameters[1], std::sqrt(1.25));
}

TEST(NormalFit, FollowsShiftAndScaleWithoutLosingDigits) {
  // Values whose shifted and scaled forms are exact, so that only the fit itself can lose digits.
  std::vector<double> base;
  for (int i = 0; i < 1000; ++i) base.push_back(((i * 7919) % 1024) / 1024.0);
  const Fit plain = FitNormal(base);
  for (const double shift : {0.0, 1048576.0, -1073741824.0, 0x1p40}) {
    for (const double scale : {1.0, 0x1p-30, 0x1p30, 0x1p-900, 0x1p900}) {
      std::vector<double> moved = base;
      for (double& x : moved) x = (x + shift) * scale;
      const Fit fit = FitNormal(moved);
      ASSERT_EQ(fit.error, kNone);
      EXPECT_DOUBLE_EQ(fit.parameters[0], (plain.parameters[0] + shift) * scale) << shift << ' ' << scale;
      EXPECT_NEAR(fit.parameters[1] / scale, plain.parameters[1], 4e-16) << shift << ' ' << scale;
    }
  }
}

TEST(NormalFit, NamesWhatIsWrongWithTheData) {
  ExpectFailure(FitNormal({}), EstimationFault::kTooFewValues);
  ExpectFailure(FitNormal({3.0}), EstimationFault::kTooFewValues);
  ExpectFailure(FitNormal({0.1, 0.1, 0.1}), EstimationFault::kNoSpread);
  ExpectFailure(FitNormal({0.0, 0.0}), EstimationFault::kNoSpread);
  for (const double bad : {kNan, kInfinity, -kInfinity}) {
    ExpectFailure(FitNormal({1.0, bad, 2.0}), EstimationFault::kNotFinite);
  }
}

TEST(NormalFit, ReachesTheEndsOfTheDoubleRange) {
  const Fit large = FitNormal({-1.7e308, 1.7e308});
  EXPECT_EQ(large.parameters[0], 0.0);
  EXPECT_DOUBLE_EQ(large.parameters[1], 1.7e308);
  const Fit neighbours = FitNormal({1.0, std::nextafter(1.0, 2.0)});
  EXPECT_EQ(neighbours.error, kNone);
  EXPECT_GT(neighbours.parameters[1], 0.0);
}

TEST(LognormalFit, IsNormalFitOfLogarithmsAboveOffset) {
  const double e = std::exp(1.0);
  const Fit fit = FitLognormal({5.0 + 1.0, 5.0 + e, 5.0 + e * e}, 5.0);
  EXPECT_EQ(fit.error, kNone);
  EXPECT_NEAR(fit.parameters[0], 1.0, 1e-15);
  EXPECT_NEAR(fit.parameters[1], std::sqrt(2.0 / 3.0), 1e-15);
}

TEST(LognormalFit, ScaleMovesOnlyTheMean) {
  const std::vector<double> base = {0.3, 0.7, 1.1, 2.9, 8.8};
  const Fit plain = FitLognormal(base, 0.0);
  for (const double scale : {1e-9, 1e9}) {
    std::vector<double> moved = base;
    for (double& x : moved) x *= scale;
    const Fit fit = FitLognormal(moved, 0.0);
    EXPECT_NEAR(fit.parameters[0], plain.parameters[0] + std::log(scale), 1e-14);
    EXPECT_NEAR(fit.parameters[1], plain.parameters[1], 1e-14);
  }
}

TEST(LognormalFit, NamesWhatIsWrongWithTheData) {
  ExpectFailure(FitLognormal({1.0}, 0.0), EstimationFault::kTooFewValues);
  ExpectFailure(FitLognormal({1.0, 0.0, 2.0}, 0.0), EstimationFault::kValueAtOffset);
  ExpectFailure(FitLognormal({3.0, 4.0}, 3.5), EstimationFault::kValueBelowOffset);
  ExpectFailure(FitLognormal({4.0, 4.0}, 3.0), EstimationFault::kNoSpread);
  ExpectFailure(FitLognormal({4.0, kNan}, 3.0), EstimationFault::kNotFinite);
  ExpectFailure(FitLognormal({4.0, 5.0}, kNan), EstimationFault::kNotFinite);
  ExpectFailure(FitLognormal({1.7e308, 1.0}, -1.7e308), EstimationFault::kNotFinite);
}

}  // namespace
}  // namespace brenvolt
