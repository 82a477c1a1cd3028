// Matrix files as spreadsheets: a square correlation matrix, then four rows of summaries. What their rows are
// called, the host's own test for them, and matrices taken from tables whose first column names the rows.
//
// For m variables a matrix has m + 4 cases: one for each variable, of its name and in its order, then the
// means, the standard deviations, the number of valid cases and the type of the matrix (1 for correlations),
// the last two in the first variable. See docs/reference/matrix-file.md.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "host/tables/spreadsheet.h"

namespace brenvolt {

// The usual title of a matrix file.
inline constexpr std::string_view kCorrelationMatrixTitle = "Correlation matrix";

namespace matrix_row {
inline constexpr std::string_view kMeans = "Means";
inline constexpr std::string_view kStandardDeviations = "Std.Dev.";
inline constexpr std::string_view kValidCases = "No.Cases";
inline constexpr std::string_view kType = "Matrix";
}  // namespace matrix_row

inline constexpr std::size_t kMatrixSummaryRows = 4;
inline constexpr double kCorrelationMatrixType = 1.0;

// The indexes of the summary rows of a matrix with so many cases, at least four: they are its last ones.
struct MatrixSummaryRows {
  explicit MatrixSummaryRows(std::size_t cases)
      : means(cases - 4), standardDeviations(cases - 3), validCases(cases - 2), type(cases - 1) {}
  std::size_t means;
  std::size_t standardDeviations;
  std::size_t validCases;
  std::size_t type;
};

// The host's test that a sheet is a matrix file: it is of that kind, has variables and cases, and all are
// numeric. Says nothing of its values, nor whether all rows are there.
bool IsMatrixSheet(const Spreadsheet& sheet);
// True when a matrix sheet also has all its rows.
bool HasMatrixRows(const Spreadsheet& sheet);

// True when `value` may be an entry of a correlation matrix: not missing; 1 on the diagonal; of a magnitude
// up to 1 elsewhere. Both limits hold to within 15 units in the last place.
bool IsCorrelation(double value, double missingCode, bool onDiagonal);

// True when a data sheet looks like a matrix in a table: its first variable is text, and as names of the rows
// its texts repeat the names of the other variables (two or more), or hold at least two names of summary
// rows.
bool LooksLikeMatrixTable(const Spreadsheet& table);

// What speaks against a matrix, "0.5 in row a, column b" and its mirror: two mirrored entries that differ by more than
// rounding leaves in the last digits of a text (kMirrorTolerance). `entry` gives those of a row and column.
inline constexpr double kMirrorTolerance = 1e-9;
std::optional<std::string> AsymmetryIn(std::span<const std::string> names,
                                       const std::function<double(std::size_t, std::size_t)>& entry);

// The matrix file in a table whose first variable, whatever it is called, names the rows. The summary rows may be left
// out, all four: the means are then 0, the standard deviations 1, and there is one case. Then the first variable may be
// left out, too, where the rows stand in the order of the columns. Mirrored entries that differ by rounding become those
// of the lower triangle. Throws Error whose where() names `file` with the row and column at fault, unless the table has
// exactly the rows of a matrix of its variables, in order and under their names, its type is 1, its correlations are
// correlations and symmetric, and no mean, standard deviation or number of cases is missing.
std::unique_ptr<Spreadsheet> MatrixFromTable(const Spreadsheet& table, const std::string& file);

}  // namespace brenvolt
