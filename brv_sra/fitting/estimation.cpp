#include "brv_sra/fitting/estimation.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <exception>
#include <mutex>
#include <optional>
#include <utility>

#include "brv_sra/distributions/law.h"
#include "brv_sra/fitting/discrete_estimation.h"
#include "brv_sra/fitting/goodness_of_fit.h"
#include "brv_sra/fitting/standard_errors.h"
#include "brv_sra/fitting/triangular_estimation.h"
#include "brv_sra/fitting/weibull_estimation.h"
#include "host/base/error.h"
#include "host/base/floating_point_guard.h"
#include "host/base/parallel.h"
#include "host/numeric/estimation/estimators.h"

namespace brenvolt::sra {
namespace {

// A Newton step of the shape below this ends the Weibull estimation: convergence is quadratic, so the shape
// is then good to rounding.
constexpr double kWeibullTolerance = 1e-9;

// The bounds of a number of mixture components.
constexpr std::int32_t kFewestMixtures = 2;
constexpr std::int64_t kMostMixtures = 20;
constexpr std::int64_t kCasesPerMixture = 2;

using Values = std::vector<double>;

// What an estimator may look at. A fit specification of the other kind is null.
struct Input {
  std::span<const double> sorted;
  const Moments& moments;
  double offset;  // 0 where the type has none
  const ContinuousSpecification* continuous;
  const DiscreteSpecification* discrete;
  const Poll& poll;

  double Count() const { return static_cast<double>(sorted.size()); }
};

// No values: the fit failed.
struct Estimate {
  Values values;
  Values standardErrors;
  Values covariance;
  int estimatedParameters = 0;
  double logLikelihood = kNotSet;  // where the estimator knows it
};

Estimate WithCovariance(Values values, Values covariance) {
  const std::size_t count = values.size();
  Estimate estimate{std::move(values), {}, std::move(covariance), static_cast<int>(count)};
  for (std::size_t i = 0; i < count; ++i)
    estimate.standardErrors.push_back(std::sqrt(estimate.covariance[i * count + i]));
  return estimate;
}

// Mean and standard deviation of normal values are uncorrelated, with variances s^2 / n and s^2 / (2 n).
Estimate OfNormalValues(double mean, double deviation, double count) {
  const double variance = deviation * deviation / count;
  return WithCovariance({mean, deviation}, {variance, 0, 0, variance / 2});
}

Estimate EstimateNormal(const Input& input) {
  std::array<double, 2> parameters{};
  EstimationError error{};
  if (FitNormalDistribution(0, input.sorted, parameters, error) != 0) return {};
  return OfNormalValues(parameters[0], parameters[1], input.Count());
}

// A value without a logarithm rules the log-normal out, whatever its offset.
Estimate EstimateLogNormal(const Input& input) {
  std::array<double, 2> parameters{};
  EstimationError error{};
  if (IsNotSet(input.moments.logMean)) return {};
  if (FitLognormalDistribution(0, input.sorted, input.offset, parameters, error) != 0) return {};
  return OfNormalValues(parameters[0], parameters[1], input.Count());
}

Estimate EstimateFoldedNormal(const Input& input) {
  std::array<double, 2> p{};
  EstimationError error{};
  if (FitFoldedNormalDistribution(0, input.sorted, input.offset, p, error, input.poll) != 0) return {};
  const auto covariance = FoldedNormalCovariance(input.sorted, p[0], p[1], input.offset);
  if (!covariance) return {{p[0], p[1]}, {}, {}, 2};
  return WithCovariance({p[0], p[1]}, {covariance->begin(), covariance->end()});
}

// Scale, its standard error, the log-likelihood.
Estimate OfScale(const std::array<double, 3>& results) {
  return {{results[0]}, {results[1]}, {results[1] * results[1]}, 1, results[2]};
}

Estimate EstimateHalfNormal(const Input& input) {
  std::array<double, 3> results{};
  EstimationError error{};
  if (FitHalfNormalDistribution(0, input.sorted, input.offset, results, error) != 0) return {};
  return OfScale(results);
}

Estimate EstimateRayleigh(const Input& input) {
  std::array<double, 3> results{};
  EstimationError error{};
  if (FitRayleighDistribution(0, input.sorted, input.offset, results, error) != 0) return {};
  return OfScale(results);
}

Estimate EstimateWeibullValues(const Input& input) {
  const WeibullEstimate fit = EstimateWeibull(input.sorted, input.offset, kWeibullTolerance);
  if (fit.status != WeibullStatus::kSuccess) return {};
  const double scaleError = fit.scaleStandardError;
  const double shapeError = fit.shapeStandardError;
  return {{fit.scale, fit.shape},
          {scaleError, shapeError},
          {scaleError * scaleError, fit.covariance, fit.covariance, shapeError * shapeError},
          2};
}

// No standard errors: the likelihood of a mixture is too far from quadratic for them at usual sizes.
Estimate EstimateGaussianMixture(const Input& input) {
  std::int32_t components =
      AllowedMixtures(input.continuous->mixtures, static_cast<std::int64_t>(input.sorted.size()));
  Values values(3 * static_cast<std::size_t>(components), kNotSet);
  EstimationError error{};
  if (FitGaussianMixture(input.sorted, values, components, error, input.poll) != 0) return {};
  values.resize(3 * static_cast<std::size_t>(components));
  for (std::size_t i = 2; i < values.size(); i += 3) {
    if (AlmostEqual(values[i], 0)) return {};
  }
  return {values, {}, {}, 3 * components - 1};
}

// Family 5, the two-point limit of SB, is kept as SB.
double StoredFamily(double family) {
  constexpr double kTwoPoints = 5;
  return family == kTwoPoints ? static_cast<double>(JohnsonFamily::kBounded) : family;
}

// SL and SN do without the scale, SN without the location, too.
int JohnsonParameterCount(double family) {
  if (family == static_cast<double>(JohnsonFamily::kNormal)) return 2;
  return family == static_cast<double>(JohnsonFamily::kLognormal) ? 3 : 4;
}

// No standard errors: neither moments nor percentiles maximise the likelihood.
Estimate EstimateJohnson(const Input& input) {
  std::array<double, 5> p{};
  EstimationError error{};
  const Moments& m = input.moments;
  if (input.continuous->fit[kPercentileFitFlag]) {
    constexpr double kChosenByTheFit = -1;
    if (FitJohnsonFromPercentiles(input.sorted, p, kChosenByTheFit, 1, error) != 0)
      throw NumericalException("the Johnson distribution cannot be fitted from percentiles",
                               "fit it from moments or leave it out");
  } else if (IsNotSet(m.kurtosis) ||
             FitJohnsonFromMoments(m.mean, m.standardDeviation, m.skewness, m.kurtosis, p, error) != 0) {
    return {};
  }
  p[0] = StoredFamily(p[0]);
  return {{p.begin(), p.end()}, {}, {}, JohnsonParameterCount(p[0])};
}

// No standard errors for a shape of -1/2 or less, where estimates are not asymptotically normal (Smith 1985).
Estimate EstimateGeneralExtremeValue(const Input& input) {
  std::array<double, 3> p{};
  std::array<double, 9> covariance{};
  EstimationError error{};
  const bool isLikelihood = GEV_MLE(input.sorted, p, covariance, error, input.poll) == 0;
  if (!isLikelihood && GEV_ProbWeightMoments(input.sorted, p, error) != 0) return {};
  if (!(p[1] > 0)) return {};
  const bool hasErrors = isLikelihood && p[2] > kLeastRegularShape && !IsNotSet(covariance[0]);
  if (!hasErrors) return {{p.begin(), p.end()}, {}, {}, 3};
  return WithCovariance({p.begin(), p.end()}, {covariance.begin(), covariance.end()});
}

Estimate EstimateGeneralPareto(const Input& input) {
  std::array<double, 3> p{};
  EstimationError error{};
  const bool isLikelihood = FitGPDMaximumLikelihood(input.sorted, input.offset, p, error, input.poll) == 0;
  if (!isLikelihood && FitGPDProbabilityWeightedMoments(input.sorted, input.offset, p, error) != 0) return {};
  if (!(p[1] > 0)) return {};
  const auto covariance =
      isLikelihood ? ParetoCovariance(input.sorted, p[1], p[2], input.offset) : std::optional<Covariance2>();
  if (!covariance) return {{p[1], p[2]}, {}, {}, 2};
  return WithCovariance({p[1], p[2]}, {covariance->begin(), covariance->end()});
}

// No standard errors: the extremes of a sample are not asymptotically normal.
Estimate EstimateTriangularValues(const Input& input) {
  const TriangularEstimate fit = EstimateTriangular(input.sorted, input.poll);
  if (!fit.isValid) return {};
  return {{fit.minimum, fit.maximum, fit.mode}, {}, {}, 3, fit.logLikelihood};
}

// A single value with its variance.
Estimate OfRate(const RateEstimate& fit, double variance) {
  if (fit.status != DiscreteStatus::kSuccess) return {};
  return WithCovariance({fit.value}, {variance});
}

// The error of an estimated number of trials has no closed form; that of the proportion would be too small
// without it.
Estimate EstimateBinomialValues(const Input& input) {
  const bool estimateTrials = !input.discrete->useTrials;
  const BinomialEstimate fit = EstimateBinomial(input.sorted, input.discrete->trials, estimateTrials);
  if (fit.status != DiscreteStatus::kSuccess) return {};
  const auto trials = static_cast<double>(fit.trials);
  if (estimateTrials) return {{fit.proportion, trials}, {}, {}, 2};
  const double variance = fit.proportion * (1 - fit.proportion) / (input.Count() * trials);
  return {{fit.proportion, trials}, {std::sqrt(variance), 0}, {variance, 0, 0, 0}, 1};
}

Estimate EstimatePoissonValues(const Input& input) {
  const RateEstimate fit = EstimatePoisson(input.sorted);
  return OfRate(fit, fit.value / input.Count());
}

Estimate EstimateGeometricValues(const Input& input) {
  const RateEstimate fit = EstimateGeometric(input.sorted);
  return OfRate(fit, fit.value * fit.value * (1 - fit.value) / input.Count());
}

Estimate EstimateBernoulliValues(const Input& input) {
  const RateEstimate fit = EstimateBernoulli(input.sorted);
  return OfRate(fit, fit.value * (1 - fit.value) / input.Count());
}

// No standard errors, which a table of classes has no place for.
Estimate EstimateHistogramValues(const Input& input) {
  HistogramEstimate fit = EstimateHistogram(input.sorted);
  if (fit.status != DiscreteStatus::kSuccess) return {};
  const int parameters = static_cast<int>(fit.classes.size() / 2) - 1;
  return {std::move(fit.classes), {}, {}, parameters};
}

struct Step {
  DistributionCode code;
  Estimate (*estimate)(const Input& input);
};

// In the fixed order, which is that of the codes.
constexpr std::array<Step, kDistributionCount> kSteps{{
    {DistributionCode::kNormal, EstimateNormal},
    {DistributionCode::kLogNormal, EstimateLogNormal},
    {DistributionCode::kFoldedNormal, EstimateFoldedNormal},
    {DistributionCode::kHalfNormal, EstimateHalfNormal},
    {DistributionCode::kRayleigh, EstimateRayleigh},
    {DistributionCode::kWeibull, EstimateWeibullValues},
    {DistributionCode::kGaussianMixture, EstimateGaussianMixture},
    {DistributionCode::kJohnson, EstimateJohnson},
    {DistributionCode::kGeneralExtremeValue, EstimateGeneralExtremeValue},
    {DistributionCode::kGeneralPareto, EstimateGeneralPareto},
    {DistributionCode::kTriangular, EstimateTriangularValues},
    {DistributionCode::kBinomial, EstimateBinomialValues},
    {DistributionCode::kPoisson, EstimatePoissonValues},
    {DistributionCode::kGeometric, EstimateGeometricValues},
    {DistributionCode::kBernoulli, EstimateBernoulliValues},
    {DistributionCode::kHistogram, EstimateHistogramValues},
}};

constexpr auto kCodes = [] {
  std::array<DistributionCode, kSteps.size()> codes{};
  for (std::size_t i = 0; i < codes.size(); ++i) codes[i] = kSteps[i].code;
  return codes;
}();

bool AllFinite(const Values& values) {
  return std::ranges::all_of(values, [](double value) { return std::isfinite(value); });
}

bool IsUsable(const Estimate& estimate) {
  return !estimate.values.empty() && !IsNotSet(estimate.values.front()) && AllFinite(estimate.values);
}

// Squares of errors overflow in units in which the values themselves do not.
void DropErrorsThatAreNotFinite(Estimate& estimate) {
  if (AllFinite(estimate.standardErrors) && AllFinite(estimate.covariance)) return;
  estimate.standardErrors.clear();
  estimate.covariance.clear();
}

DistributionFit RunStep(DistributionCode code, double offset, const Input& input) {
  DistributionFit fit;
  fit.specification.code = code;
  fit.specification.offset = offset;
  fit.specification.values = {kNotSet};
  const FloatingPointGuard guard;
  Estimate estimate = kSteps[static_cast<std::size_t>(code)].estimate(input);
  if (!IsUsable(estimate)) return fit;
  DropErrorsThatAreNotFinite(estimate);
  fit.specification.values = std::move(estimate.values);
  fit.standardErrors = std::move(estimate.standardErrors);
  fit.covariance = std::move(estimate.covariance);
  fit.estimatedParameters = estimate.estimatedParameters;
  const double logLikelihood = IsNotSet(estimate.logLikelihood)
                                   ? Law(fit.specification).LogLikelihood(input.sorted)
                                   : estimate.logLikelihood;
  fit.logLikelihood = std::isfinite(logLikelihood) ? logLikelihood : kNotSet;
  return fit;
}

// Whose estimate works on a copy of all values.
bool IsCopying(DistributionCode code) {
  constexpr std::array kCopying{DistributionCode::kLogNormal,
                                DistributionCode::kFoldedNormal,
                                DistributionCode::kHalfNormal,
                                DistributionCode::kRayleigh,
                                DistributionCode::kWeibull,
                                DistributionCode::kGaussianMixture,
                                DistributionCode::kGeneralExtremeValue,
                                DistributionCode::kGeneralPareto,
                                DistributionCode::kJohnson};
  return std::ranges::find(kCopying, code) != kCopying.end();
}

// The places of `codes` in the order in which they are best begun: those that take longest first,
// those that copy the values before those that do not.
std::vector<std::size_t> LongestFirst(std::span<const DistributionCode> codes) {
  constexpr std::array kLong{DistributionCode::kGaussianMixture, DistributionCode::kGeneralExtremeValue,
                             DistributionCode::kGeneralPareto, DistributionCode::kFoldedNormal,
                             DistributionCode::kJohnson};
  const auto rank = [&](std::size_t i) {
    return std::pair(std::ranges::find(kLong, codes[i]) - kLong.begin(), !IsCopying(codes[i]));
  };
  std::vector<std::size_t> order(codes.size());
  for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
  std::ranges::stable_sort(order, {}, rank);
  return order;
}

using EstimateOne = std::function<DistributionFit(DistributionCode)>;

// Estimates and tests the given distributions, several at a time: of a large sample two, and one of those
// that copy it. The exception of the first in order that threw is thrown again.
std::vector<DistributionFit> FitAll(std::span<const DistributionCode> codes, std::span<const double> sorted,
                                    ChiSquareBinning binning, const Poll& poll, const EstimateOne& estimate) {
  constexpr std::size_t kLargeSample = 500'000;  // values, of which few copies are to exist at a time
  const bool isLarge = sorted.size() > kLargeSample;
  std::vector<DistributionFit> fits(codes.size());
  std::vector<std::exception_ptr> failures(codes.size());
  const std::vector<std::size_t> order = LongestFirst(codes);
  std::size_t front = 0;
  std::size_t back = order.size();
  std::mutex taking;
  std::mutex copying;
  const auto take = [&](bool fromBack) -> std::optional<std::size_t> {
    const std::lock_guard<std::mutex> lock(taking);
    if (front == back) return std::nullopt;
    return order[fromBack ? --back : front++];
  };
  const auto estimateAt = [&](std::size_t i) {
    std::unique_lock<std::mutex> lock(copying, std::defer_lock);
    if (isLarge && IsCopying(codes[i])) lock.lock();
    fits[i] = estimate(codes[i]);
  };
  const auto work = [&](std::size_t worker) {
    const bool fromBack = isLarge && worker == 1;
    while (const auto taken = take(fromBack)) {
      const std::size_t i = *taken;
      try {
        poll();
        estimateAt(i);
        const FloatingPointGuard guard;
        if (fits[i].IsValid()) TestFit(fits[i], sorted, binning);
      } catch (...) {
        failures[i] = std::current_exception();
      }
    }
  };
  ParallelFor(isLarge ? 2 : codes.size(), work);
  for (const std::exception_ptr& failure : failures) {
    if (failure) std::rethrow_exception(failure);
  }
  return fits;
}

}  // namespace

std::span<const DistributionCode> FittedContinuous() {
  return std::span(kCodes).first(kContinuousCount);
}
std::span<const DistributionCode> FittedDiscrete() {
  return std::span(kCodes).subspan(kContinuousCount);
}

DistributionFit EstimateContinuous(DistributionCode code, const SortedSample& sample,
                                   const ContinuousSpecification& specification, const Poll& poll) {
  const auto index = OffsetIndex(code);
  const double offset = index ? specification.offsets[*index] : kNotSet;
  const double shift = IsNotSet(offset) ? 0 : offset;
  return RunStep(code, offset, {sample.values, sample.moments, shift, &specification, nullptr, poll});
}

DistributionFit EstimateDiscrete(DistributionCode code, const SortedSample& sample,
                                 const DiscreteSpecification& specification) {
  return RunStep(code, kNotSet, {sample.values, sample.moments, 0, nullptr, &specification, Poll([] {})});
}

std::vector<DistributionFit> FitContinuousDistributions(const SortedSample& sample,
                                                        const ContinuousSpecification& specification,
                                                        ChiSquareBinning binning, const Poll& poll) {
  std::vector<DistributionCode> codes;
  for (const DistributionCode code : FittedContinuous()) {
    if (specification.fit[static_cast<std::size_t>(FlagOfContinuous(code))]) codes.push_back(code);
  }
  return FitAll(codes, sample.values, binning, poll,
                [&](DistributionCode code) { return EstimateContinuous(code, sample, specification, poll); });
}

std::vector<DistributionFit> FitDiscreteDistributions(const SortedSample& sample,
                                                      const DiscreteSpecification& specification,
                                                      ChiSquareBinning binning, const Poll& poll) {
  std::vector<DistributionCode> codes;
  for (const DistributionCode code : FittedDiscrete()) {
    if (specification.fit[static_cast<std::size_t>(FlagOfDiscrete(code))]) codes.push_back(code);
  }
  return FitAll(codes, sample.values, binning, poll,
                [&](DistributionCode code) { return EstimateDiscrete(code, sample, specification); });
}

bool MixturesAreAllowed(std::int32_t asked, std::int64_t validCases) {
  return asked >= kFewestMixtures && asked <= std::min(validCases / kCasesPerMixture, kMostMixtures);
}

std::int32_t HighestMixtures(std::int64_t validCases) {
  const auto most = static_cast<std::int32_t>(std::min(validCases / kCasesPerMixture, kMostMixtures));
  return std::max(most, kFewestMixtures);
}

std::int32_t AllowedMixtures(std::int32_t asked, std::int64_t validCases) {
  return std::clamp(asked, kFewestMixtures, HighestMixtures(validCases));
}

}  // namespace brenvolt::sra
