#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "host/numeric/distributions/half_normal.h"
#include "host/numeric/distributions/log_normal.h"
#include "host/numeric/distributions/rayleigh.h"
#include "host/numeric/estimation/estimation_support_test.h"
#include "host/numeric/estimation/folded_normal_estimator.h"
#include "host/numeric/estimation/normal_estimator.h"

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

struct ScaleFit {
  double parameters[3] = {0.0, 0.0, 0.0};
  Ended error;
};

ScaleFit Of(const EstimationResult<ScaleEstimate>& result) {
  return result ? ScaleFit{{result->scale, result->standardError, result->logLikelihood}, kNone}
                : ScaleFit{{}, EndOf(result)};
}

ScaleFit FitHalf(const std::vector<double>& data, double offset) {
  return Of(EstimateHalfNormal(data, offset));
}

ScaleFit FitRayleigh(const std::vector<double>& data, double offset) {
  return Of(EstimateRayleigh(data, offset));
}

TEST(HalfNormalFit, IsRootMeanSquareAboveOffsetWithItsErrorAndLikelihood) {
  const ScaleFit fit = FitHalf({10.0, 13.0, 14.0}, 10.0);  // squares 0, 9, 16
  const double scale = std::sqrt(25.0 / 3.0);
  EXPECT_EQ(fit.error, kNone);
  EXPECT_DOUBLE_EQ(fit.parameters[0], scale);
  EXPECT_DOUBLE_EQ(fit.parameters[1], scale / std::sqrt(6.0));
  EXPECT_NEAR(fit.parameters[2], 3.0 * std::log(std::sqrt(2.0 / M_PI) / scale) - 1.5, 1e-14);
}

TEST(RayleighFit, IsRootOfHalfTheMeanSquareAboveOffset) {
  const ScaleFit fit = FitRayleigh({11.0, 12.0, 13.0}, 10.0);
  const double scale = std::sqrt(14.0 / 6.0);
  EXPECT_EQ(fit.error, kNone);
  EXPECT_DOUBLE_EQ(fit.parameters[0], scale);
  EXPECT_DOUBLE_EQ(fit.parameters[1], scale / std::sqrt(12.0));
  EXPECT_NEAR(fit.parameters[2], std::log(6.0) - 6.0 * std::log(scale) - 3.0, 1e-14);
}

TEST(MagnitudeFits, ReachTheEndsOfTheDoubleRange) {
  EXPECT_DOUBLE_EQ(FitHalf({1e308, 1e308}, 0.0).parameters[0], 1e308);
  EXPECT_DOUBLE_EQ(FitRayleigh({2e-308, 2e-308}, 0.0).parameters[0], 2e-308 / std::sqrt(2.0));
}

TEST(MagnitudeFits, NameWhatIsWrongWithTheData) {
  struct Case {
    std::vector<double> data;
    double offset;
    Ended half;
    Ended rayleigh;
    Ended folded;
  };
  using enum EstimationFault;
  const std::vector<Case> cases = {
      {{1.0}, 0.0, kTooFewValues, kTooFewValues, kTooFewValues},
      {{1.0, 2.0, 3.0}, 1.0, kNone, kValueAtOffset, kNone},  // a value at the offset
      {{1.0, 2.0}, 1.5, kValueBelowOffset, kValueBelowOffset, kValueBelowOffset},
      {{2.0, 2.0}, 1.0, kNone, kNone, kNoSpread},
      {{1.0, 1.0}, 1.0, kNoSpread, kValueAtOffset, kNoSpread},
      {{1.0, kNan}, 0.0, kNotFinite, kNotFinite, kNotFinite},
      {{1.0, 2.0}, kNan, kNotFinite, kNotFinite, kNotFinite},
      {{1.7e308, 1.0}, -1.7e308, kNotFinite, kNotFinite, kNotFinite}};
  for (const Case& row : cases) {
    SCOPED_TRACE(::testing::PrintToString(row.data));
    EXPECT_EQ(EndOf(EstimateHalfNormal(row.data, row.offset)), row.half);
    EXPECT_EQ(EndOf(EstimateRayleigh(row.data, row.offset)), row.rayleigh);
    EXPECT_EQ(EndOf(EstimateFoldedNormal(row.data, row.offset)), row.folded);
  }
}

}  // namespace
}  // namespace brenvolt
