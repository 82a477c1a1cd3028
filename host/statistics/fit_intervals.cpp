#include "host/statistics/fit_intervals.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <utility>

#include "host/base/parallel.h"
#include "host/numeric/censored/censored_likelihood.h"
#include "host/numeric/distributions/distribution_table.h"
#include "host/numeric/distributions/normal.h"
#include "host/statistics/moments.h"
#include "host/statistics/profile_likelihood.h"

namespace brenvolt {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

AnyDistribution DistributionOf(const FittedValues& fit) {
  return {fit.code, fit.values, fit.offset};
}

// Whether a fit may be judged by its likelihood. Below a shape of -1 the likelihood grows without bound as the end of the distribution nears the greatest value.
bool HasLikelihood(const FittedValues& fit) {
  constexpr double kLeastShape = -1;
  const bool isBounded = fit.code == DistributionCode::kGeneralExtremeValue ? fit.values[2] > kLeastShape
                         : fit.code == DistributionCode::kGeneralPareto     ? fit.values[1] > kLeastShape
                                                                            : true;
  return isBounded && DistributionOf(fit).IsValid();
}

// A scale of estimates, and the way back.
struct Scale {
  double (*to)(double value, const Scale& scale);
  double (*from)(double value, const Scale& scale);
  double origin = 0;
  double unit = 1;
};

double ToLogarithm(double value, const Scale& scale) {
  return std::log(value - scale.origin);
}
double FromLogarithm(double value, const Scale& scale) {
  return scale.origin + std::exp(value);
}
double ToArea(double value, const Scale& scale) {
  return std::asinh((value - scale.origin) / scale.unit);
}
double FromArea(double value, const Scale& scale) {
  return scale.origin + scale.unit * std::sinh(value);
}

Scale QuantileScale(const FittedValues& fit) {
  const double beginning = fit.Quantile(0);
  // Only an offset or 0 is a beginning that does not depend on the values.
  if (beginning == fit.offset && fit.code != DistributionCode::kGeneralExtremeValue)
    return {&ToLogarithm, &FromLogarithm, beginning};
  constexpr double kLow = 0.1587;
  return {&ToArea, &FromArea, fit.Quantile(0.5), (fit.Quantile(1 - kLow) - fit.Quantile(kLow)) / 2};
}

// The standard error of a function of the values. Steps far below the errors of the values see a function without
// curvature, and lie far above the rounding of their differences.
template <class Function>
std::optional<double> StandardError(const FittedValues& fit, const Function& function) {
  constexpr double kStep = 1e-3;
  const std::size_t n = fit.values.size();
  if (fit.covariance.size() != n * n) return std::nullopt;
  std::vector<double> gradient(n);
  for (std::size_t i = 0; i < n; ++i) {
    const double step = kStep * std::sqrt(fit.covariance[i * n + i]);
    if (!(step > 0)) continue;
    FittedValues above = fit;
    FittedValues below = fit;
    above.values[i] += step;
    below.values[i] -= step;
    gradient[i] = (function(above) - function(below)) / (above.values[i] - below.values[i]);
  }
  double variance = 0;
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = 0; j < n; ++j) variance += gradient[i] * fit.covariance[i * n + j] * gradient[j];
  }
  if (!(variance > 0) || !std::isfinite(variance)) return std::nullopt;
  return std::sqrt(variance);
}

// What is estimated, on the scale on which it is nearly normal, and the way back.
struct Estimand {
  std::function<double(const FittedValues&)> scaled;
  std::function<double(double)> back;
};

Estimand QuantileOf(const FittedValues& fit, double p) {
  const Scale scale = QuantileScale(fit);
  return {[=](const FittedValues& one) { return scale.to(one.Quantile(p), scale); },
          [=](double value) { return scale.from(value, scale); }};
}

Estimand ExceedanceOf(double x) {
  return {[x](const FittedValues& one) {
            const AnyDistribution distribution = DistributionOf(one);
            return std::log(distribution.Complement(x)) - std::log(distribution.Cdf(x));
          },
          [](double logit) { return 1 / (1 + std::exp(-logit)); }};
}

ConfidenceInterval IntervalByProfile(const FittedValues& fit, const LogLikelihood& likelihood,
                                     const Estimand& estimand, double confidence) {
  if (!std::isfinite(estimand.scaled(fit))) return {};
  const ConfidenceInterval found = ProfileInterval(fit, likelihood, estimand.scaled, confidence);
  if (IsNotSet(found.lower)) return {};
  return {estimand.back(found.lower), estimand.back(found.upper)};
}

ConfidenceInterval DeltaInterval(const FittedValues& fit, const Estimand& estimand, double confidence) {
  const double estimate = estimand.scaled(fit);
  const auto error = StandardError(fit, estimand.scaled);
  if (!error || !std::isfinite(estimate)) return {};
  const double reach = Distribution<Normal>(0, 1).ComplementQuantile((1 - confidence) / 2) * *error;
  return {estimand.back(estimate - reach), estimand.back(estimate + reach)};
}

ConfidenceInterval BootstrapInterval(const FittedValues& fit, const std::vector<FittedValues>& fits,
                                     const Estimand& estimand, double confidence) {
  constexpr std::size_t kFewWithout = 20;
  const double estimate = estimand.scaled(fit);
  const auto error = StandardError(fit, estimand.scaled);
  std::vector<double> values;
  std::vector<double> distances;
  for (const FittedValues& one : fits) {
    const double value = estimand.scaled(one);
    if (std::isnan(value)) return {};
    values.push_back(value);
    const auto own = error ? StandardError(one, estimand.scaled) : std::nullopt;
    if (own) distances.push_back((value - estimate) / *own);
  }
  const bool isStudentised = error && kFewWithout * (fits.size() - distances.size()) <= fits.size();
  const ConfidenceInterval found =
      PercentileInterval(isStudentised ? std::move(distances) : std::move(values), confidence);
  if (IsNotSet(found.lower)) return {};
  if (!isStudentised) return {estimand.back(found.lower), estimand.back(found.upper)};
  return {estimand.back(estimate - found.upper * *error), estimand.back(estimate - found.lower * *error)};
}

}  // namespace

double FittedValues::Quantile(double p) const {
  return DistributionOf(*this).Quantile(p);
}

double FittedValues::Exceedance(double x) const {
  return DistributionOf(*this).Complement(x);
}

ConfidenceInterval PercentileInterval(std::vector<double> values, double confidence) {
  const auto n = static_cast<double>(values.size());
  const double rank = std::floor((1 - confidence) / 2 * (n + 1));
  if (rank < 1) return {};
  std::ranges::sort(values);
  const auto place = static_cast<std::size_t>(rank);
  return {values[place - 1], values[values.size() - place]};
}

LogLikelihood LikelihoodOf(std::vector<double> sorted, EstimationPoll poll) {
  return [sorted = std::move(sorted), poll = std::move(poll)](const FittedValues& fit) {
    poll();
    return HasLikelihood(fit) ? DistributionOf(fit).LogLikelihood(sorted) : -kInfinity;
  };
}

LogLikelihood LikelihoodOf(CensoredSample sample, EstimationPoll poll) {
  return [sample = std::move(sample), poll = std::move(poll)](const FittedValues& fit) {
    poll();
    return HasLikelihood(fit) ? CensoredLogLikelihood(fit.code, fit.values, sample, fit.offset).value
                              : -kInfinity;
  };
}

std::optional<FittedValues> FitSample(DistributionCode code, std::vector<double> sample, double offset,
                                      const EstimationChoices& choices, const EstimationPoll& poll) {
  std::ranges::sort(sample);
  MomentAccumulator accumulator;
  for (const double x : sample) accumulator.Add(x, 1);
  const Moments moments = accumulator.Finish();
  const auto estimate = EntryOf(code).estimate({.sorted = sample,
                                                .offset = offset,
                                                .mean = moments.mean,
                                                .standardDeviation = moments.standardDeviation,
                                                .skewness = moments.skewness,
                                                .kurtosis = moments.kurtosis,
                                                .components = choices.components,
                                                .isByPercentiles = choices.isByPercentiles,
                                                .poll = poll});
  if (!estimate) return std::nullopt;
  return FittedValues{code, estimate->values, offset, estimate->covariance};
}

ConfidenceInterval QuantileInterval(const FittedValues& fit, double p, double confidence) {
  return DeltaInterval(fit, QuantileOf(fit, p), confidence);
}

ConfidenceInterval ExceedanceInterval(const FittedValues& fit, double x, double confidence) {
  return DeltaInterval(fit, ExceedanceOf(x), confidence);
}

ConfidenceInterval ProfileQuantileInterval(const FittedValues& fit, const LogLikelihood& likelihood, double p,
                                           double confidence) {
  return IntervalByProfile(fit, likelihood, QuantileOf(fit, p), confidence);
}

ConfidenceInterval ProfileExceedanceInterval(const FittedValues& fit, const LogLikelihood& likelihood,
                                             double x, double confidence) {
  return IntervalByProfile(fit, likelihood, ExceedanceOf(x), confidence);
}

FitBootstrap::FitBootstrap(const FittedValues& fit, std::size_t count, std::size_t samples,
                           const RandomStream& stream, const EstimationChoices& choices,
                           const EstimationPoll& poll)
    : fit_(fit) {
  std::vector<std::optional<FittedValues>> found(samples);
  const AnyDistribution distribution = DistributionOf(fit);
  ParallelFor(samples, [&](std::size_t i) {
    std::vector<double> sample(count);
    stream.Substream(i, 0).FillUniform(0, sample);
    distribution.Quantile(sample, sample);
    found[i] = FitSample(fit.code, std::move(sample), fit.offset, choices, poll);
  });
  for (auto& one : found) {
    if (one) fits_.push_back(*std::move(one));
  }
}

ConfidenceInterval FitBootstrap::Quantile(double p, double confidence) const {
  return BootstrapInterval(fit_, fits_, QuantileOf(fit_, p), confidence);
}

ConfidenceInterval FitBootstrap::Exceedance(double x, double confidence) const {
  return BootstrapInterval(fit_, fits_, ExceedanceOf(x), confidence);
}

}  // namespace brenvolt
