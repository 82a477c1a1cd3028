// Maximum-likelihood estimation of the Weibull distribution by Newton's method on the profile likelihood of
// the shape.
#pragma once

#include <span>

#include "host/base/almost_equal.h"
#include "host/numeric/estimation/estimation_fault.h"

namespace brenvolt {

struct WeibullEstimate {
  double shape = kNotSet;
  double scale = kNotSet;
  double shapeStandardError = kNotSet;
  double scaleStandardError = kNotSet;
  double covariance = kNotSet;  // of shape and scale
};

// Fits shape and scale to data - offset, which are divided by the greatest of them, so that no power overflows
// or vanishes in any unit. `tolerance` (> 0) ends the iteration once a Newton step of the shape is smaller, and small
// against the shape.
// kValueAtOffset, kValueBelowOffset, kNotFinite; kNoConvergence after 100 steps or where the result is not
// positive, kSumVanishes and kPowerOverflows where steps lead astray.
//
// The likelihood equation and the information terms are those of Cohen (1965), Technometrics 7, 579-588; the
// starting value uses the variance of the logarithms, pi^2 / (6 shape^2) (Menon 1963).
EstimationResult<WeibullEstimate> EstimateWeibull(std::span<const double> data, double offset,
                                                  double tolerance);

}  // namespace brenvolt
