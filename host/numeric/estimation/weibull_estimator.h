// Maximum-likelihood estimation of the Weibull distribution by Newton's method on the profile likelihood of
// the shape.
#pragma once

#include <cstdint>
#include <span>

#include "host/base/almost_equal.h"

namespace brenvolt {

enum class WeibullStatus : std::int32_t {
  kSuccess = 0,
  kValueAtOffset = 1,  // a value equals the offset
  kNoConvergence = 2,  // 100 steps were not enough, or the result is not positive
  kSumVanishes = 3,    // the sum of powers is too small to divide by
  kOverflow = 4        // a power would overflow
};

struct WeibullEstimate {
  double shape = kNotSet;
  double scale = kNotSet;
  double shapeStandardError = kNotSet;
  double scaleStandardError = kNotSet;
  double covariance = kNotSet;  // of shape and scale
  WeibullStatus status = WeibullStatus::kNoConvergence;
};

// Fits shape and scale to data - offset. `tolerance` (> 0) ends the iteration once a Newton step of the shape
// is smaller. A value below the offset has no logarithm: the iteration then cannot converge and the fit
// fails.
//
// The likelihood equation and the information terms are those of Cohen (1965), Technometrics 7, 579-588; the
// starting value uses the variance of the logarithms, pi^2 / (6 shape^2) (Menon 1963).
WeibullEstimate EstimateWeibull(std::span<const double> data, double offset, double tolerance);

}  // namespace brenvolt
