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
// kInvalidArgument or kTooManyComponents. Maximum likelihood from several starts that depend on the data alone; the
// greatest likelihood wins. A run takes some steps of expectation and maximisation (Dempster, Laird & Rubin 1977), then
// those of Newton's method with the observed information (Louis 1982). A sample of more than 512 values is searched thinned to
// 512, and the maxima found there are climbed from again; one of more than 2,500 is searched so among 2,048. A run has
// collapsed, and is dropped, when a component comes to hold fewer than two values or its standard
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
