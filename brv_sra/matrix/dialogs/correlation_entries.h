// The correlation matrices of a design as people edit them and automation passes them.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "host/automation/variant.h"

namespace brenvolt::sra {

// The cells of a k x k matrix as an editor shows them.
std::vector<std::string> CorrelationCells(std::span<const double> matrix);

// Takes the upper triangle of edited cells, row by row, into both halves of the matrix; the diagonal stays 1.
// False, and the matrix is as it was, where a cell of the triangle or the diagonal holds no number, or one
// below -1 (by more than 15 units in the last place) or above 1.
bool TakeCells(std::span<const std::string> cells, std::size_t k, std::vector<double>& matrix);

// The matrix over the variables `names` from an array of its rows, an array of its k k values row by row, or
// a matrix file, whose variables are found by name; variables that it lacks are uncorrelated. Throws Error
// "Invalid input correlation. …" where it is not symmetric with unit diagonal and values between -1 and 1, is
// of another size, or has none of the variables.
std::vector<double> CorrelationsFrom(const Variant& value, std::span<const std::string> names);

// An array of the rows.
Variant CorrelationArray(std::span<const double> matrix, std::size_t k);

}  // namespace brenvolt::sra
