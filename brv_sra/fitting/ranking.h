// The order of a variable's fitted distributions by the chosen test.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "brv_sra/fitting/fit_state.h"

namespace brenvolt::sra {

// Indices into `fits`, best first: ascending by the criterion's statistic, equal statistics in the order of
// `fits`, fits that failed or have no statistic last.
std::vector<std::size_t> RankFits(std::span<const DistributionFit> fits, RankingCriterion criterion);

// The title of a ranked table: "Ranked by: Kolmogorov-Smirnov".
std::string RankingTitle(RankingCriterion criterion);

}  // namespace brenvolt::sra
