// Every estimator on samples near the limits of what it can fit: three values, ties, nearly equal values, in
// small and large units and far from zero. None may end worse there than on the same values near one.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "host/numeric/distributions/half_normal.h"
#include "host/numeric/distributions/johnson.h"
#include "host/numeric/distributions/log_normal.h"
#include "host/numeric/distributions/rayleigh.h"
#include "host/numeric/estimation/estimation_support_test.h"
#include "host/numeric/estimation/folded_normal_estimator.h"
#include "host/numeric/estimation/gev_estimators.h"
#include "host/numeric/estimation/gpd_estimators.h"
#include "host/numeric/estimation/johnson/johnson_estimators.h"
#include "host/numeric/estimation/mixture/gaussian_mixture_estimator.h"
#include "host/numeric/estimation/normal_estimator.h"

namespace brenvolt {
namespace {

using Values = std::vector<double>;

struct Fit {
  Values parameters;
  Ended error;
};

// What a parameter becomes when the data become scale (data + shift).
enum class Kind { kLocation, kScale, kNumber, kLogarithm };

struct Estimator {
  std::string name;
  std::function<EstimationResult<Values>(std::span<const double> data, double offset)> fit;
  std::vector<Kind> kinds;

  Fit operator()(const Values& data, double offset) const {
    const auto result = fit(data, offset);
    return result ? Fit{*result, kNone} : Fit{{}, EndOf(result)};
  }
};

using enum Kind;

// The values of an estimate, or its fault.
template <class T, class Take>
EstimationResult<Values> Taken(const EstimationResult<T>& fit, const Take& take) {
  if (!fit) return fit.Reason();
  return take(*fit);
}

Values OfNormal(const NormalEstimate& fit) {
  return {fit.mean, fit.standardDeviation};
}
Values OfScale(const ScaleEstimate& fit) {
  return {fit.scale, fit.standardError};
}
Values OfFolded(const FoldedNormalEstimate& fit) {
  return {fit.location, fit.scale};
}
Values OfExtremeValue(const ExtremeValueEstimate& fit) {
  return {fit.parameters.begin(), fit.parameters.end()};
}
Values OfPareto(const ParetoEstimate& fit) {
  return {fit.scale, fit.shape};
}

// The families have parameters of different kinds; what they mean are these quantiles.
Values QuantilesOfJohnson(const JohnsonEstimate& p) {
  const Distribution<Johnson> fit(p[0], p[1], p[2], p[3], p[4]);
  return {fit.Quantile(0.2), fit.Quantile(0.5), fit.Quantile(0.8)};
}

using In = std::span<const double>;
const Estimator kEstimators[] = {
    {"normal", [](In x, double) { return Taken(EstimateNormal(x), OfNormal); }, {kLocation, kScale}},
    {"lognormal",
     [](In x, double offset) { return Taken(EstimateLogNormal(x, offset), OfNormal); },
     {kLogarithm, kNumber}},
    {"half normal",
     [](In x, double offset) { return Taken(EstimateHalfNormal(x, offset), OfScale); },
     {kScale, kScale}},
    {"Rayleigh",
     [](In x, double offset) { return Taken(EstimateRayleigh(x, offset), OfScale); },
     {kScale, kScale}},
    {"folded normal",
     [](In x, double offset) { return Taken(EstimateFoldedNormal(x, offset), OfFolded); },
     {kScale, kScale}},
    {"extreme value, likelihood",
     [](In x, double) { return Taken(EstimateExtremeValue(x), OfExtremeValue); },
     {kLocation, kScale, kNumber}},
    {"extreme value, moments",
     [](In x, double) { return Taken(EstimateExtremeValueByMoments(x), OfExtremeValue); },
     {kLocation, kScale, kNumber}},
    {"Pareto, likelihood",
     [](In x, double offset) { return Taken(EstimatePareto(x, offset), OfPareto); },
     {kScale, kNumber}},
    {"Pareto, moments",
     [](In x, double offset) { return Taken(EstimateParetoByMoments(x, offset), OfPareto); },
     {kScale, kNumber}},
    {"mixture of one",
     [](In x, double) { return EstimateGaussianMixture(x, 1); },
     {kNumber, kLocation, kScale}},
    {"mixture of two",
     [](In x, double) { return EstimateGaussianMixture(x, 2); },
     {kNumber, kLocation, kScale, kNumber, kLocation, kScale}},
    {"Johnson, percentiles",
     [](In x, double) {
       Values sorted(x.begin(), x.end());
       std::ranges::sort(sorted);
       return Taken(EstimateJohnsonByPercentiles(sorted), QuantilesOfJohnson);
     },
     {kLocation, kLocation, kLocation}},
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
        if (fit.error != plain.error || fit.error != kNone) continue;
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
