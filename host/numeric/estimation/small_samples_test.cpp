// Every estimator on samples near the limits of what it can fit: three values, ties, nearly equal values, in
// small and large units and far from zero. None may end worse there than on the same values near one.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>
#include <type_traits>
#include <vector>

#include "host/base/almost_equal.h"
#include "host/numeric/distributions/johnson.h"
#include "host/numeric/estimation/estimators.h"

namespace brenvolt {
namespace {

using Values = std::vector<double>;

struct Fit {
  Values parameters;
  EstimationError error = EstimationError::kNone;
};

// What a parameter becomes when the data become scale (data + shift).
enum class Kind { kLocation, kScale, kNumber, kLogarithm };

struct Estimator {
  std::string name;
  std::size_t count;  // of parameters
  std::function<void(std::span<const double> data, double offset, std::span<double> out, EstimationError&)>
      fit;
  std::vector<Kind> kinds;

  Fit operator()(const Values& data, double offset) const {
    Fit result{Values(count), {}};
    fit(data, offset, result.parameters, result.error);
    return result;
  }
};

using enum Kind;

// `More`: a poll, where the estimator searches.
template <std::size_t count, class... More>
auto AboveOffset(std::int32_t (*f)(std::int32_t, std::span<const double>, double, std::span<double, count>,
                                   EstimationError&, More...)) {
  return [f](std::span<const double> data, double offset, std::span<double> out, EstimationError& error) {
    f(0, data, offset, out.first<count>(), error, std::remove_cvref_t<More>{}...);
  };
}

template <class... More>
auto AboveThreshold(std::int32_t (*f)(std::span<const double>, double, std::span<double, 3>, EstimationError&,
                                      More...)) {
  return [f](std::span<const double> data, double threshold, std::span<double> out, EstimationError& error) {
    f(data, threshold, out.first<3>(), error, std::remove_cvref_t<More>{}...);
  };
}

auto MixtureOf(std::int32_t components) {
  return [components](std::span<const double> data, double, std::span<double> out, EstimationError& error) {
    std::int32_t count = components;
    FitGaussianMixture(data, out, count, error);
  };
}

void FitNormal(std::span<const double> data, double /*offset*/, std::span<double> out,
               EstimationError& error) {
  FitNormalDistribution(0, data, out.first<2>(), error);
}

void FitGev(std::span<const double> data, double /*offset*/, std::span<double> out, EstimationError& error) {
  double covariance[9];
  GEV_MLE(data, out.first<3>(), covariance, error);
}

void FitGevMoments(std::span<const double> data, double /*offset*/, std::span<double> out,
                   EstimationError& error) {
  GEV_ProbWeightMoments(data, out.first<3>(), error);
}

// The families have parameters of different kinds; what they mean are these quantiles.
void FitJohnsonQuantiles(std::span<const double> data, double /*offset*/, std::span<double> out,
                         EstimationError& error) {
  Values sorted(data.begin(), data.end());
  std::ranges::sort(sorted);
  double p[5];
  FitJohnsonFromPercentiles(sorted, p, -1.0, 1, error);
  const double probabilities[] = {0.2, 0.5, 0.8};
  for (std::size_t i = 0; i < out.size(); ++i) {
    out[i] = IsNotSet(p[0]) ? kNotSet
                            : Distribution<Johnson>(p[0], p[1], p[2], p[3], p[4]).Quantile(probabilities[i]);
  }
}

const Estimator kEstimators[] = {
    {"normal", 2, FitNormal, {kLocation, kScale}},
    {"lognormal", 2, AboveOffset(FitLognormalDistribution), {kLogarithm, kNumber}},
    // The third parameter of these two, a log-likelihood, is not compared.
    {"half normal", 3, AboveOffset(FitHalfNormalDistribution), {kScale, kScale}},
    {"Rayleigh", 3, AboveOffset(FitRayleighDistribution), {kScale, kScale}},
    {"folded normal", 2, AboveOffset(FitFoldedNormalDistribution), {kScale, kScale}},
    {"extreme value, likelihood", 3, FitGev, {kLocation, kScale, kNumber}},
    {"extreme value, moments", 3, FitGevMoments, {kLocation, kScale, kNumber}},
    {"Pareto, likelihood", 3, AboveThreshold(FitGPDMaximumLikelihood), {kLocation, kScale, kNumber}},
    {"Pareto, moments", 3, AboveThreshold(FitGPDProbabilityWeightedMoments), {kLocation, kScale, kNumber}},
    {"mixture of one", 3, MixtureOf(1), {kNumber, kLocation, kScale}},
    {"mixture of two", 6, MixtureOf(2), {kNumber, kLocation, kScale, kNumber, kLocation, kScale}},
    {"Johnson, percentiles", 3, FitJohnsonQuantiles, {kLocation, kLocation, kLocation}},
};

// Multiples of 1/1024 below 8, above an offset of 0, so that the exact moves below round nothing.
struct Sample {
  const char* what;
  Values data;
};
const Sample kSamples[] = {
    {"three values", {0.5, 1.75, 3.125}},
    {"three values, heavy above", {0.125, 0.25, 7.5}},
    {"three values, two tied", {1.0, 1.0, 2.0}},
    {"three equal values", {1.5, 1.5, 1.5}},
    {"two values", {1.0, 2.5}},
    {"ties", {0.5, 0.5, 1.0, 1.0, 1.0, 1.5, 1.5, 2.0, 2.5, 4.0}},
    {"one value apart", {1.0, 1.0, 1.0, 1.0, 1.0, 1.0, 1.0, 6.0}},
    {"two heaps", {1.0, 1.125, 1.25, 1.375, 1.5, 5.0, 5.25, 5.375, 5.5, 5.625, 6.0}},
    {"heavy above", {0.0625, 0.25, 0.375, 0.5, 0.75, 1.0, 1.25, 1.875, 2.5, 3.75, 7.875}},
    {"even", {0.5, 1.0, 1.5, 2.0, 2.5, 3.0, 3.5, 4.0, 4.5, 5.0}},
};

struct Move {
  const char* what;
  double shift;
  double scale;
  double tolerance;  // relative to the scale parameter: what rounding the data takes, and more
};
const Move kMoves[] = {
    {"nearly equal: spread some 1e-12 of the value", 0x1p40, 0x1p-40, 1e-10},
    {"small units", 0.0, 0x1p-30, 1e-10},
    {"large units", 0.0, 0x1p30, 1e-10},
    {"far from zero", 0x1p20, 1.0, 1e-10},
    {"far from zero, large units", 0x1p20, 0x1p30, 1e-10},
    {"units of 1e-9", 0.0, 1e-9, 1e-6},
    {"units of 1e9", 0.0, 1e9, 1e-6},
    {"1e6 from zero", 1e6, 1.0, 1e-10},
    {"1e6 from zero, units of 1e-9", 1e6, 1e-9, 1e-4},
};

double Moved(double parameter, Kind kind, const Move& move) {
  switch (kind) {
    case kLocation:
      return (parameter + move.shift) * move.scale;
    case kScale:
      return parameter * move.scale;
    case kLogarithm:
      return parameter + std::log(move.scale);
    case kNumber:
      break;
  }
  return parameter;
}

TEST(SmallSamples, FitFollowsUnitsAndShiftOrFailsForTheSameReason) {
  for (const Estimator& estimator : kEstimators) {
    for (const Sample& sample : kSamples) {
      const Fit plain = estimator(sample.data, 0.0);
      for (const Move& move : kMoves) {
        SCOPED_TRACE(estimator.name + ", " + sample.what + ", " + move.what);
        Values data = sample.data;
        for (double& x : data) x = (x + move.shift) * move.scale;
        const Fit fit = estimator(data, move.shift * move.scale);
        EXPECT_EQ(fit.error, plain.error);
        if (fit.error != plain.error) continue;
        for (std::size_t i = 0; i < estimator.count; ++i) {
          EXPECT_EQ(IsNotSet(fit.parameters[i]), fit.error != EstimationError::kNone) << i;
        }
        if (fit.error != EstimationError::kNone) continue;
        for (std::size_t i = 0; i < estimator.kinds.size(); ++i) {
          const Kind kind = estimator.kinds[i];
          const double unit = kind == kLocation || kind == kScale ? move.scale : 1.0;
          // A place is a double itself.
          const double expected = Moved(plain.parameters[i], kind, move);
          const double rounding = kind == kLocation ? 5e-16 * std::abs(expected) : 0.0;
          EXPECT_NEAR(fit.parameters[i], expected, move.tolerance * unit + rounding) << i;
        }
      }
    }
  }
}

}  // namespace
}  // namespace brenvolt
