#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "host/numeric/estimation/estimation_support_test.h"
#include "host/numeric/estimation/estimators.h"

namespace brenvolt {
namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

struct Fit {
  double parameters[3] = {0.0, 0.0, 0.0};
  Ended error;
};

Fit Of(const EstimationResult<ScaleEstimate>& result) {
  return result ? Fit{{result->scale, result->standardError, result->logLikelihood}, kNone}
                : Fit{{}, EndOf(result)};
}

Fit FitHalf(const std::vector<double>& data, double offset) {
  return Of(EstimateHalfNormal(data, offset));
}

Fit FitRayleigh(const std::vector<double>& data, double offset) {
  return Of(EstimateRayleigh(data, offset));
}

Fit FitFolded(const std::vector<double>& data, double offset) {
  const auto result = EstimateFoldedNormal(data, offset);
  return result ? Fit{{result->location, result->scale}, kNone} : Fit{{}, EndOf(result)};
}

double FoldedLogLikelihood(const std::vector<double>& data, double offset, double location, double scale) {
  double sum = 0.0;
  for (const double x : data) {
    const double y = x - offset;
    const auto bell = [&](double z) { return std::exp(-0.5 * z * z / (scale * scale)) / scale; };
    sum += std::log(bell(y - location) + bell(y + location));
  }
  return sum;
}

TEST(HalfNormalFit, IsRootMeanSquareAboveOffsetWithItsErrorAndLikelihood) {
  const Fit fit = FitHalf({10.0, 13.0, 14.0}, 10.0);  // squares 0, 9, 16
  const double scale = std::sqrt(25.0 / 3.0);
  EXPECT_EQ(fit.error, kNone);
  EXPECT_DOUBLE_EQ(fit.parameters[0], scale);
  EXPECT_DOUBLE_EQ(fit.parameters[1], scale / std::sqrt(6.0));
  EXPECT_NEAR(fit.parameters[2], 3.0 * std::log(std::sqrt(2.0 / M_PI) / scale) - 1.5, 1e-14);
}

TEST(RayleighFit, IsRootOfHalfTheMeanSquareAboveOffset) {
  const Fit fit = FitRayleigh({11.0, 12.0, 13.0}, 10.0);
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

TEST(FoldedNormalFit, FarFromTheFoldIsTheNormalFit) {
  const Fit fit = FitFolded({101.0, 102.0, 103.0, 104.0}, 1.0);
  EXPECT_NEAR(fit.parameters[0], 101.5, 1e-12);
  EXPECT_NEAR(fit.parameters[1], std::sqrt(1.25), 1e-14);
}

TEST(FoldedNormalFit, HeavyTailPutsLocationAtTheFold) {
  const Fit fit = FitFolded({0.1, 0.1, 0.2, 0.3, 5.0}, 0.0);
  EXPECT_EQ(fit.parameters[0], 0.0);
  EXPECT_NEAR(fit.parameters[1], std::sqrt((0.01 + 0.01 + 0.04 + 0.09 + 25.0) / 5.0), 1e-14);
}

TEST(FoldedNormalFit, NoPointNearbyHasGreaterLikelihood) {
  const std::vector<std::vector<double>> samples = {
      {0.0, 0.4, 0.9, 1.3, 1.8, 2.2}, {0.2, 1.0, 1.1, 1.2, 1.3}, {0.5, 0.5, 3.0}, {1e-6, 1.0, 2.0, 2.5}};
  for (const std::vector<double>& data : samples) {
    const Fit fit = FitFolded(data, 0.0);
    ASSERT_EQ(fit.error, kNone);
    const double reached = FoldedLogLikelihood(data, 0.0, fit.parameters[0], fit.parameters[1]);
    for (double location = 0.0; location < 3.0; location += 0.01) {
      for (double scale = 0.05; scale < 4.0; scale *= 1.02) {
        ASSERT_LE(FoldedLogLikelihood(data, 0.0, location, scale), reached + 1e-12)
            << location << ' ' << scale;
      }
    }
  }
}

TEST(FoldedNormalFit, FollowsScaleAndShift) {
  const std::vector<double> base = {0.0, 0.375, 0.875, 1.25, 1.75, 2.25, 0.5};
  const Fit plain = FitFolded(base, 0.0);
  for (const double shift : {0.0, 1048576.0}) {
    for (const double scale : {1.0, 1e-9, 1e9}) {
      std::vector<double> moved = base;
      for (double& x : moved) x = (x + shift) * scale;
      const Fit fit = FitFolded(moved, shift * scale);
      EXPECT_NEAR(fit.parameters[0] / scale, plain.parameters[0], shift == 0.0 ? 1e-12 : 1e-8);
      EXPECT_NEAR(fit.parameters[1] / scale, plain.parameters[1], shift == 0.0 ? 1e-12 : 1e-8);
    }
  }
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
    const Fit fits[] = {FitHalf(row.data, row.offset), FitRayleigh(row.data, row.offset),
                        FitFolded(row.data, row.offset)};
    EXPECT_EQ(fits[0].error, row.half);
    EXPECT_EQ(fits[1].error, row.rayleigh);
    EXPECT_EQ(fits[2].error, row.folded);
  }
}

}  // namespace
}  // namespace brenvolt
