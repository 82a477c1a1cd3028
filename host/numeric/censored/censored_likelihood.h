// The log-likelihood of distributions over censored values, with its gradient and Hessian in closed form.
//
// A value x reduces to a standard normal or extreme value w(x), of which an exact value contributes the logarithm of density
// times |dw/dx|, any other that of the probability of what is known of it (Lawless 2003, sections 2.2 and 5.2; for the
// extreme values Prescott & Walden 1983). The derivatives follow by the chain rule, so that none steps past the end of a
// support.
#pragma once

#include <span>

#include "host/numeric/censored/censored_sample.h"
#include "host/numeric/censored/second_order.h"
#include "host/numeric/distributions/common/distribution_facts.h"

namespace brenvolt {

// Derivatives are by the parameters in their order, those that are positive by their logarithm. The value is -infinity where
// the parameters cannot have given the values. For the distributions of CensoredDistributions().
SecondOrder CensoredLogLikelihood(DistributionCode code, std::span<const double> values,
                                  const CensoredSample& sample, double offset);

}  // namespace brenvolt
