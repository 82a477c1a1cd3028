// Estimation of the Johnson distributions.
#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "host/numeric/estimation/estimators.h"

namespace brenvolt {

// The Johnson families, by the codes of their results: z = gamma + delta g((x - xi) / lambda) is standard
// normal, with g = ln (SL), asinh (SU), logit (SB), identity (SN).
enum class JohnsonFamily : std::int32_t { kLognormal = 1, kUnbounded = 2, kBounded = 3, kNormal = 4 };

// {family, gamma, delta > 0, lambda > 0, xi}; lambda is 1 for SL and SN.
using JohnsonEstimate = std::array<double, 5>;

// The member with the given mean, standard deviation, skewness and excess kurtosis, after Hill, Hill & Holder
// (1976): SU by the bracketed equation of Tuenter (2001), SB by two nested bracketed equations over moments by
// quadrature, each solved to 46 bits. A kurtosis within 1e-6 (relative) of the lognormal line gives SL when
// the skewness is positive; its mirror image is not a member with lambda > 0, so the SU next to it is taken.
// kNoSolution, about the skewness with the kurtosis as its detail, when no distribution has the moments, or
// only one that is nearly two points (an SB member with delta below 0.002).
EstimationResult<JohnsonEstimate> EstimateJohnsonByMoments(double mean, double standardDeviation,
                                                           double skewness, double kurtosis);

// From four percentiles, at -3z, -z, z and 3z of the standard normal scale, after Slifker & Shapiro (1980).
// `sorted` ascends. spacing > 0 is z itself; without, z is chosen from a grid between 0.25 and 1.25 as that of
// the greatest likelihood (a choice by the data, as in Chou, Polansky & Mason 1998). Needs eight values.
// kEqualPercentiles; kInvalidArgument for a spacing that reaches beyond the values.
EstimationResult<JohnsonEstimate> EstimateJohnsonByPercentiles(std::span<const double> sorted,
                                                               double spacing = -1.0);

}  // namespace brenvolt
