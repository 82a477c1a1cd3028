// The results of a fit as spreadsheets: what a person reads, a program takes, and automation returns.
#pragma once

#include <memory>
#include <span>

#include "brv_sra/fitting/fit_state.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt::sra {

// The columns are named by host/analysis/result_columns.h; a value that does not exist is missing.

// One case per variable, named after it: its moments.
std::unique_ptr<Spreadsheet> SummaryTable(std::span<const VariableFit> results);

// One case per fitted distribution of a variable, best first, named by its display name; titled by the
// criterion.
std::unique_ptr<Spreadsheet> RankedTable(const VariableFit& fit, RankingCriterion criterion);

}  // namespace brenvolt::sra
