// Estimation of the checked distributions of one variable in their fixed order, each followed by its test.
#pragma once

#include <span>
#include <vector>

#include "brv_sra/fitting/fit_state.h"
#include "host/controls/progress_bar.h"

namespace brenvolt::sra {

// The distributions that are fitted, in the fixed order.
std::span<const DistributionCode> FittedContinuous();
std::span<const DistributionCode> FittedDiscrete();

// Fits the checked distributions to sorted values (ascending, finite). A distribution whose estimate fails
// has kNotSet as its first value and in its tests; the others are fitted all the same. Between two
// distributions the bar looks for cancellation: UserCancelled.
std::vector<DistributionFit> FitContinuousDistributions(std::span<const double> sorted,
                                                        const Moments& moments,
                                                        const ContinuousSpecification& specification,
                                                        CKroProgressBar& progress);
std::vector<DistributionFit> FitDiscreteDistributions(std::span<const double> sorted,
                                                      const DiscreteSpecification& specification,
                                                      CKroProgressBar& progress);

// The mean of counts. Statuses: 0 success, 2 no values, 3 a value that is negative or not a whole number, 5
// no value accepted or a mean of 0, which no Poisson distribution has.
int EstimatePoissonMean(std::span<const double> data, double& mean);

}  // namespace brenvolt::sra
