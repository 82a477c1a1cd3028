// Maximum likelihood of distributions over censored values (Lawless 2003, Statistical Models and Methods for Lifetime
// Data, 2nd ed., section 2.2): an exact value contributes its density, any other the probability of what is known of it.
//
// Newton's method on the logarithms of positive parameters, with the derivatives of censored_likelihood.h. An
// estimate is given only where the likelihood is at its maximum: the gradient, in standard errors of the parameters, is
// below 1e-6, and the information is positive definite.
#pragma once

#include <span>

#include "host/numeric/censored/censored_sample.h"
#include "host/numeric/distributions/common/distribution_facts.h"
#include "host/numeric/estimation/distribution_estimate.h"

namespace brenvolt {

// Those that can be fitted to censored values, in the order of their codes.
std::span<const DistributionCode> CensoredDistributions();

struct CensoredEstimate {
  DistributionEstimate estimate;  // with the covariance by the observed information
  int iterations = 0;
  double gradient = 0;  // the length of the gradient in standard errors of the parameters
};
// kTooFewValues below two values, kNoMaximum where the values leave the likelihood without one, as do values that are all
// right censored; kNoConvergence if Newton's method does not end.
EstimationResult<CensoredEstimate> EstimateCensored(DistributionCode code, const CensoredSample& sample,
                                                    double offset);

}  // namespace brenvolt
