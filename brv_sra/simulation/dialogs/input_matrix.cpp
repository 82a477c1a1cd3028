#include "brv_sra/simulation/dialogs/input_matrix.h"

#include <string>

#include "brv_sra/frame/fault_message.h"
#include "brv_sra/matrix/matrix_state.h"
#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/strings.h"
#include "host/analysis/analysis_doc.h"
#include "host/base/error.h"
#include "host/tables/matrix_sheet.h"

namespace brenvolt::sra {

void RequireSymmetric(const MatrixFile& file, std::string_view place) {
  const auto entry = [&file](std::size_t row, std::size_t c) { return file.correlations[row][c]; };
  if (const auto asymmetry = AsymmetryIn(file.variables, entry))
    throw Error(std::string(ResourceString(kMsgSimulationFailedMatrix)), std::string(place) + *asymmetry);
}

MatrixFile ReadGivenMatrix(const Spreadsheet& sheet) {
  Result<MatrixFile> read = ReadMatrixFile(sheet);
  if (read) {
    RequireSymmetric(*read, "sheet " + sheet.Name() + ": ");
    return *std::move(read);
  }
  std::string why = MessageOf(read.Reason()).text;
  if (why.empty()) why = "is not a matrix file";
  throw Error(std::string(ResourceString(kMsgSimulationFailedMatrix)), "sheet " + sheet.Name() + ": " + why);
}

std::optional<MatrixFile> KeptMatrix(AnalysisServices& analysis) {
  if (analysis.Matrix().saved) return analysis.Matrix().saved;
  const CAnalysisDoc* document = analysis.Document();
  const auto sheet = document == nullptr ? nullptr : document->FindMatrix({});
  if (sheet == nullptr) return std::nullopt;
  return ReadGivenMatrix(*sheet);
}

}  // namespace brenvolt::sra
