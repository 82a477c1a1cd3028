// Mixtures of normal distributions, one component at least; the proportions add up to 1 within
// kTotalTolerance and count relative to their sum. The quantile is a safeguarded iteration on the smaller
// tail and always ends with a value. Between components that lie far apart the distribution function is flat:
// there the quantile is one of many x of the same probability.
#pragma once

#include <cstdint>

#include "host/numeric/distributions/common/distribution.h"

namespace brenvolt {

struct GaussianMixture {
  static constexpr DistributionFacts kFacts{
      .code = DistributionCode::kGaussianMixture,
      .name = "GaussianMixture",
      .shortName = "mixture",
      .isUserDefined = true,
      .parameters = {{{"proportion", ParameterRange::kProportion, ParameterUnit::kNone},
                      {"mean", ParameterRange::kFinite},
                      {"standard deviation", ParameterRange::kPositive}}},
      .estimation = {.copiesSample = true, .slowness = 5}};
};

// Fits and simulations take as many components.
inline constexpr std::int32_t kFewestMixtures = 2;
inline constexpr std::int32_t kMostMixtures = 20;

extern template class Distribution<GaussianMixture>;

}  // namespace brenvolt
