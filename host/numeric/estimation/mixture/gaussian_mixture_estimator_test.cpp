#include "host/numeric/estimation/mixture/gaussian_mixture_estimator.h"

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <limits>
#include <string>
#include <vector>

#include "host/numeric/estimation/estimation_support_test.h"

namespace brenvolt {
namespace {

struct Fit {
  std::vector<double> components;
  Ended error;
};

Fit FitMixture(const std::vector<double>& data, std::int32_t count) {
  const auto result = EstimateGaussianMixture(data, count);
  return result ? Fit{*result, kNone} : Fit{{}, EndOf(result)};
}

std::vector<double> ReadEruptions() {
  std::ifstream file(std::string(BRENVOLT_SOURCE_DIR) + "/examples/faithful.csv");
  std::vector<double> values;
  std::string line;
  std::getline(file, line);
  while (std::getline(file, line)) values.push_back(std::stod(line));
  return values;
}

double LogLikelihood(const std::vector<double>& data, const std::vector<double>& components,
                     std::int32_t count) {
  double sum = 0.0;
  for (const double x : data) {
    double density = 0.0;
    for (std::int32_t c = 0; c < count; ++c) {
      const double* p = &components[3 * static_cast<std::size_t>(c)];
      const double z = (x - p[1]) / p[2];
      density += p[0] / p[2] * std::exp(-0.5 * z * z);
    }
    sum += std::log(density);
  }
  return sum;
}

TEST(GaussianMixtureFit, OldFaithfulAgreesWithTheLiterature) {
  const std::vector<double> data = ReadEruptions();
  ASSERT_EQ(data.size(), 272U);
  const Fit fit = FitMixture(data, 2);
  ASSERT_EQ(fit.error, kNone);
  ASSERT_EQ(fit.components.size(), 6U);
  const double expected[] = {0.348, 2.019, 0.236, 0.652, 4.273, 0.437};
  for (std::size_t i = 0; i < 6; ++i) EXPECT_NEAR(fit.components[i], expected[i], 6e-4) << i;
}

TEST(GaussianMixtureFit, NoNearbyMixtureHasGreaterLikelihood) {
  const std::vector<double> data = ReadEruptions();
  for (const std::int32_t count : {2, 3}) {
    const Fit fit = FitMixture(data, count);
    const double reached = LogLikelihood(data, fit.components, count);
    for (std::size_t i = 0; i < 3 * static_cast<std::size_t>(count); ++i) {
      for (const double step : {1e-3, -1e-3}) {
        std::vector<double> moved = fit.components;
        moved[i] += step;
        // What one proportion gains, its neighbour gives.
        if (i % 3 == 0) moved[(i + 3) % (3 * static_cast<std::size_t>(count))] -= step;
        EXPECT_LT(LogLikelihood(data, moved, count), reached) << i;
      }
    }
  }
}

TEST(GaussianMixtureFit, MoreComponentsNeverLoseLikelihood) {
  const std::vector<double> data = ReadEruptions();
  double last = -std::numeric_limits<double>::infinity();
  for (std::int32_t count = 1; count <= 6; ++count) {
    const Fit fit = FitMixture(data, count);
    ASSERT_EQ(fit.error, kNone) << count;
    const double reached = LogLikelihood(data, fit.components, count);
    EXPECT_GT(reached, last - 1e-6) << count;
    last = reached;
  }
}

TEST(GaussianMixtureFit, FollowsScaleShiftAndOrder) {
  const std::vector<double> base = ReadEruptions();
  const Fit plain = FitMixture(base, 2);
  for (const double shift : {0.0, 1e6}) {
    for (const double scale : {1.0, 1e-9, 1e9}) {
      std::vector<double> moved(base.rbegin(), base.rend());
      for (double& x : moved) x = (x + shift) * scale;
      const Fit fit = FitMixture(moved, 2);
      ASSERT_EQ(fit.error, kNone);
      for (std::size_t c = 0; c < 6; c += 3) {
        EXPECT_NEAR(fit.components[c], plain.components[c], 1e-5);
        EXPECT_NEAR(fit.components[c + 1] / scale - shift, plain.components[c + 1], 1e-5);
        EXPECT_NEAR(fit.components[c + 2] / scale, plain.components[c + 2], 1e-5);
      }
    }
  }
}

TEST(GaussianMixtureFit, ComponentMayBeFarNarrowerThanAnother) {
  std::vector<double> data;
  for (int i = 0; i < 50; ++i) data.push_back(10.0 + 1e-4 * std::sin(1.0 + i));
  for (int i = 0; i < 50; ++i) data.push_back(20.0 + 3.0 * std::sin(1.0 + i));
  const Fit fit = FitMixture(data, 2);
  ASSERT_EQ(fit.error, kNone);
  EXPECT_NEAR(fit.components[1], 10.0, 1e-4);
  EXPECT_NEAR(fit.components[2], 1e-4 / std::sqrt(2.0), 2e-5);
}

TEST(GaussianMixtureFit, CollapsedComponentsAreNeverReturned) {
  std::vector<double> spike(30, 1.0);
  for (int i = 0; i < 30; ++i) spike.push_back(3.0 + std::sin(1.0 + i));
  const Fit fit = FitMixture(spike, 2);
  if (fit.error == kNone) {
    EXPECT_GT(std::min(fit.components[2], fit.components[5]), 1e-6);
  } else {
    EXPECT_EQ(fit.error, EstimationFault::kNoMaximum);
  }
  EXPECT_EQ(FitMixture({1, 2, 1, 2, 1, 2, 1, 2}, 2).error, EstimationFault::kNoMaximum);
}

TEST(GaussianMixtureFit, ComponentOfAFewCloseValuesIsANearSpike) {
  struct Case {
    std::vector<double> mixture;
    double count;
    std::optional<std::size_t> spike;
  };
  const Case cases[] = {
      {{0.5, 0, 1, 0.5, 3, 1}, 50, {}},
      {{0.94, 0, 1, 0.06, 0.3, 0.01}, 50, 1},     // three values
      {{0.94, 0, 1, 0.06, 0.3, 0.01}, 5000, {}},  // three hundred
      {{0.94, 0, 1, 0.06, 0.3, 0.5}, 50, {}},     // not narrow
      {{0.04, 0, 0.02, 0.9, 1, 1, 0.06, 3, 0.01}, 50, 2},
      {{1, 0, 1}, 5, {}},
  };
  for (const Case& c : cases) EXPECT_EQ(NearSpike(c.mixture, c.count), c.spike) << c.mixture[0];
}

TEST(GaussianMixtureFit, NamesWhatIsWrongWithTheRequest) {
  struct Case {
    std::vector<double> data;
    std::int32_t count;
    Ended error;
  };
  using enum EstimationFault;
  const std::vector<Case> cases = {{{1.0}, 1, kTooFewValues},
                                   {{1.0, 2.0, 3.0}, 2, kTooManyComponents},
                                   {{1.0, 2.0, 3.0}, 0, kInvalidArgument},
                                   {{1.0, 2.0, 3.0}, -444, kInvalidArgument},
                                   {std::vector<double>(100, 1.5), 2, kNoSpread},
                                   {{1.0, NAN, 3.0, 4.0}, 2, kNotFinite}};
  for (const Case& row : cases) {
    const Fit fit = FitMixture(row.data, row.count);
    EXPECT_EQ(fit.error, row.error);
  }
}

}  // namespace
}  // namespace brenvolt
