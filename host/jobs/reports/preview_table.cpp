#include "host/jobs/reports/preview_table.h"

#include <algorithm>
#include <utility>

#include "host/jobs/base/row_sheet.h"
#include "host/jobs/reports/report_parts.h"

namespace brenvolt {
namespace {

// Long texts would push the other values out of sight.
std::string Shortened(const std::string& text) {
  constexpr std::size_t kLongest = 24;
  if (text.size() <= kLongest) return text;
  std::size_t end = kLongest;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
  return text.substr(0, end) + "…";
}

}  // namespace

ReportTable PreviewTable(const PreviewedSheet& sheet) {
  ReportTable table;
  table.title = "Sheet " + sheet.name + ": " + CountText(sheet.cases, "case") + " of " +
                CountText(sheet.variables.size(), "variable") + (sheet.kind == "matrix" ? ", a matrix" : "");
  const auto hasUnit = [](const PreviewedVariable& variable) { return !variable.unit.empty(); };
  const bool anyUnit = std::ranges::any_of(sheet.variables, hasUnit);
  table.AddText("Variable");
  table.AddText("Type");
  if (anyUnit) table.AddText("Unit");
  table.AddNumber("Missing");
  std::size_t values = 0;
  for (const PreviewedVariable& variable : sheet.variables) values = std::max(values, variable.first.size());
  for (std::size_t i = 0; i < values; ++i) table.AddNumber("Case " + std::to_string(i + 1));
  for (const PreviewedVariable& variable : sheet.variables) {
    std::vector<std::string> cells{variable.name, std::string(variable.type)};
    if (anyUnit) cells.push_back(variable.unit);
    cells.push_back(std::to_string(variable.missing));
    for (const std::string& value : variable.first) cells.push_back(value.empty() ? "-" : Shortened(value));
    table.AddRow(std::move(cells));
  }
  return table;
}

Spreadsheet PreviewSheet(const FilePreview& preview) {
  RowSheet rows;
  for (const PreviewedSheet& sheet : preview.sheets) {
    for (const PreviewedVariable& variable : sheet.variables) {
      rows.BeginRow();
      rows.Put("sheet", sheet.name);
      rows.Put("kind", std::string(sheet.kind));
      rows.Put("cases", static_cast<double>(sheet.cases));
      rows.Put("variable", variable.name);
      rows.Put("type", std::string(variable.type));
      rows.Put("unit", variable.unit);
      rows.Put("missing", static_cast<double>(variable.missing));
      for (std::size_t i = 0; i < variable.first.size(); ++i)
        rows.Put("case." + std::to_string(i + 1), variable.first[i]);
    }
  }
  return std::move(rows).Made("preview");
}

}  // namespace brenvolt
