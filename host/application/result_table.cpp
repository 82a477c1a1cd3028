#include "host/application/result_table.h"

#include "host/analysis/analysis_table_doc.h"
#include "host/base/error.h"

namespace brenvolt {

const Spreadsheet& TableOf(const Variant& result) {
  const auto document = std::dynamic_pointer_cast<CAnalysisTableDoc>(result.ToObject());
  if (document == nullptr) throw Error("the analysis returned no table");
  return document->Table();
}

const Variable& ResultTable::Find(std::string_view column) const {
  const auto index = sheet_.FindVariable(column);
  if (!index) throw Error("the table has no column " + std::string(column), sheet_.Name());
  return sheet_.VariableAt(*index);
}

std::size_t ResultTable::RowNamed(std::string_view name) const {
  for (std::size_t row = 0; row < RowCount(); ++row) {
    if (RowName(row) == name) return row;
  }
  throw Error("the table has no row " + std::string(name), sheet_.Name());
}

double ResultTable::Number(std::string_view column, std::size_t row) const {
  return Find(column).Values()[row];
}

std::string ResultTable::Text(std::string_view column, std::size_t row) const {
  const Variable& variable = Find(column);
  return std::string(variable.Label(variable.Values()[row]).value_or(""));
}

std::vector<double> ResultTable::Numbered(std::string_view name, std::size_t row) const {
  std::vector<double> values;
  for (;;) {
    const auto column = sheet_.FindVariable(std::string(name) + std::to_string(values.size() + 1));
    if (!column || sheet_.VariableAt(*column).IsMissing(row)) return values;
    values.push_back(sheet_.VariableAt(*column).Values()[row]);
  }
}

}  // namespace brenvolt
