#include "host/jobs/sheet_words.h"

#include "host/tables/matrix_sheet.h"

namespace brenvolt {

std::string_view KindName(SheetKind kind) {
  return kind == SheetKind::kMatrix ? "matrix" : "data";
}

std::string_view TypeName(VariableType type) {
  return type == VariableType::kText ? "text" : "numeric";
}

std::size_t CountMissing(const Variable& variable) {
  std::size_t missing = 0;
  for (std::size_t i = 0; i < variable.Size(); ++i) missing += variable.IsMissing(i) ? 1 : 0;
  return missing;
}

double ValidCases(const Spreadsheet& matrix) {
  return matrix.VariableAt(0).Values()[MatrixSummaryRows(matrix.CaseCount()).validCases];
}

}  // namespace brenvolt
