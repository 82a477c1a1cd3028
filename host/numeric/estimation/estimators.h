// Estimators of distribution parameters from one sample (and one from the moments of a sample). Nothing
// depends on the units of the data: scaled or shifted data give the scaled or shifted fit.
// Where maximum likelihood needs a search, a sample of more than 20,000 values (for mixtures 5,000) is
// searched thinned to some thousand evenly placed ones, and the maximum found is solved for on all values.
//
// Estimators that search take a `poll`, which they call between passes over the data, thus every fraction of
// a second even for many millions of values. What it throws ends the estimate; an empty one is not called.
//
// Each needs two values, unless stated otherwise, and returns kTooFewValues, kNotFinite or kNoSpread where the
// sample cannot be fitted at all; those with an offset kValueBelowOffset, too.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <vector>

#include "host/base/almost_equal.h"
#include "host/numeric/estimation/estimation_fault.h"

namespace brenvolt {

using EstimationPoll = std::function<void()>;

// The standard deviation is the maximum-likelihood one, with divisor n.
struct NormalEstimate {
  double mean = kNotSet;
  double standardDeviation = kNotSet;
};
EstimationResult<NormalEstimate> EstimateNormal(std::span<const double> data);

// Of ln(x - offset), divisor n. kValueAtOffset.
EstimationResult<NormalEstimate> EstimateLogNormal(std::span<const double> data, double offset);

struct ScaleEstimate {
  double scale = kNotSet;
  double standardError = kNotSet;
  double logLikelihood = kNotSet;  // the greatest
};

// The scale is the root of the mean square of x - offset, in closed form; its standard error is scale / sqrt(2
// n). A value equal to the offset is within the support. kNoSpread when all are.
EstimationResult<ScaleEstimate> EstimateHalfNormal(std::span<const double> data, double offset);

// The scale is the root of half the mean square of x - offset, in closed form; its standard error is scale /
// sqrt(4 n). The density is zero at the offset: kValueAtOffset.
EstimationResult<ScaleEstimate> EstimateRayleigh(std::span<const double> data, double offset);

// Location >= 0 and scale > 0 of the normal variable whose magnitude is x - offset, by maximum likelihood
// (Leone, Nelson & Nottingham 1961; Tsagris, Beneki & Hassani 2014). A value equal to the offset is within the
// support. All roots of the likelihood equation are bracketed and solved to the last bits; the one of the
// greatest likelihood is taken.
struct FoldedNormalEstimate {
  double location = kNotSet;
  double scale = kNotSet;
};
EstimationResult<FoldedNormalEstimate> EstimateFoldedNormal(std::span<const double> data, double offset,
                                                            const EstimationPoll& poll = {});

struct ExtremeValueEstimate {
  std::array<double, 3> parameters{};  // location, scale, shape > 0 for a heavy upper tail
  std::vector<double> covariance;      // row by row, or none
};

// Maximum likelihood for shape > -1, by Newton's method with exact second derivatives from several starts
// (Prescott & Walden 1980 for the likelihood, Hosking 1985 for the iteration). Converged when the gain that the
// next step promises is below 1e-15 per value. The covariance is the inverse of the observed information. The
// likelihood has no global maximum: it grows without bound for shape < -1 and for shape towards infinity (Smith
// 1985). The greatest local one is the estimate; where there is none, kNoMaximum. Needs three values.
EstimationResult<ExtremeValueEstimate> EstimateExtremeValue(std::span<const double> data,
                                                            const EstimationPoll& poll = {});

// From the probability-weighted moments of Hosking, Wallis & Wood (1985), unbiased forms, their equation (14)
// for the shape solved exactly instead of by the approximation. Needs three values. kNoSolution when the
// skewness of the sample is at its end (shape 1 or minus infinity).
EstimationResult<ExtremeValueEstimate> EstimateExtremeValueByMoments(std::span<const double> data);

// Of x - threshold; shape > 0 for a heavy upper tail. A value equal to the threshold is within the support.
struct ParetoEstimate {
  double scale = kNotSet;
  double shape = kNotSet;
};

// Maximum likelihood for shape > -1 after Grimshaw (1993): the likelihood reduced to shape / scale; its
// stationary points are bracketed on a grid and solved to the last bits. The greatest local maximum is the
// estimate; kNoMaximum if there is none, as the likelihood grows without bound for shape < -1.
EstimationResult<ParetoEstimate> EstimatePareto(std::span<const double> data, double threshold,
                                                const EstimationPoll& poll = {});

// From the probability-weighted moments of Hosking & Wallis (1987), unbiased forms. kNoSolution.
EstimationResult<ParetoEstimate> EstimateParetoByMoments(std::span<const double> data, double threshold);

// {proportion, mean, standard deviation} per component, means ascending; from 1 to n / 2 components, otherwise
// kInvalidArgument or kTooManyComponents. Maximum likelihood by expectation-maximisation (Dempster, Laird &
// Rubin 1977), accelerated after Varadhan & Roland (2008), from several starts that depend on the data alone;
// the greatest likelihood wins; a run whose pace promises none greater than that of a run before is given up. A
// run has converged when a step of Newton's method, tried after 15, 30, 60, … cycles, moves no logarithm of a
// proportion or standard deviation and no mean, in standard deviations, by 1e-7 or more (at most 12 steps, none
// of which may lose likelihood), or when three cycles in a row gain less than 1e-12 in the log-likelihood per
// value; after 1000 cycles (a sample that was searched thinned: 50,000,000 / n, 20 at least) it stands as it
// is. A run has collapsed, and is dropped, when a component comes to hold fewer than two values or its standard
// deviation falls below 1e-6 of that of the data (the likelihood is unbounded there); so is a run that ends
// with two components in one place. kNoMaximum when none is left. A component of a few values that thinning a
// large sample leaves out is sought in its tails only.
EstimationResult<std::vector<double>> EstimateGaussianMixture(std::span<const double> data,
                                                              std::int32_t components,
                                                              const EstimationPoll& poll = {});

// The place of the component that describes some close values instead of a part of the distribution, if there is
// one: it stands for fewer than 10 of `count` values, within a tenth of the standard deviation of the widest
// component. Of several, the narrowest. The likelihood has a maximum beside every few values that lie close together,
// by chance as well (McLachlan & Peel 2000, section 3.10).
std::optional<std::size_t> NearSpike(std::span<const double> mixture, double count);

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
