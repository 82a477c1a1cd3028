#include "host/numeric/estimation/gpd_estimators.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "host/numeric/estimation/estimation_support_test.h"

namespace brenvolt {
namespace {

struct Fit {
  double scale = 0.0;
  double shape = 0.0;
  Ended error;
};

Fit Of(const EstimationResult<ParetoEstimate>& result) {
  return result ? Fit{result->scale, result->shape, kNone} : Fit{0.0, 0.0, EndOf(result)};
}

Fit FitMaximum(const std::vector<double>& data, double threshold) {
  return Of(EstimatePareto(data, threshold));
}

Fit FitMoments(const std::vector<double>& data, double threshold) {
  return Of(EstimateParetoByMoments(data, threshold));
}

std::vector<double> QuantilesOf(double threshold, double scale, double shape, int n) {
  std::vector<double> values;
  for (int i = 1; i <= n; ++i) {
    const double y = -std::log1p(-(i - 0.35) / n);
    values.push_back(threshold + scale * (shape == 0.0 ? y : std::expm1(shape * y) / shape));
  }
  return values;
}

double LogLikelihood(const std::vector<double>& data, double threshold, double scale, double shape) {
  double sum = 0.0;
  for (const double x : data) {
    const double z = (x - threshold) / scale;
    if (1.0 + shape * z <= 0.0) return -std::numeric_limits<double>::infinity();
    sum -= std::log(scale) + (1.0 + shape) * (shape == 0.0 ? z : std::log1p(shape * z) / shape);
  }
  return sum;
}

TEST(GpdFit, EndsAtAMaximumForEveryShape) {
  for (const double shape : {-0.6, -0.5, -0.2, 0.0, 0.3, 1.0, 1.5}) {
    const std::vector<double> data = QuantilesOf(3.0, 2.0, shape, 80);
    const Fit fit = FitMaximum(data, 3.0);
    ASSERT_EQ(fit.error, kNone) << shape;
    EXPECT_NEAR(fit.shape, shape, 0.1) << shape;
    const double reached = LogLikelihood(data, 3.0, fit.scale, fit.shape);
    for (const double step : {1e-4, -1e-4}) {
      EXPECT_LT(LogLikelihood(data, 3.0, fit.scale + step, fit.shape), reached) << shape;
      EXPECT_LT(LogLikelihood(data, 3.0, fit.scale, fit.shape + step), reached) << shape;
    }
  }
}

// Of heavy tails the mean is that of the largest values alone, and the maximum lies far beyond any multiple of it.
TEST(GpdFitReference, FindsTheMaximumOfHeavyTails) {
  std::ifstream file(BRENVOLT_SOURCE_DIR "/host/numeric/estimation/reference/pareto_fits.csv");
  std::string line;
  std::getline(file, line);
  int rows = 0;
  for (; std::getline(file, line); ++rows) {
    SCOPED_TRACE(line.substr(0, 60));
    std::ranges::replace(line, ',', ' ');
    std::istringstream numbers(line);
    double asked, scale, shape, logLikelihood;
    numbers >> asked >> scale >> shape >> logLikelihood;
    std::vector<double> values;
    for (double x = 0; numbers >> x;) values.push_back(x);
    const Fit fit = FitMaximum(values, 0.0);
    ASSERT_EQ(fit.error, kNone);
    EXPECT_NEAR(fit.scale / scale, 1, 1e-12);
    EXPECT_NEAR(fit.shape / shape, 1, 1e-12);
    EXPECT_NEAR(LogLikelihood(values, 0.0, fit.scale, fit.shape) / logLikelihood, 1, 1e-12);
  }
  EXPECT_EQ(rows, 6);
}

TEST(GpdMoments, DistributionHasTheMomentsOfTheSample) {
  // E y = scale / (1 - shape), E y (1 - F) = scale / (2 (2 - shape)); Hosking & Wallis (1987).
  const Fit fit = FitMoments({11.0, 12.0, 14.0, 19.0}, 10.0);  // a0 = 4, a1 = (1 + 2 * 2/3 + 4 * 1/3) / 4
  ASSERT_EQ(fit.error, kNone);
  EXPECT_NEAR(fit.scale / (1.0 - fit.shape), 4.0, 1e-13);
  EXPECT_NEAR(fit.scale / (2.0 * (2.0 - fit.shape)), 11.0 / 12.0, 1e-13);
}

TEST(GpdFit, FollowsScaleAndShift) {
  const std::vector<double> base = QuantilesOf(0.0, 1.0, 0.25, 40);
  for (const auto fitter : {FitMaximum, FitMoments}) {
    const Fit plain = fitter(base, 0.0);
    for (const double shift : {0.0, 1e6}) {
      for (const double scale : {1.0, 1e-9, 1e9, 0x1p-900}) {
        std::vector<double> moved = base;
        for (double& x : moved) x = (x + shift) * scale;
        const Fit fit = fitter(moved, shift * scale);
        ASSERT_EQ(fit.error, kNone);
        const double tolerance = shift == 0.0 ? 1e-12 : 1e-8;  // the shift rounds the data
        EXPECT_NEAR(fit.scale / scale, plain.scale, tolerance);
        EXPECT_NEAR(fit.shape, plain.shape, tolerance);
      }
    }
  }
}

TEST(GpdFit, NamesWhatIsWrongWithTheData) {
  struct Case {
    std::vector<double> data;
    double threshold;
    Ended maximum;
    Ended moments;
  };
  using enum EstimationFault;
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const std::vector<Case> cases = {
      {{1.0}, 0.0, kTooFewValues, kTooFewValues},
      {{1.0, 2.0, 3.0}, 1.5, kValueBelowOffset, kValueBelowOffset},
      {{2.0, 2.0}, 1.0, kNoSpread, kNoSpread},
      {{1.0, nan}, 0.0, kNotFinite, kNotFinite},
      {{1.0, 2.0}, nan, kNotFinite, kNotFinite},
      {{1.0, 2.0, 3.0, 4.0}, 0.0, kNoMaximum, kNone},        // as even as a uniform distribution
      {{0.0, 0.0, 0.0, 1.0}, 0.0, kNoMaximum, kNoSolution},  // mass at the threshold
      {{1.0, 1.0, 2.0, 9.0}, 1.0, kNoMaximum, kNone}};
  for (const Case& row : cases) {
    const Fit maximum = FitMaximum(row.data, row.threshold);
    const Fit moments = FitMoments(row.data, row.threshold);
    EXPECT_EQ(maximum.error, row.maximum) << ::testing::PrintToString(row.data);
    EXPECT_EQ(moments.error, row.moments) << ::testing::PrintToString(row.data);
  }
}

}  // namespace
}  // namespace brenvolt
