#include "host/numeric/estimation/folded_normal_estimator.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "host/numeric/estimation/estimation_support_test.h"

namespace brenvolt {
namespace {

struct Fit {
  double parameters[3] = {0.0, 0.0, 0.0};
  Ended error;
};

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

}  // namespace
}  // namespace brenvolt
