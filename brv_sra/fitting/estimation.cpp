#include "brv_sra/fitting/estimation.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <exception>
#include <limits>
#include <mutex>
#include <optional>
#include <utility>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/distributions/specified_distribution.h"
#include "brv_sra/fitting/goodness_of_fit.h"
#include "host/base/parallel.h"
#include "host/base/process/floating_point_guard.h"
#include "host/numeric/distributions/distribution_table.h"
#include "host/numeric/distributions/gaussian_mixture.h"

namespace brenvolt::sra {
namespace {

// The bounds of a number of mixture components.
constexpr std::int64_t kCasesPerMixture = 2;

using Values = std::vector<double>;

// In the fixed order, which is that of the codes.
constexpr auto kCodes = [] {
  std::array<DistributionCode, kDistributionCount> codes{};
  for (std::size_t i = 0; i < codes.size(); ++i) codes[i] = static_cast<DistributionCode>(i);
  return codes;
}();

bool AllFinite(const Values& values) {
  return std::ranges::all_of(values, [](double value) { return std::isfinite(value); });
}

// A value that is not finite, or that no reader could tell from a failure.
EstimateResult Usable(EstimateResult estimate) {
  if (!estimate) return estimate;
  if (!AllFinite(estimate->values)) return brenvolt::Fault{EstimationFault::kNotFinite};
  if (IsNotSet(estimate->values.front())) return brenvolt::Fault{EstimationFault::kMeansNotSet};
  return estimate;
}

// Squares of errors overflow in units in which the values themselves do not.
void DropErrorsThatAreNotFinite(DistributionEstimate& estimate) {
  if (AllFinite(estimate.standardErrors) && AllFinite(estimate.covariance)) return;
  estimate.standardErrors.clear();
  estimate.covariance.clear();
}

DistributionFit Failed(DistributionCode code, double offset, brenvolt::Fault<EstimationFault> fault) {
  DistributionFit fit;
  fit.specification.code = code;
  fit.specification.offset = offset;
  fit.specification.values = {kNotSet};
  fit.fault = std::move(fault);
  return fit;
}

// The values at which the density is 0.
std::int64_t CountWithoutDensity(const DistributionSpecification& specification,
                                 std::span<const double> values) {
  constexpr std::size_t kBlock = 2048;
  const SpecifiedDistribution distribution(specification);
  std::array<double, kBlock> buffer;
  std::int64_t count = 0;
  for (std::size_t begin = 0; begin < values.size(); begin += kBlock) {
    const auto x = values.subspan(begin, std::min(kBlock, values.size() - begin));
    const std::span<double> logDensities(buffer.data(), x.size());
    distribution.LogDensity(x, logDensities);
    count += std::ranges::count(logDensities, -std::numeric_limits<double>::infinity());
  }
  return count;
}

DistributionFit RunStep(DistributionCode code, double offset, const EstimationInput& input) {
  const FloatingPointGuard guard;
  EstimateResult estimate = Usable(EntryOf(code).estimate(input));
  if (!estimate) return Failed(code, offset, std::move(estimate).Reason());
  DropErrorsThatAreNotFinite(*estimate);
  DistributionFit fit;
  fit.specification.code = code;
  fit.specification.offset = offset;
  fit.specification.values = std::move(estimate->values);
  fit.origin = estimate->origin;
  fit.standardErrors = std::move(estimate->standardErrors);
  fit.covariance = std::move(estimate->covariance);
  fit.estimatedParameters = estimate->estimatedParameters;
  const double logLikelihood = IsNotSet(estimate->logLikelihood)
                                   ? SpecifiedDistribution(fit.specification).LogLikelihood(input.sorted)
                                   : estimate->logLikelihood;
  if (std::isfinite(logLikelihood)) {
    fit.logLikelihood = logLikelihood;
  } else {
    fit.valuesWithoutDensity = CountWithoutDensity(fit.specification, input.sorted);
  }
  return fit;
}

// Of a Johnson fit by percentiles among the fits, the fault; about nothing.
std::optional<Fault> FaultOfPercentiles(std::span<const DistributionFit> fits) {
  for (const DistributionFit& fit : fits) {
    if (fit.specification.code != DistributionCode::kJohnson || !fit.fault) continue;
    if (fit.fault->identifier == EstimationFault::kTooFewValues)
      return Fault{FaultIdentifier::kTooFewForPercentiles, "", fit.fault->about};
    return Fault{FaultIdentifier::kPercentilesNotFitted};
  }
  return std::nullopt;
}

// The places of `codes` in the order in which they are best begun: those that take longest first,
// those that copy the values before those that do not.
std::vector<std::size_t> LongestFirst(std::span<const DistributionCode> codes) {
  const auto rank = [&](std::size_t i) {
    const EstimationCost cost = Facts(codes[i]).estimation;
    return std::pair(-cost.slowness, !cost.copiesSample);
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
  constexpr std::size_t kLargeSample = 500'000;  // values, so many that few copies may exist at a time
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
    if (isLarge && Facts(codes[i]).estimation.copiesSample) lock.lock();
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
  const double offset = HasOffset(code) ? specification.offsets[PlaceInKind(code)] : kNotSet;
  const Moments& moments = sample.moments;
  const double shift = IsNotSet(offset) ? 0 : offset;
  // A value without a logarithm rules the log-normal out, whatever its offset.
  if (code == DistributionCode::kLogNormal && IsNotSet(moments.logMean)) {
    return Failed(code, offset,
                  FaultAbout(EstimationFault::kUndefinedLogarithm, sample.values.front(), shift));
  }
  return RunStep(code, offset,
                 {.sorted = sample.values,
                  .offset = shift,
                  .mean = moments.mean,
                  .standardDeviation = moments.standardDeviation,
                  .skewness = moments.skewness,
                  .kurtosis = moments.kurtosis,
                  .components = AllowedMixtures(specification.mixtures, std::ssize(sample.values)),
                  .isByPercentiles = specification.johnsonByPercentiles,
                  .poll = poll});
}

DistributionFit EstimateDiscrete(DistributionCode code, const SortedSample& sample,
                                 const DiscreteSpecification& specification) {
  const auto trials = specification.useTrials ? std::optional(specification.trials) : std::nullopt;
  const Poll poll = [] {};
  return RunStep(code, kNotSet, {.sorted = sample.values, .trials = trials, .poll = poll});
}

Result<std::vector<DistributionFit>> FitContinuousDistributions(const SortedSample& sample,
                                                                const ContinuousSpecification& specification,
                                                                ChiSquareBinning binning, const Poll& poll) {
  std::vector<DistributionCode> codes;
  for (const DistributionCode code : FittedContinuous()) {
    if (specification.fit[PlaceInKind(code)]) codes.push_back(code);
  }
  std::vector<DistributionFit> fits = FitAll(codes, sample.values, binning, poll, [&](DistributionCode code) {
    return EstimateContinuous(code, sample, specification, poll);
  });
  if (specification.johnsonByPercentiles) {
    if (auto fault = FaultOfPercentiles(fits)) return *std::move(fault);
  }
  return fits;
}

std::vector<DistributionFit> FitDiscreteDistributions(const SortedSample& sample,
                                                      const DiscreteSpecification& specification,
                                                      ChiSquareBinning binning, const Poll& poll) {
  std::vector<DistributionCode> codes;
  for (const DistributionCode code : FittedDiscrete()) {
    if (specification.fit[PlaceInKind(code)]) codes.push_back(code);
  }
  return FitAll(codes, sample.values, binning, poll,
                [&](DistributionCode code) { return EstimateDiscrete(code, sample, specification); });
}

std::int32_t HighestMixtures(std::int64_t validCases) {
  const auto most =
      static_cast<std::int32_t>(std::min<std::int64_t>(validCases / kCasesPerMixture, kMostMixtures));
  return std::max(most, kFewestMixtures);
}

std::int32_t AllowedMixtures(std::int32_t asked, std::int64_t validCases) {
  return std::clamp(asked, kFewestMixtures, HighestMixtures(validCases));
}

}  // namespace brenvolt::sra
