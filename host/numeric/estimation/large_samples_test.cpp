// Estimators that search a large sample thinned must end at the maximum of the whole sample. A sample with
// every value twice has the maximum of the sample itself, and is large where that is searched whole.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include "host/numeric/estimation/folded_normal_estimator.h"
#include "host/numeric/estimation/gev_estimators.h"
#include "host/numeric/estimation/gpd_estimators.h"
#include "host/numeric/estimation/mixture/gaussian_mixture_estimator.h"
#include "host/numeric/special/bracketed_root.h"

namespace brenvolt {
namespace {

using Values = std::vector<double>;

// More values make a large sample.
constexpr std::size_t kMixtureSearchedWhole = 2'500;

Values Sample(const std::function<double(std::mt19937_64&)>& draw, std::size_t count = kLargeSample) {
  std::mt19937_64 engine(7);
  Values values(count);
  for (double& x : values) x = draw(engine);
  std::ranges::sort(values);
  return values;
}

double Normal(std::mt19937_64& engine) {
  return std::normal_distribution<double>()(engine);
}
double Uniform(std::mt19937_64& engine) {
  return std::uniform_real_distribution<double>(1e-12, 1)(engine);
}

using Fit = std::function<Values(std::span<const double>)>;

Values FitFolded(std::span<const double> data) {
  const auto fit = EstimateFoldedNormal(data, 0);
  return fit ? Values{fit->location, fit->scale} : Values(2, kNotSet);
}
Values FitPareto(std::span<const double> data) {
  const auto fit = EstimatePareto(data, 0);
  return fit ? Values{fit->scale, fit->shape} : Values(2, kNotSet);
}
Values FitExtremeValue(std::span<const double> data) {
  const auto fit = EstimateExtremeValue(data);
  return fit ? Values(fit->parameters.begin(), fit->parameters.end()) : Values(3, kNotSet);
}
template <int kComponents>
Values FitMixture(std::span<const double> data) {
  const auto fit = EstimateGaussianMixture(data, kComponents);
  return fit ? *fit : Values(3 * kComponents, kNotSet);
}

TEST(LargeSamples, EndAtTheMaximumOfTheSampleSearchedWhole) {
  const auto extreme = [](double shape) {
    return [shape](auto& e) { return std::expm1(-shape * std::log(-std::log(Uniform(e)))) / shape; };
  };
  const auto pareto = [](double shape) {
    return [shape](auto& e) { return std::expm1(-shape * std::log(Uniform(e))) / shape; };
  };
  const auto folded = [](double location) {
    return [location](auto& e) { return std::abs(location + Normal(e)); };
  };
  const auto hump = [](auto& e) { return (Uniform(e) < 0.2 ? 23 : 20) + 1.5 * Normal(e); };
  const auto three = [](auto& e) {
    const double u = Uniform(e);
    return u < 0.3 ? Normal(e) : u < 0.9 ? 4 + 0.7 * Normal(e) : 9 + 2 * Normal(e);
  };
  struct Case {
    const char* what;
    Values data;
    Fit fit;
    double tolerance;
  };
  const Case cases[] = {
      {"extreme value, heavy", Sample(extreme(0.4)), FitExtremeValue, 1e-9},
      {"extreme value, bounded", Sample(extreme(-0.4)), FitExtremeValue, 1e-9},
      {"extreme value of normal values", Sample(Normal), FitExtremeValue, 1e-9},
      {"Pareto, heavy", Sample(pareto(0.7)), FitPareto, 1e-9},
      {"Pareto, bounded", Sample(pareto(-0.3)), FitPareto, 1e-9},
      {"Pareto, almost uniform", Sample(pareto(-0.9)), FitPareto, 1e-9},
      {"Pareto of folded normal values", Sample(folded(0)), FitPareto, 1e-9},
      {"Pareto without a maximum", Sample([](auto& e) { return 1 + Uniform(e); }), FitPareto, 1e-9},
      {"folded at 0.6", Sample(folded(0.6)), FitFolded, 1e-8},
      {"folded at 1", Sample(folded(1)), FitFolded, 1e-9},
      {"folded far off", Sample(folded(6)), FitFolded, 1e-9},
      {"two overlapping components", Sample(hump, kMixtureSearchedWhole), FitMixture<2>, 1e-5},
      {"three components", Sample(three, kMixtureSearchedWhole), FitMixture<3>, 1e-5},
      {"two components for a log-normal",
       Sample([](auto& e) { return std::exp(0.6 * Normal(e)); }, kMixtureSearchedWhole), FitMixture<2>, 1e-5},
  };
  for (const Case& c : cases) {
    Values twice;
    for (const double x : c.data) twice.insert(twice.end(), 2, x);
    const Values whole = c.fit(c.data);
    const Values large = c.fit(twice);
    for (std::size_t i = 0; i < whole.size(); ++i) EXPECT_NEAR(large[i], whole[i], c.tolerance) << c.what;
  }
}

// The end of a bounded support hangs on the greatest values, which a thinned sample may not hold.
TEST(LargeSamples, ParetoMaximumNearTheEndOfTheSupportIsFound) {
  for (std::uint64_t seed = 0; seed < 8; ++seed) {
    std::mt19937_64 engine(seed);
    Values data(kLargeSample);
    for (double& x : data) x = std::abs(Normal(engine));
    const Values whole = FitPareto(data);
    Values twice = data;
    twice.insert(twice.end(), data.begin(), data.end());
    const Values large = FitPareto(twice);
    EXPECT_LT(whole[1], -0.15) << seed;
    for (std::size_t i = 0; i < whole.size(); ++i) EXPECT_NEAR(large[i], whole[i], 1e-9) << seed;
  }
}

// Of so few values a thinned sample keeps one or two, which make no component.
TEST(LargeSamples, ComponentOfAFewValuesInATailIsFound) {
  for (const std::size_t count : {5U, 20U}) {
    for (const double place : {-6.0, 6.0}) {
      Values data = Sample(Normal, kMixtureSearchedWhole);
      data.insert(data.end(), data.begin(), data.end());
      const auto n = static_cast<double>(data.size() + count);
      for (std::size_t i = 0; i < count; ++i) data.push_back(place + 0.3 * std::sin(1.0 + 2.0 * i));
      const Values p = FitMixture<2>(data);
      const std::size_t few = place < 0.0 ? 0 : 3;
      EXPECT_NEAR(p[few] * n, count, 0.1) << count;
      EXPECT_NEAR(p[few + 1], place, 0.1) << count;
      EXPECT_NEAR(p[few + 2], 0.3 / std::sqrt(2.0), 0.05) << count;
    }
  }
}

TEST(LargeSamples, OrderOfTheValuesDoesNotMatter) {
  Values data = Sample([](auto& e) { return std::abs(1 + Normal(e)); });
  data.insert(data.end(), data.begin(), data.end());
  std::ranges::sort(data);
  Values shuffled = data;
  std::shuffle(shuffled.begin(), shuffled.end(), std::mt19937_64(3));
  for (const Fit& fit : {Fit(FitExtremeValue), Fit(FitPareto), Fit(FitFolded), Fit(FitMixture<2>)}) {
    const Values sorted = fit(data);
    const Values any = fit(shuffled);
    for (std::size_t i = 0; i < sorted.size(); ++i) EXPECT_NEAR(any[i], sorted[i], 1e-9);
  }
}

}  // namespace
}  // namespace brenvolt
