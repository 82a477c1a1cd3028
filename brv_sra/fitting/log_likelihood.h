// The log-likelihood of a fitted distribution over a whole sample.
#pragma once

#include <span>

#include "brv_sra/distributions/specification.h"

namespace brenvolt::sra {

// The sum of the log-densities (discrete types: log-probabilities) at `sorted` (ascending, finite), by array
// functions where the type's formula allows it; equal neighbours are evaluated once otherwise. `values` are
// valid and in catalogue order; an offset that is not set counts as 0. -infinity or NaN when a value lies
// outside the support.
double LogLikelihood(DistributionCode code, std::span<const double> values, double offset,
                     std::span<const double> sorted);

}  // namespace brenvolt::sra
