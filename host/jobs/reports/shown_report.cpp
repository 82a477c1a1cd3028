#include "host/jobs/reports/shown_report.h"

#include <algorithm>
#include <utility>

#include "host/base/number_text.h"
#include "host/jobs/base/plot.h"
#include "host/jobs/reports/report_parts.h"
#include "host/tables/editing/cell_text.h"

namespace brenvolt {
namespace {

constexpr std::size_t kMostRows = 60;
constexpr std::size_t kMostColumns = 16;
constexpr const char* kNumberForm = "%.6g";

std::string TextOf(const Variable& variable, std::size_t row) {
  const bool isNumber = variable.Type() == VariableType::kNumeric && !variable.IsMissing(row);
  return isNumber ? FormatNumber(kNumberForm, variable.Values()[row]) : CellText(variable, row, {});
}

ReportTable TableOf(const Spreadsheet& sheet) {
  ReportTable table;
  const std::size_t columns = std::min(sheet.VariableCount(), kMostColumns);
  const std::size_t rows = std::min(sheet.CaseCount(), kMostRows);
  const bool hasNames = sheet.HasCaseNames() && !sheet.AreCasesNumbered();
  if (hasNames) table.AddText(sheet.Header());
  for (std::size_t v = 0; v < columns; ++v)
    table.columns.push_back(
        {sheet.VariableAt(v).Name(), sheet.VariableAt(v).Type() == VariableType::kNumeric});
  for (std::size_t row = 0; row < rows; ++row) {
    std::vector<std::string> cells;
    if (hasNames) cells.push_back(sheet.CaseName(row));
    for (std::size_t v = 0; v < columns; ++v) cells.push_back(TextOf(sheet.VariableAt(v), row));
    table.AddRow(std::move(cells));
  }
  const auto note = [&](std::size_t shown, std::size_t all, const char* what) {
    if (shown < all)
      table.notes.push_back("The first " + std::to_string(shown) + " of " + std::to_string(all) + " " + what +
                            " are shown.");
  };
  note(rows, sheet.CaseCount(), "rows");
  note(columns, sheet.VariableCount(), "columns");
  return table;
}

}  // namespace

Report ShownReport(std::string title, std::span<const ShownResult> results, const ShownOrigin& origin) {
  Report report{std::move(title), CountText(results.size(), "result") + ", as shown in the window.", {}};
  if (!origin.command.empty() || !origin.obstacle.empty())
    SayCommand(origin.command, origin.obstacle,
               report.sections.emplace_back(ReportSection{"What was asked"}));
  for (const ShownResult& result : results) {
    ReportSection& section = report.sections.emplace_back(ReportSection{result.title});
    if (result.table != nullptr) section.Show(TableOf(*result.table));
    if (result.graph != nullptr)
      section.blocks.emplace_back(PicturesOf(SinglePage(result.title, *result.graph)));
    if (section.blocks.empty()) section.Say("There is nothing to show.");
  }
  report.sections.push_back(MadeSection(std::nullopt));
  return report;
}

}  // namespace brenvolt
