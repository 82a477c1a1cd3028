// Estimation of the normal distribution by its moments, which have the maximum likelihood.
#pragma once

#include <span>

#include "host/base/almost_equal.h"
#include "host/numeric/estimation/estimation_fault.h"

namespace brenvolt {

// The standard deviation is the maximum-likelihood one, with divisor n.
struct NormalEstimate {
  double mean = kNotSet;
  double standardDeviation = kNotSet;
};
EstimationResult<NormalEstimate> EstimateNormal(std::span<const double> data);

}  // namespace brenvolt
