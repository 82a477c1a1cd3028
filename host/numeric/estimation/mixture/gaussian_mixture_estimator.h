// Maximum-likelihood estimation of mixtures of normal distributions.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "host/numeric/estimation/estimators.h"

namespace brenvolt {

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

}  // namespace brenvolt
