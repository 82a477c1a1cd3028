#include "host/jobs/base/row_sheet.h"

#include <algorithm>
#include <utility>

namespace brenvolt {

void RowSheet::Put(std::string_view column, double value) {
  Of(column).numbers.back() = value;
}

void RowSheet::Put(std::string_view column, const std::string& text) {
  Column& found = Of(column);
  found.isText = true;
  if (text.empty()) return;
  const auto next = static_cast<double>(found.codes.size() + 1);
  found.numbers.back() = found.codes.try_emplace(text, next).first->second;
}

void RowSheet::Put(const ResultRow& row, std::span<const ResultColumn> columns) {
  for (const ResultColumn& column : columns) {
    if (row.Has(column)) Put(column.identifier, row.Number(column));
  }
}

Spreadsheet RowSheet::Made(std::string name) && {
  Spreadsheet sheet(std::move(name));
  for (Column& column : columns_) {
    column.numbers.resize(rows_, GetDefaultMDValue());
    Variable variable(column.name, rows_);
    variable.AssignValues(std::move(column.numbers));
    if (column.isText) variable.SetType(VariableType::kText);
    for (const auto& [text, code] : column.codes) variable.SetLabel(code, text);
    sheet.AddVariable(std::move(variable));
  }
  return sheet;
}

RowSheet::Column& RowSheet::Of(std::string_view name) {
  auto found = std::ranges::find(columns_, name, &Column::name);
  if (found == columns_.end()) found = columns_.insert(columns_.end(), Column{std::string(name)});
  found->numbers.resize(rows_, GetDefaultMDValue());
  return *found;
}

}  // namespace brenvolt
