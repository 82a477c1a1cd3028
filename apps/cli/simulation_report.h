// What a simulation reports: a summary of the simulated variables and, where there is correlation, the
// correlations asked for beside those reached.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "host/analysis/result_table.h"

namespace brenvolt::cli {

std::string SummaryText(const ResultTable& summary);
// One object per variable.
nlohmann::ordered_json SummaryJson(const ResultTable& summary);

// Pairs that a table shows at most; a program gets all.
inline constexpr std::size_t kMostPairsShown = 45;

// `pairs` is the analysis's table of pairs of variables, in the order (1, 2), (1, 3), …, (2, 3), ….
// The text has a line for each pair; of too many it has those whose Spearman correlation is
// farthest from that of normal scores with the correlation used.
std::string CorrelationsText(const ResultTable& pairs);
// One object per pair; `output` has the variables' names.
nlohmann::ordered_json CorrelationsJson(const ResultTable& pairs, const Spreadsheet& output);
// What a repair did to the correlations asked for: the smallest eigenvalue that they had, and the one that
// changed most.
nlohmann::ordered_json RepairJson(const ResultTable& pairs, const Spreadsheet& output);
// The names and the rows of a correlation matrix.
nlohmann::ordered_json MatrixJson(const Spreadsheet& matrix);

}  // namespace brenvolt::cli
