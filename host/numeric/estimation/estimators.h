// What all estimators of distribution parameters from one sample (and one from the moments of a sample) promise. Nothing
// depends on the units of the data: scaled or shifted data give the scaled or shifted fit.
// Where maximum likelihood needs a search, a sample of more than 20,000 values (for mixtures 5,000) is
// searched thinned to some thousand evenly placed ones, and the maximum found is solved for on all values.
//
// Estimators that search take a `poll`, which they call between passes over the data, thus every fraction of
// a second even for many millions of values. What it throws ends the estimate; an empty one is not called.
//
// Each needs two values, unless stated otherwise, and returns kTooFewValues, kNotFinite or kNoSpread where the
// sample cannot be fitted at all; those with an offset also kValueBelowOffset.
#pragma once

#include <functional>

#include "host/numeric/estimation/estimation_fault.h"

namespace brenvolt {

using EstimationPoll = std::function<void()>;

}  // namespace brenvolt
