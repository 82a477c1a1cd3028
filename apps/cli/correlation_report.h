// What a simulation with correlation reports: the correlations asked for beside those reached.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "host/tables/spreadsheet.h"

namespace brenvolt::cli {

// Pairs that a table shows at most; a program gets all.
inline constexpr std::size_t kMostPairsShown = 45;

// `summary` is the analysis's table of pairs of variables, in the order (1, 2), (1, 3), …, (2, 3), ….
// The text has a line for each pair; of too many it has those whose Spearman correlation is
// farthest from that of normal scores with the correlation used.
std::string CorrelationsText(const Spreadsheet& summary);
// One object per pair; `output` has the variables' names.
nlohmann::ordered_json CorrelationsJson(const Spreadsheet& summary, const Spreadsheet& output);
// What a repair did to the correlations asked for: the smallest eigenvalue that they had, and the one that
// changed most.
nlohmann::ordered_json RepairJson(const Spreadsheet& summary, const Spreadsheet& output);
// The names and the rows of a correlation matrix.
nlohmann::ordered_json MatrixJson(const Spreadsheet& matrix);

}  // namespace brenvolt::cli
