#include "brv_sra/resources/result_sheet.h"

#include <utility>

#include "brv_sra/resources/strings.h"

namespace brenvolt::sra {
namespace {

Variable NewColumn(const Spreadsheet& sheet, const ResultColumn& column, std::string_view number) {
  Variable variable(std::string(ResourceString(column.heading)) + std::string(number), sheet.CaseCount());
  variable.SetIdentifier(number.empty() ? column.identifier : NumberedIdentifier(column, number));
  return variable;
}

}  // namespace

std::unique_ptr<Spreadsheet> NewResultSheet(std::string title, std::vector<std::string> cases) {
  auto sheet = std::make_unique<Spreadsheet>(title, cases.size());
  sheet->SetTitle(std::move(title));
  sheet->SetCaseNames(std::move(cases));
  return sheet;
}

void AddColumn(Spreadsheet& sheet, const ResultColumn& column, const CellNumber& value,
               std::string_view number) {
  Variable variable = NewColumn(sheet, column, number);
  const auto cells = variable.MutableValues();
  for (std::size_t i = 0; i < cells.size(); ++i) cells[i] = value(i);
  sheet.AddVariable(std::move(variable));
}

void AddTextColumn(Spreadsheet& sheet, const ResultColumn& column, const CellText& text) {
  Variable variable = NewColumn(sheet, column, {});
  variable.SetType(VariableType::kText);
  const auto cells = variable.MutableValues();
  for (std::size_t i = 0; i < cells.size(); ++i) {
    cells[i] = static_cast<double>(i + 1);
    variable.SetLabel(cells[i], text(i));
  }
  sheet.AddVariable(std::move(variable));
}

}  // namespace brenvolt::sra
