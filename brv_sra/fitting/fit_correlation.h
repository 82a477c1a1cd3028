// The correlations between fitted variables, which are kept with the fits in a correlation matrix file.
#pragma once

#include <cstddef>
#include <span>
#include <utility>
#include <vector>

#include "brv_sra/fitting/sample_reader.h"
#include "brv_sra/matrix/matrix_file.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt::sra {

struct FitCorrelations {
  MatrixFile file;
  // Pairs of variables (indices into file.variables) whose correlation is not defined: one of them is
  // constant over their common cases, or there are fewer than two. The file has 0 there, so that it stays
  // valid.
  std::vector<std::pair<std::size_t, std::size_t>> undefined;
};

// Pearson's coefficients of the variables with these numbers (from 1), in their order, over a set of cases,
// each as often as its weight; a pair uses the cases where both are present. Means and standard deviations
// (0 for a single value) are those of a variable's own valid cases. The number of valid cases is the smallest
// of a pair (of the variable, if there is only one); at least 1. Variables without a valid case in the set
// are left out.
//
// Time O(cases variables^2). Memory: 8 bytes per case and variable.
FitCorrelations CorrelateVariables(const Spreadsheet& sheet, std::span<const int> variables,
                                   const CaseSet& cases);

}  // namespace brenvolt::sra
