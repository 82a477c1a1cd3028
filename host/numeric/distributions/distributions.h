// Density, distribution function and quantile of the sixteen distribution types, one vocabulary for all.
//
// Every type offers, as scalars and (but for the moments) over arrays, which give the same bits:
//   Density(x), LogDensity(x), Cdf(x), Complement(x) = 1 - Cdf(x) without cancellation,
//   Quantile(p), ComplementQuantile(q): the x with Complement(x) = q,
//   Mean(), Variance(): infinite where the integral is or a double cannot hold it, never NaN.
// Discrete types: Density is the probability of x, Quantile the smallest value whose probability reaches p.
// `threshold` shifts the support: a type with threshold t at x is the type without one at x - t.
//
// NaN in, NaN out. p = 0 and p = 1 give the ends of the support. Invalid parameters give kInvalidProbability
// from all but the quantiles, and kInvalidQuantile from these, as does a p outside [0, 1].
// Accuracy: 1e-13 relative in the body, 1e-10 in the tails down to probabilities of 1e-300.
#pragma once

#include "host/numeric/distributions/discrete_distributions.h"
#include "host/numeric/distributions/extreme_distributions.h"
#include "host/numeric/distributions/normal_distributions.h"
#include "host/numeric/vector/distribution_values.h"
