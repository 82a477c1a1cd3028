// Half normal, Rayleigh and folded normal: laws of a magnitude above an offset.
//
// The folded normal has the likelihood equations (Leone, Nelson & Nottingham 1961)
//   location = mean(x tanh(x location / scale^2)),  scale^2 = mean(x^2) - location^2.
// With d = mean(x) - location they become one equation in d on [0, mean(x)],
//   d = mean(2 x / (exp(2 x location / scale^2) + 1)),  scale^2 = variance(x) + d (2 mean(x) - d),
// without cancellation however small the spread is beside the mean. d = mean(x), which is location 0, always
// solves it and is a maximum or a saddle; d = 0 is the normal distribution far from the fold.
#include <algorithm>
#include <boost/math/tools/toms748_solve.hpp>
#include <cmath>
#include <numbers>
#include <span>
#include <vector>

#include "host/numeric/estimator_support.h"
#include "host/numeric/estimators.h"
#include "host/numeric/standard_normal.h"

namespace brenvolt {
namespace {

using estimation::CheckSample;
using estimation::CompensatedSum;
using estimation::Fail;
using estimation::Mean;
using estimation::MeanSquare;
using estimation::ScaledSample;
using estimation::ScaleFrom;
using estimation::Succeed;

// Prepares x - offset in `sample`; kNone when all of it is finite and within the support.
EstimationError ShiftAboveOffset(std::span<const double> data, double offset, bool isOffsetInside,
                                 ScaledSample& sample) {
  if (const EstimationError reason = CheckSample(data, 2, offset); reason != EstimationError::kNone)
    return reason;
  sample = ScaleFrom(data, offset);
  if (estimation::IsAnyNotFinite(sample.values)) return EstimationError::kNotFinite;
  for (const double x : sample.values) {
    if (x < 0.0 || (x == 0.0 && !isOffsetInside)) return EstimationError::kValueOutsideSupport;
  }
  return EstimationError::kNone;
}

class FoldedLikelihood {
 public:
  explicit FoldedLikelihood(std::span<const double> values)
      : values_(values), mean_(Mean(values)), variance_(MeanSquare(values, mean_)) {}

  double SampleMean() const { return mean_; }
  double SampleVariance() const { return variance_; }
  double ScaleSquared(double d) const { return variance_ + d * (2.0 * mean_ - d); }

  // Positive where the likelihood grows with d.
  double Excess(double d) const {
    const double slope = 2.0 * (mean_ - d) / ScaleSquared(d);
    CompensatedSum sum;
    for (const double x : values_) sum.Add(2.0 * x / (std::exp(slope * x) + 1.0));
    return sum.Value() / static_cast<double>(values_.size()) - d;
  }

  // Mean log-likelihood, without constants.
  double LogLikelihood(double d) const {
    const double location = mean_ - d;
    const double scaleSquared = ScaleSquared(d);
    CompensatedSum sum;
    for (const double x : values_) {
      const double z = x - location;
      sum.Add(std::log1p(std::exp(-2.0 * x * location / scaleSquared)) - 0.5 * z * z / scaleSquared);
    }
    return sum.Value() / static_cast<double>(values_.size()) - 0.5 * std::log(scaleSquared);
  }

 private:
  std::span<const double> values_;
  double mean_;
  double variance_;
};

// The d in [low, high] at which the excess changes from positive to negative.
double SolveExcess(const FoldedLikelihood& likelihood, double low, double high) {
  std::uintmax_t steps = 200;
  const auto excess = [&](double d) { return likelihood.Excess(d); };
  const auto bracket = boost::math::tools::toms748_solve(
      excess, low, high, boost::math::tools::eps_tolerance<double>(52), steps);
  return 0.5 * (bracket.first + bracket.second);
}

// d from nearly 0 to nearly the mean, in steps of a factor of two from either end.
std::vector<double> FoldedGrid(double mean) {
  constexpr int kNearZero = 60;
  constexpr int kNearMean = 17;  // nearer than 2^-17 the likelihood is flat to its last bits
  std::vector<double> grid = {0.0};
  for (int k = kNearZero; k >= 1; --k) grid.push_back(std::scalbn(mean, -k));
  for (int k = 2; k <= kNearMean; ++k) grid.push_back(mean - std::scalbn(mean, -k));
  return grid;
}

double BestFoldedRoot(const FoldedLikelihood& likelihood) {
  double best = likelihood.SampleMean();
  double bestLogLikelihood = likelihood.LogLikelihood(best);
  const auto consider = [&](double d) {
    const double value = likelihood.LogLikelihood(d);
    if (!(value > bestLogLikelihood)) return;
    best = d;
    bestLogLikelihood = value;
  };
  const std::vector<double> grid = FoldedGrid(likelihood.SampleMean());
  double previous = likelihood.Excess(grid[0]);
  if (previous <= 0.0) consider(0.0);
  for (std::size_t i = 1; i < grid.size(); ++i) {
    const double excess = likelihood.Excess(grid[i]);
    if (previous > 0.0 && excess <= 0.0) consider(SolveExcess(likelihood, grid[i - 1], grid[i]));
    previous = excess;
  }
  return best;
}

}  // namespace

std::int32_t FitHalfNormalDistribution(std::int32_t /*flag*/, std::span<const double> data, double offset,
                                       std::span<double, 3> parameters, EstimationError& error) {
  ScaledSample sample;
  const EstimationError reason = ShiftAboveOffset(data, offset, true, sample);
  if (reason != EstimationError::kNone) return Fail(reason, parameters, error);
  const double scale = sample.InUnitsOfData(std::sqrt(MeanSquare(sample.values)));
  if (!(scale > 0.0)) return Fail(EstimationError::kNoSpread, parameters, error);

  const auto n = static_cast<double>(data.size());
  parameters[0] = scale;
  parameters[1] = scale / std::sqrt(2.0 * n);
  parameters[2] = n * (std::numbers::ln2 - kLogSqrtTwoPi - std::log(scale) - 0.5);
  return Succeed(parameters, error);
}

std::int32_t FitRayleighDistribution(std::int32_t /*flag*/, std::span<const double> data, double offset,
                                     std::span<double, 3> parameters, EstimationError& error) {
  ScaledSample sample;
  const EstimationError reason = ShiftAboveOffset(data, offset, false, sample);
  if (reason != EstimationError::kNone) return Fail(reason, parameters, error);

  const auto n = static_cast<double>(data.size());
  const double scaled = std::sqrt(0.5 * MeanSquare(sample.values));
  CompensatedSum logs;  // of x / scale, which needs no units
  for (const double x : sample.values) logs.Add(std::log(x / scaled));
  const double scale = sample.InUnitsOfData(scaled);
  parameters[0] = scale;
  parameters[1] = scale / std::sqrt(4.0 * n);
  parameters[2] = logs.Value() - n * (std::log(scale) + 1.0);
  return Succeed(parameters, error);
}

std::int32_t FitFoldedNormalDistribution(std::int32_t /*flag*/, std::span<const double> data, double offset,
                                         std::span<double, 2> parameters, EstimationError& error) {
  ScaledSample sample;
  const EstimationError reason = ShiftAboveOffset(data, offset, true, sample);
  if (reason != EstimationError::kNone) return Fail(reason, parameters, error);
  const FoldedLikelihood likelihood(sample.values);
  const auto [least, greatest] = std::minmax_element(sample.values.begin(), sample.values.end());
  if (*least == *greatest || !(likelihood.SampleVariance() > 0.0)) {
    return Fail(EstimationError::kNoSpread, parameters, error);
  }

  const double d = BestFoldedRoot(likelihood);
  parameters[0] = sample.InUnitsOfData(likelihood.SampleMean() - d);
  parameters[1] = sample.InUnitsOfData(std::sqrt(likelihood.ScaleSquared(d)));
  return Succeed(parameters, error);
}

}  // namespace brenvolt
