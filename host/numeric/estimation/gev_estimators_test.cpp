#include "host/numeric/estimation/gev_estimators.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <vector>

#include "host/numeric/estimation/estimation_support_test.h"

namespace brenvolt {
namespace {

struct Fit {
  std::array<double, 3> parameters{};
  std::vector<double> covariance;
  Ended error;
};

Fit Of(const EstimationResult<ExtremeValueEstimate>& result) {
  return result ? Fit{result->parameters, result->covariance, kNone} : Fit{{}, {}, EndOf(result)};
}

Fit FitMaximum(const std::vector<double>& data) {
  return Of(EstimateExtremeValue(data));
}

Fit FitMoments(const std::vector<double>& data) {
  return Of(EstimateExtremeValueByMoments(data));
}

// Values at the plotting positions of a distribution: a sample without chance.
std::vector<double> QuantilesOf(double location, double scale, double shape, int n) {
  std::vector<double> values;
  for (int i = 1; i <= n; ++i) {
    const double y = -std::log(-std::log((i - 0.35) / n));
    values.push_back(location + scale * (shape == 0.0 ? y : std::expm1(shape * y) / shape));
  }
  return values;
}

double LogLikelihood(const std::vector<double>& data, double location, double scale, double shape) {
  double sum = 0.0;
  for (const double x : data) {
    const double z = (x - location) / scale;
    if (1.0 + shape * z <= 0.0) return -std::numeric_limits<double>::infinity();
    const double w = shape == 0.0 ? z : std::log1p(shape * z) / shape;
    sum -= std::log(scale) + (1.0 + shape) * w + std::exp(-w);
  }
  return sum;
}

// Annual maximum sea levels at Port Pirie; Coles (2001), section 3.4.1.
const std::vector<double> kPortPirie = {
    4.03, 3.83, 3.65, 3.88, 4.01, 4.08, 4.18, 3.80, 4.36, 3.96, 3.98, 4.69, 3.85, 3.96, 3.85, 3.93, 3.75,
    3.63, 3.57, 4.25, 3.97, 4.05, 4.24, 4.22, 3.73, 4.37, 4.06, 3.71, 3.96, 4.06, 4.55, 3.79, 3.89, 4.11,
    3.85, 3.86, 3.86, 4.21, 4.01, 4.11, 4.24, 3.96, 4.21, 3.74, 3.85, 3.88, 3.66, 4.11, 3.71, 4.18, 3.90,
    3.78, 3.91, 3.72, 4.00, 3.66, 3.62, 4.33, 4.55, 3.75, 4.08, 3.90, 3.88, 3.94, 4.33};

TEST(GevFit, PortPirieAgreesWithColes) {
  const Fit fit = FitMaximum(kPortPirie);
  ASSERT_EQ(fit.error, kNone);
  const double expected[] = {3.8748, 0.1980, -0.0501};
  const double errors[] = {0.0279, 0.0202, 0.0983};
  ASSERT_EQ(fit.covariance.size(), 9U);
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_NEAR(fit.parameters[i], expected[i], 1e-4);
    EXPECT_NEAR(std::sqrt(fit.covariance[4 * i]), errors[i], 1e-4);
    for (std::size_t j = 0; j < i; ++j)
      EXPECT_NEAR(fit.covariance[3 * i + j], fit.covariance[3 * j + i], 1e-15);
  }
  EXPECT_NEAR(fit.covariance[1], 0.000197, 1e-6);
  EXPECT_NEAR(fit.covariance[2], -0.00107, 1e-5);
}

TEST(GevFit, EndsAtAMaximumForEveryShape) {
  for (const double shape : {-0.6, -0.5, -0.2, 0.0, 0.3, 1.0, 1.5}) {
    const std::vector<double> data = QuantilesOf(10.0, 2.0, shape, 60);
    const Fit fit = FitMaximum(data);
    ASSERT_EQ(fit.error, kNone) << shape;
    EXPECT_NEAR(fit.parameters[2], shape, 0.12) << shape;
    const std::array<double, 3>& p = fit.parameters;
    const double reached = LogLikelihood(data, p[0], p[1], p[2]);
    for (const double step : {1e-4, -1e-4}) {
      EXPECT_LT(LogLikelihood(data, p[0] + step, p[1], p[2]), reached) << shape;
      EXPECT_LT(LogLikelihood(data, p[0], p[1] + step, p[2]), reached) << shape;
      EXPECT_LT(LogLikelihood(data, p[0], p[1], p[2] + step), reached) << shape;
    }
  }
}

TEST(GevFit, FollowsScaleAndShift) {
  for (const auto fitter : {FitMaximum, FitMoments}) {
    const Fit plain = fitter(kPortPirie);
    for (const double shift : {0.0, 1e6}) {
      for (const double scale : {1.0, 1e-9, 1e9, 0x1p-900}) {
        std::vector<double> moved = kPortPirie;
        for (double& x : moved) x = (x + shift) * scale;
        const Fit fit = fitter(moved);
        ASSERT_EQ(fit.error, kNone);
        const double tolerance = shift == 0.0 ? 1e-10 : 1e-7;  // the shift rounds the data
        EXPECT_NEAR(fit.parameters[0] / scale - shift, plain.parameters[0], tolerance);
        EXPECT_NEAR(fit.parameters[1] / scale, plain.parameters[1], tolerance);
        EXPECT_NEAR(fit.parameters[2], plain.parameters[2], tolerance);
        for (std::size_t i = 8; i < fit.covariance.size(); ++i)
          EXPECT_NEAR(std::sqrt(fit.covariance[i]), std::sqrt(plain.covariance[i]), tolerance);
      }
    }
  }
}

TEST(GevMoments, DistributionHasTheMomentsOfTheSample) {
  // b0 = E x, b1 = E x F, b2 = E x F^2 of the fitted distribution by the midpoint rule over -ln(-ln F).
  const Fit fit = FitMoments(kPortPirie);
  ASSERT_EQ(fit.error, kNone);
  double distribution[3] = {};
  constexpr double kStep = 1e-3;
  for (double y = -4.0; y < 40.0; y += kStep) {
    const double x =
        fit.parameters[0] + fit.parameters[1] * std::expm1(fit.parameters[2] * y) / fit.parameters[2];
    const double f = std::exp(-std::exp(-y));
    for (int r = 0; r < 3; ++r) distribution[r] += x * std::pow(f, r) * f * std::exp(-y) * kStep;
  }
  std::vector<double> sorted = kPortPirie;
  std::sort(sorted.begin(), sorted.end());
  const auto n = static_cast<double>(sorted.size());
  double sample[3] = {};
  for (std::size_t i = 0; i < sorted.size(); ++i) {
    const auto j = static_cast<double>(i);
    sample[0] += sorted[i] / n;
    sample[1] += sorted[i] * j / (n * (n - 1));
    sample[2] += sorted[i] * j * (j - 1) / (n * (n - 1) * (n - 2));
  }
  for (int r = 0; r < 3; ++r) EXPECT_NEAR(distribution[r], sample[r], 1e-6) << r;
}

TEST(GevFit, NamesWhatIsWrongWithTheData) {
  struct Case {
    std::vector<double> data;
    Ended maximum;
    Ended moments;
  };
  using enum EstimationFault;
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const std::vector<Case> cases = {{{1.0, 2.0}, kTooFewValues, kTooFewValues},
                                   {{2.0, 2.0, 2.0}, kNoSpread, kNoSpread},
                                   {{1.0, nan, 2.0}, kNotFinite, kNotFinite},
                                   {{1.7e308, 1.7e308, -1.7e308, -1.6e308}, kNotFinite, kNotFinite},
                                   {{1.0, 2.0, 4.0}, kNoMaximum, kNone},
                                   {{1.0, 1.0, 2.0}, kNoMaximum, kNoSolution}};
  for (const Case& row : cases) {
    const Fit maximum = FitMaximum(row.data);
    const Fit moments = FitMoments(row.data);
    EXPECT_EQ(maximum.error, row.maximum) << ::testing::PrintToString(row.data);
    EXPECT_EQ(moments.error, row.moments) << ::testing::PrintToString(row.data);
  }
}

}  // namespace
}  // namespace brenvolt
