#include "host/numeric/estimation/damped_newton.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace brenvolt::estimation {
namespace {

// The negative of the valley of Rosenbrock (1960), whose maximum is at (1, 1).
Surface Valley(std::span<const double> p) {
  const double x = p[0];
  const double y = p[1];
  const double bend = y - x * x;
  return {-100.0 * bend * bend - (1.0 - x) * (1.0 - x),
          {400.0 * x * bend + 2.0 * (1.0 - x), -200.0 * bend},
          {-400.0 * bend + 800.0 * x * x + 2.0, -400.0 * x, -400.0 * x, 200.0}};
}

TEST(DampedNewton, ClimbsAlongABendToTheMaximum) {
  for (const double longest : {kAnyLength, 0.3}) {
    std::vector<double> point = {-1.2, 1.0};
    Surface surface;
    ASSERT_TRUE(Climb(Valley, point, surface, longest));
    EXPECT_NEAR(point[0], 1.0, 1e-9);
    EXPECT_NEAR(point[1], 1.0, 1e-9);
    EXPECT_NEAR(surface.value, 0.0, 1e-15);
  }
}

TEST(DampedNewton, StepsAreNoLongerThanAsked) {
  std::vector<double> point = {-1.2, 1.0};
  std::vector<double> previous;
  Surface surface;
  double farthest = 0.0;
  const auto watched = [&](std::span<const double> p) {
    if (!previous.empty()) farthest = std::max(farthest, std::abs(p[0] - previous[0]));
    const Surface here = Valley(p);
    if (previous.empty() || here.value > Valley(previous).value) previous.assign(p.begin(), p.end());
    return here;
  };
  ASSERT_TRUE(Climb(watched, point, surface, 0.05));
  EXPECT_LE(farthest, 0.05 * (1.0 + 1e-12));
}

// No maximum: a ridge that rises for ever, a saddle that a climb starts on, and a place without a value.
TEST(DampedNewton, EndsElsewhereAreNoMaxima) {
  const auto ridge = [](std::span<const double> p) {
    return Surface{std::atan(p[0]) - p[1] * p[1],
                   {1.0 / (1.0 + p[0] * p[0]), -2.0 * p[1]},
                   {2.0 * p[0] / std::pow(1.0 + p[0] * p[0], 2), 0.0, 0.0, 2.0}};
  };
  const auto saddle = [](std::span<const double> p) {
    return Surface{p[0] * p[0] - p[1] * p[1], {2.0 * p[0], -2.0 * p[1]}, {-2.0, 0.0, 0.0, 2.0}};
  };
  const auto nowhere = [](std::span<const double>) { return Surface(); };
  for (const SurfaceAt& surfaceAt : {SurfaceAt(saddle), SurfaceAt(nowhere)}) {
    std::vector<double> point = {0.0, 0.0};
    Surface surface;
    EXPECT_FALSE(Climb(surfaceAt, point, surface));
  }
  std::vector<double> point = {0.5, 1.0};
  Surface surface;
  Climb(ridge, point, surface);
  EXPECT_GT(point[0], 1e3);
}

TEST(DampedNewton, InverseOfTheInformation) {
  const std::vector<double> inverse = InverseOf(std::vector<double>{4.0, 2.0, 2.0, 3.0}, 2);
  const double expected[] = {0.375, -0.25, -0.25, 0.5};
  ASSERT_EQ(inverse.size(), 4U);
  for (std::size_t i = 0; i < 4; ++i) EXPECT_NEAR(inverse[i], expected[i], 1e-15);
  EXPECT_TRUE(InverseOf(std::vector<double>{1.0, 1.0, 1.0, 1.0}, 2).empty());
}

}  // namespace
}  // namespace brenvolt::estimation
