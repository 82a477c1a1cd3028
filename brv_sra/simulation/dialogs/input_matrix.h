// The correlation matrix that a simulation of an input follows unless it is given another one. The design starts from
// the same one, so that what it saves keeps the correlations that are there.
#pragma once

#include <optional>
#include <string_view>

#include "brv_sra/frame/analysis_services.h"
#include "brv_sra/matrix/matrix_file.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt::sra {

// Throws Error unless mirrored entries agree. `place` begins what it says of the fault.
void RequireSymmetric(const MatrixFile& file, std::string_view place);

// Throws Error for a sheet that is no matrix file, or not symmetric.
MatrixFile ReadGivenMatrix(const Spreadsheet& sheet);

// The matrix of an input that is no matrix file: the one that was saved with its fits or its design in this analysis, or
// lies beside it. Throws Error if the latter is not valid.
std::optional<MatrixFile> KeptMatrix(AnalysisServices& analysis);

}  // namespace brenvolt::sra
