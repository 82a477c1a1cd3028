// Estimators of distribution parameters from one sample (and one from the moments of a sample). Each returns
// 0 for success and a non-zero code, also stored in `error`, for failure; on failure the parameter slots hold
// kNotSet. Nothing depends on the units of the data: scaled or shifted data give the scaled or shifted fit.
// Where maximum likelihood needs a search, a sample of more than 20,000 values (for mixtures 5,000) is
// searched thinned to some thousand evenly placed ones, and the maximum found is solved for on all values.
// `flag` arguments are reserved and must be 0.
//
// Estimators that search take a `poll`, which they call between passes over the data, thus every fraction of
// a second even for many millions of values. What it throws ends the estimate; an empty one is not called.
#pragma once

#include <cstdint>
#include <functional>
#include <span>

namespace brenvolt {

using EstimationPoll = std::function<void()>;

enum class EstimationError : std::int32_t {
  kNone = 0,
  kTooFewValues = 1,         // fewer values than the distribution needs; two, unless stated otherwise
  kValueOutsideSupport = 2,  // a value at or below the offset
  kNoSpread = 3,             // all values equal, or so many that the fit degenerates to a point
  kNotFinite = 4,            // a value is NaN or infinite, or a result would be
  kNoMaximum = 5,       // the likelihood grows towards an end of the parameters instead of having a maximum
  kNoSolution = 6,      // no member of the family has the moments or percentiles of the sample
  kInvalidArgument = 7  // a number of components or a spacing of percentiles that cannot be
};

// Normal: parameters = {mean, standard deviation}. The standard deviation is the maximum-likelihood one, with
// divisor n.
std::int32_t FitNormalDistribution(std::int32_t flag, std::span<const double> data,
                                   std::span<double, 2> parameters, EstimationError& error);

// Log Normal: parameters = {mean, standard deviation} of ln(x - offset), divisor n.
std::int32_t FitLognormalDistribution(std::int32_t flag, std::span<const double> data, double offset,
                                      std::span<double, 2> parameters, EstimationError& error);

// Half Normal: parameters = {scale, standard error of the scale, greatest log-likelihood}. The scale is the
// root of the mean square of x - offset, in closed form; its standard error is scale / sqrt(2 n). A value
// equal to the offset is within the support. kNoSpread when all are.
std::int32_t FitHalfNormalDistribution(std::int32_t flag, std::span<const double> data, double offset,
                                       std::span<double, 3> parameters, EstimationError& error);

// Rayleigh: parameters = {scale, standard error of the scale, greatest log-likelihood}. The scale is the root
// of half the mean square of x - offset, in closed form; its standard error is scale / sqrt(4 n). The density
// is zero at the offset, so that a value there is outside the support.
std::int32_t FitRayleighDistribution(std::int32_t flag, std::span<const double> data, double offset,
                                     std::span<double, 3> parameters, EstimationError& error);

// Folded Normal: parameters = {location >= 0, scale > 0} of the normal variable whose magnitude is x -
// offset, by maximum likelihood (Leone, Nelson & Nottingham 1961; Tsagris, Beneki & Hassani 2014). A value
// equal to the offset is within the support. All roots of the likelihood equation are bracketed and solved to
// the last bits; the one of the greatest likelihood is taken.
std::int32_t FitFoldedNormalDistribution(std::int32_t flag, std::span<const double> data, double offset,
                                         std::span<double, 2> parameters, EstimationError& error,
                                         const EstimationPoll& poll = {});

// Generalized extreme value: parameters = {location, scale, shape}, shape > 0 for a heavy upper tail. Maximum
// likelihood for shape > -1, by Newton's method with exact second derivatives from several starts (Prescott &
// Walden 1980 for the likelihood, Hosking 1985 for the iteration). Converged when the gain that the next step
// promises is below 1e-15 per value. `covariance` receives the inverse of the observed information, row by
// row in the order of the parameters. The likelihood has no global maximum: it grows without bound for shape
// < -1 and for shape towards infinity (Smith 1985). The greatest local one is the estimate; where there is
// none, kNoMaximum. Needs three values.
std::int32_t GEV_MLE(std::span<const double> data, std::span<double, 3> parameters,
                     std::span<double, 9> covariance, EstimationError& error,
                     const EstimationPoll& poll = {});

// Generalized extreme value from the probability-weighted moments of Hosking, Wallis & Wood (1985), unbiased
// forms, their equation (14) for the shape solved exactly instead of by the approximation. Needs three
// values. kNoSolution when the skewness of the sample is at its end (shape 1 or minus infinity).
std::int32_t GEV_ProbWeightMoments(std::span<const double> data, std::span<double, 3> parameters,
                                   EstimationError& error);

// Generalized Pareto: parameters = {threshold, scale, shape}, the threshold as given, shape > 0 for a heavy
// upper tail. A value equal to the threshold is within the support. Maximum likelihood for shape > -1 after
// Grimshaw (1993): the likelihood reduced to shape / scale; its stationary points are bracketed on a grid and
// solved to the last bits. The greatest local maximum is the estimate; kNoMaximum if there is none, as the
// likelihood grows without bound for shape < -1.
std::int32_t FitGPDMaximumLikelihood(std::span<const double> data, double threshold,
                                     std::span<double, 3> parameters, EstimationError& error,
                                     const EstimationPoll& poll = {});

// Generalized Pareto from the probability-weighted moments of Hosking & Wallis (1987), unbiased forms.
std::int32_t FitGPDProbabilityWeightedMoments(std::span<const double> data, double threshold,
                                              std::span<double, 3> parameters, EstimationError& error);

// Gaussian mixture: `components` has room for 3 numberOfComponents values and receives {proportion, mean,
// standard deviation} per component, means ascending. numberOfComponents from 1 to n / 2; it returns the
// number fitted. Maximum likelihood by expectation-maximisation (Dempster, Laird & Rubin 1977), accelerated
// after Varadhan & Roland (2008), from several starts that depend on the data alone; the greatest likelihood
// wins; a run whose pace promises none greater than that of a run before is given up. A run has converged
// when a step of Newton's method, tried after 15, 30, 60, … cycles, moves no logarithm of a proportion or
// standard deviation and no mean, in standard deviations, by 1e-7 or more (at most 12 steps, none of which
// may lose likelihood), or when three cycles in a row gain less than 1e-12 in the log-likelihood per value;
// after 1000 cycles (a sample that was searched thinned: 50,000,000 / n, 20 at least) it stands as it is. A
// run has collapsed, and is dropped, when a component comes to hold fewer than two values or its standard
// deviation falls below 1e-6 of that of the data (the likelihood is unbounded there); so is a run that ends
// with two components in one place. kNoMaximum when none is left. A component of a few values that thinning a
// large sample leaves out is sought in its tails only.
std::int32_t FitGaussianMixture(std::span<const double> data, std::span<double> components,
                                std::int32_t& numberOfComponents, EstimationError& error,
                                const EstimationPoll& poll = {});

// The Johnson families, by the codes of their results: z = gamma + delta g((x - xi) / lambda) is standard
// normal, with g = ln (SL), asinh (SU), logit (SB), identity (SN).
enum class JohnsonFamily : std::int32_t { kLognormal = 1, kUnbounded = 2, kBounded = 3, kNormal = 4 };

// Johnson: parameters = {family, gamma, delta > 0, lambda > 0, xi}; lambda is 1 for SL and SN. The member
// with the given mean, standard deviation, skewness and excess kurtosis, after Hill, Hill & Holder (1976): SU
// by the bracketed equation of Tuenter (2001), SB by two nested bracketed equations over moments by
// quadrature, each solved to 46 bits. A kurtosis within 1e-6 (relative) of the lognormal line gives SL when
// the skewness is positive; its mirror image is not a member with lambda > 0, so the SU next to it is taken.
// kNoSolution when no distribution has the moments, or only one that is nearly two points (an SB member
// with delta below 0.002).
std::int32_t FitJohnsonFromMoments(double mean, double standardDeviation, double skewness, double kurtosis,
                                   std::span<double, 5> parameters, EstimationError& error);

// Johnson from four percentiles, at -3z, -z, z and 3z of the standard normal scale, after Slifker & Shapiro
// (1980). `sortedData` ascends. spacing > 0 is z itself; otherwise z is chosen from a grid between 0.25
// and 1.25 as that of the greatest likelihood (a choice by the data, as in Chou, Polansky & Mason 1998).
// Needs eight values. kNoSpread when ties make two of the percentiles equal; `flag` is 1.
std::int32_t FitJohnsonFromPercentiles(std::span<const double> sortedData, std::span<double, 5> parameters,
                                       double spacing, std::int32_t flag, EstimationError& error);

}  // namespace brenvolt
