// Estimation of the checked distributions of one variable in their fixed order, each followed by its tests.
//
// An estimate that fails makes only its own distribution invalid: it has a fault, and the first value, the
// log-likelihood and every test are kNotSet. So does a value that is not finite, and a first value that happens to be
// kNotSet, which no reader could tell from a failure; standard errors or covariances that are not finite are
// left out alone. Each estimate runs under a FloatingPointGuard. All functions may be called from several
// threads at once.
#pragma once

#include <functional>
#include <span>
#include <vector>

#include "brv_sra/base/fault.h"
#include "brv_sra/fitting/fit_state.h"

namespace brenvolt::sra {

// The distributions that are fitted, in the fixed order.
std::span<const DistributionCode> FittedContinuous();
std::span<const DistributionCode> FittedDiscrete();

// A variable's values, sorted ascending and finite, at least one, with their moments.
struct SortedSample {
  std::span<const double> values;
  Moments moments;
};

// Called between steps that take long, from several threads at once; throws to end them.
using Poll = std::function<void()>;

// The estimate of one distribution: values in catalogue order, log-likelihood, and standard errors with
// covariance where the distribution has them; no tests. Where values have density 0, as the extremes have
// under every triangular fit, they are counted and there is no log-likelihood.
DistributionFit EstimateContinuous(DistributionCode code, const SortedSample& sample,
                                   const ContinuousSpecification& specification, const Poll& poll);
DistributionFit EstimateDiscrete(DistributionCode code, const SortedSample& sample,
                                 const DiscreteSpecification& specification);

// Estimates and tests the checked distributions, several at a time; the results do not depend on how many.
// Memory: a copy of the values for each one at work; one copy for large samples. A Johnson fit that was asked for
// by percentiles ends the fit of the variable where it fails: kPercentilesNotFitted or kTooFewForPercentiles.
Result<std::vector<DistributionFit>> FitContinuousDistributions(const SortedSample& sample,
                                                                const ContinuousSpecification& specification,
                                                                ChiSquareBinning binning, const Poll& poll);
std::vector<DistributionFit> FitDiscreteDistributions(const SortedSample& sample,
                                                      const DiscreteSpecification& specification,
                                                      ChiSquareBinning binning, const Poll& poll);

// The greatest number of mixture components: half the valid cases, but within the bounds of the distribution.
std::int32_t HighestMixtures(std::int64_t validCases);
// The number that is fitted where `asked` were asked for.
std::int32_t AllowedMixtures(std::int32_t asked, std::int64_t validCases);

}  // namespace brenvolt::sra
