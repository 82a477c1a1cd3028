#include "host/numeric/estimation/weibull_estimator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <limits>
#include <sstream>
#include <string>
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
  const WeibullEstimate fit = *EstimateWeibull(data, 0, kTolerance);
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
  for (const double factor : {1e-300, 1e-60, 1e-9, 1e3, 1e9, 1e140, 1e300}) {
    std::vector<double> scaled;
    for (const double x : data) scaled.push_back(x * factor);
    const WeibullEstimate fit = *EstimateWeibull(scaled, 0, kTolerance);
    EXPECT_NEAR(fit.shape, 2.185612332259384, 1e-12) << factor;
    EXPECT_NEAR(fit.scale / factor, 83.34666883163219, 1e-11) << factor;
  }
  std::vector<double> shifted;
  for (const double x : data) shifted.push_back(x + 1000);
  const WeibullEstimate fit = *EstimateWeibull(shifted, 1000, kTolerance);
  EXPECT_NEAR(fit.shape, 2.185612332259384, 1e-10);
}

// The mean of a process is of any size, its variation often far below it.
TEST(WeibullFitReference, HoldsAtAnyMeanAndVariation) {
  std::ifstream file(BRENVOLT_SOURCE_DIR "/host/numeric/estimation/reference/weibull_fits.csv");
  std::string line;
  std::getline(file, line);
  int rows = 0;
  for (; std::getline(file, line); ++rows) {
    std::ranges::replace(line, ',', ' ');
    std::istringstream numbers(line);
    double variation, shape, scale, shapeError, scaleError, covariance;
    numbers >> variation >> shape >> scale >> shapeError >> scaleError >> covariance;
    std::vector<double> values;
    for (double x = 0; numbers >> x;) values.push_back(x);
    ASSERT_EQ(values.size(), 25U);
    for (const double mean : {1e-9, 1e-6, 1e-3, 1.0, 20.0, 1e3, 1e6, 1e9}) {
      SCOPED_TRACE(::testing::Message() << "mean " << mean << ", variation " << variation);
      std::vector<double> data;
      for (const double x : values) data.push_back(mean * x);
      const auto fit = EstimateWeibull(data, 0, kTolerance * std::max(1.0, shape));
      ASSERT_TRUE(fit);
      // What rounding the values to doubles moves the shape by.
      const double relative = 1e-15 * (10 + 1 / variation);
      EXPECT_NEAR(fit->shape / shape, 1, relative);
      EXPECT_NEAR(fit->scale / (mean * scale), 1, 1e-14);
      EXPECT_NEAR(fit->shapeStandardError / shapeError, 1, 10 * relative);
      EXPECT_NEAR(fit->scaleStandardError / (mean * scaleError), 1, 10 * relative);
      EXPECT_NEAR(fit->covariance / (mean * covariance), 1, 10 * relative);
    }
  }
  EXPECT_EQ(rows, 11);
}

TEST(WeibullFit, EveryFailureHasItsFault) {
  const double tiny = std::numeric_limits<double>::denorm_min();
  using Why = Fault<EstimationFault>;
  using enum EstimationFault;
  struct Case {
    const char* what;
    std::vector<double> data;
    double offset;
    Why fault;
  };
  const Case cases[] = {
      {"a value equals the offset", {3, 4, 5}, 3, {kValueAtOffset, "3"}},
      {"a value is 15 subnormal units above the offset", {3, 4, 15 * tiny}, 0, {kValueAtOffset, "0"}},
      {"a value below the offset", {3, 4, 5}, 3.5, {kValueBelowOffset, "3", "3.5"}},
      {"a difference overflows", {3, 1.7e308}, -1.7e308, {kNotFinite}},
      {"all values equal", {3, 3, 3}, 0, {kNoConvergence}},
      {"no values", {}, 0, {kNoValues}},
  };
  for (const Case& c : cases) {
    const auto fit = EstimateWeibull(c.data, c.offset, kTolerance);
    ASSERT_FALSE(fit) << c.what;
    EXPECT_EQ(fit.Reason(), c.fault) << c.what;
  }
}

}  // namespace
}  // namespace brenvolt
