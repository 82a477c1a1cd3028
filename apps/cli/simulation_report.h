// What a simulation reports: a summary of the simulated variables and, if there is correlation, the
// correlations asked for beside those reached.
#pragma once

#include <string>

#include "host/jobs/simulation_results.h"

namespace brenvolt::cli {

std::string SummaryText(const ResultTable& summary);

// Pairs that a table shows at most; a program gets all.
inline constexpr std::size_t kMostPairsShown = 45;

// A line for each pair; of too many those whose Spearman correlation is farthest from that of normal scores with the
// correlation used.
std::string CorrelationsText(const SimulationResults& results);

}  // namespace brenvolt::cli
