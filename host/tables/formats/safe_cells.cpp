#include "host/tables/formats/safe_cells.h"

#include <string>
#include <utility>
#include <vector>

namespace brenvolt {
namespace {

std::string Safe(std::string text) {
  constexpr std::string_view kStartsOfFormulas = "=+-@\t\r";
  const bool isFormula = !text.empty() && kStartsOfFormulas.find(text.front()) != std::string_view::npos;
  return isFormula ? "'" + std::move(text) : text;
}

}  // namespace

Spreadsheet WithSafeCells(const Spreadsheet& sheet) {
  Spreadsheet safe = sheet;
  safe.SetHeader(Safe(sheet.Header()));
  if (sheet.HasCaseNames() && !sheet.AreCasesNumbered()) {
    std::vector<std::string> names(sheet.CaseCount());
    for (std::size_t i = 0; i < names.size(); ++i) names[i] = Safe(sheet.CaseName(i));
    safe.SetCaseNames(std::move(names));
  }
  for (std::size_t k = 0; k < safe.VariableCount(); ++k) {
    Variable& variable = safe.VariableAt(k);
    variable.SetName(Safe(variable.Name()));
    if (variable.Type() != VariableType::kText) continue;
    const std::map<double, std::string> labels = variable.Labels();
    for (const auto& [value, text] : labels) variable.SetLabel(value, Safe(text));
  }
  return safe;
}

}  // namespace brenvolt
