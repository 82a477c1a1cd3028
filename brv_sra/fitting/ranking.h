// The order of a variable's fitted distributions by the chosen test or information criterion.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "brv_sra/fitting/fit_state.h"

namespace brenvolt::sra {

// The key of a fit that failed or has no statistic for the criterion.
inline constexpr double kInvalidRankingKey = 1000.0;

// By what fits are ranked, and of how many values they are.
struct Ranking {
  RankingCriterion criterion = RankingCriterion::kKolmogorovSmirnov;
  std::int64_t count = 0;
  bool contradictedLast = false;
};

// Whether contradicted fits come last: where that is asked for, and always by chi-square and the information criteria.
bool RanksContradictedLast(const Ranking& ranking);

// Indices into `fits`, best first: ascending by the criterion's statistic, not its p-value; equal keys in the
// order of `fits`.
//
// Where contradicted fits come last, the order is: fits with a statistic, those without, those that the data
// contradict, those that failed. Else a fit that failed or has no statistic takes kInvalidRankingKey. No
// Kolmogorov-Smirnov statistic reaches that key; an Anderson-Darling statistic of a fit far from much data may exceed it
// and then comes after the failed fits.
std::vector<std::size_t> RankFits(std::span<const DistributionFit> fits, const Ranking& ranking);

// The fit to save unless the person chooses another: the best-ranked one that is valid. Nothing if none
// is.
std::optional<std::size_t> DefaultFit(std::span<const DistributionFit> fits,
                                      std::span<const std::size_t> ranked);

}  // namespace brenvolt::sra
