#include "host/analysis/result_table.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

#include "host/analysis/analysis_table_doc.h"
#include "host/base/error.h"

namespace brenvolt {
namespace {

const auto& At(const auto& cells, const ResultColumn& column, const std::string& row) {
  const auto found = cells.find(column.identifier);
  if (found == cells.end()) throw Error("the table has no column " + std::string(column.identifier), row);
  return found->second;
}

}  // namespace

double ResultRow::Number(const ResultColumn& column) const {
  return At(numbers, column, name);
}

const std::string& ResultRow::Text(const ResultColumn& column) const {
  return At(texts, column, name);
}

std::vector<double> ResultRow::Numbered(const ResultColumn& column) const {
  std::vector<double> values;
  for (;;) {
    const auto found = numbers.find(NumberedIdentifier(column, std::to_string(values.size() + 1)));
    if (found == numbers.end() || std::isnan(found->second)) return values;
    values.push_back(found->second);
  }
}

const ResultRow& ResultTable::Row(const ResultColumn& statistic) const {
  const auto found = std::ranges::find(rows, statistic.identifier, &ResultRow::identifier);
  if (found == rows.end()) throw Error("the table has no row " + std::string(statistic.identifier), title);
  return *found;
}

ResultTable ReadResultTable(const Spreadsheet& sheet) {
  ResultTable table{sheet.Title(), {}, std::vector<ResultRow>(sheet.CaseCount())};
  for (std::size_t row = 0; row < table.rows.size(); ++row) {
    table.rows[row].name = sheet.CaseName(row);
    table.rows[row].identifier = sheet.CaseIdentifier(row);
  }
  for (std::size_t c = 0; c < sheet.VariableCount(); ++c) {
    const Variable& column = sheet.VariableAt(c);
    table.headings.push_back({column.Identifier(), column.Name()});
    for (std::size_t row = 0; row < table.rows.size(); ++row) {
      const double value = column.Values()[row];
      table.rows[row].numbers[column.Identifier()] = value;
      if (column.Type() == VariableType::kText)
        table.rows[row].texts[column.Identifier()] = column.Label(value).value_or("");
    }
  }
  return table;
}

const Spreadsheet& TableOf(const Variant& result) {
  const auto document = std::dynamic_pointer_cast<CAnalysisTableDoc>(result.ToObject());
  if (document == nullptr) throw Error("the analysis returned no table");
  return document->Table();
}

std::optional<std::string_view> NumberIn(std::string_view identifier, const ResultColumn& column) {
  if (!identifier.starts_with(NumberedIdentifier(column, ""))) return std::nullopt;
  return identifier.substr(column.identifier.size() + 1);
}

}  // namespace brenvolt
