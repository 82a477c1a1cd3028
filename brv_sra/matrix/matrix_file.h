// The correlation matrix file of a simulation design: made from its values, and checked and read back. The
// fits, the design and the simulation meet in it. host/tables/matrix_sheet.h describes its rows.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "brv_sra/base/fault.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt::sra {

// The values of a matrix file of m variables.
struct MatrixFile {
  std::vector<std::string> variables;             // m names, in design order
  std::vector<std::vector<double>> correlations;  // m rows of m
  std::vector<double> means;                      // m
  std::vector<double> standardDeviations;         // m
  std::int32_t validCases = 1;                    // at least 1

  // Uncorrelated variables of mean 0 and standard deviation 1, one valid case.
  static MatrixFile Identity(std::vector<std::string> variables);
  // Takes correlations (m x m, row-major), as PearsonCorrelation gives them. MakeMatrixFile refuses another size.
  void SetCorrelations(std::span<const double> rowMajor);
};

// The matrix file as a sheet of m + 4 cases, whose title and name are `title`, by default "Correlation
// matrix". A title is cut at 80 bytes. The cells that mean nothing are missing. A correlation that is NaN (of
// a constant variable, say) is written as it is; ReadMatrixFile refuses the file. There is a fault when the sizes differ.
Result<std::unique_ptr<Spreadsheet>> MakeMatrixFile(const MatrixFile& file, std::string_view title = {});

struct MatrixReadOptions {
  bool useCaseSelection = true;
  std::function<bool()>
      isCancelled;  // asked before the means and before the standard deviations; may be empty
};

// Checks a sheet and reads it; the first fault in the order of the rows decides. Names of variables come
// without the blanks at their ends. Names of cases do not count, symmetry is not asked for.
Result<MatrixFile> ReadMatrixFile(const Spreadsheet& sheet, const MatrixReadOptions& options = {});

// True when a sheet is a matrix file that ReadMatrixFile accepts, whatever cases are selected.
bool IsMatrixFile(const Spreadsheet& sheet);

// The names of a sheet's variables without the blanks at their ends.
std::vector<std::string> VariableNames(const Spreadsheet& sheet);

// True when every row is as long as there are rows, no value is NaN, the diagonal is exactly 1, and every
// value equals its mirror exactly. False for an empty matrix.
bool IsSymmetricCorrelationMatrix(std::span<const std::vector<double>> rows);

}  // namespace brenvolt::sra
