// The correlation matrices of a design as people edit them and automation passes them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "host/analysis/analysis_support.h"
#include "host/automation/variant.h"

namespace brenvolt::sra {

// The correlation that a person typed; nothing if it is no number, or one below -1 (by more than 15 units in the last
// place) or above 1.
std::optional<double> EnteredCorrelation(const std::string& text);

// Lets a person edit the matrix over the variables `names`, under a title by its number, while `judge` says what becomes of
// it. False, and the matrix is as it was, if they cancelled or an entry was refused, which a message says.
bool EditCorrelations(const CAnalysisSupport& analysis, std::int32_t title,
                      const std::vector<std::string>& names, std::vector<double>& matrix,
                      std::function<MatrixVerdict(const std::vector<double>&)> judge);

// The matrix over the variables `names` from an array of its rows, an array of its k k values row by row, or
// a matrix file, whose variables are found by name; variables that it lacks are uncorrelated. Throws Error
// "Invalid input correlation. …" if it is not symmetric with unit diagonal and values between -1 and 1, is
// of another size, or has none of the variables.
std::vector<double> CorrelationsFrom(const Variant& value, std::span<const std::string> names);

// An array of the rows.
Variant CorrelationArray(std::span<const double> matrix, std::size_t k);

}  // namespace brenvolt::sra
