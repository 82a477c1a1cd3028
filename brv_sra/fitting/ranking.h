// The order of a variable's fitted distributions by the chosen test.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "brv_sra/fitting/fit_state.h"

namespace brenvolt::sra {

// The key of a fit that failed or has no statistic for the criterion.
inline constexpr double kInvalidRankingKey = 1000.0;

// Indices into `fits`, best first: ascending by the criterion's statistic, not its p-value; equal keys in the
// order of `fits`. A fit that failed or has no statistic takes kInvalidRankingKey. No Kolmogorov-Smirnov
// statistic reaches that key; a chi-square or Anderson-Darling statistic of a fit far from much data may
// exceed it and then comes after the failed fits.
std::vector<std::size_t> RankFits(std::span<const DistributionFit> fits, RankingCriterion criterion);

// The fit to save unless the person chooses another: the best-ranked one that is valid. Nothing if none
// is.
std::optional<std::size_t> DefaultFit(std::span<const DistributionFit> fits,
                                      std::span<const std::size_t> ranked);

}  // namespace brenvolt::sra
