// Confidence intervals by the profile likelihood (Coles 2001, An Introduction to Statistical Modeling of Extreme Values, section
// 2.6.6; Lawless 2003, Statistical Models and Methods for Lifetime Data, section 2.2.3): of a function of a fit's values they hold
// what the likelihood does not refuse. That is so where the greatest likelihood of all values that give it lies within half the
// chi-square quantile of one degree of freedom below the greatest of all.
#pragma once

#include <functional>

#include "host/statistics/fit_intervals.h"

namespace brenvolt {

// A number that follows from a fit, smooth in its values.
using FitFunction = std::function<double(const FittedValues&)>;

// The interval of what the function gives. Not set without a covariance, which the search takes for its unit, and where one side
// has no end or the likelihood no maximum near the fit.
ConfidenceInterval ProfileInterval(const FittedValues& fit, const LogLikelihood& likelihood,
                                   const FitFunction& function, double confidence);

}  // namespace brenvolt
