#include "host/tables/editing/typed_cells.h"

#include <algorithm>
#include <set>
#include <utility>

#include "host/base/error.h"
#include "host/tables/editing/cell_text.h"
#include "host/tables/matrix_sheet.h"

namespace brenvolt {

TypedColumn ReadTyped(const Variable& variable, std::span<const std::string> texts, std::size_t firstCase,
                      NumberLocale locale) {
  CellReader reader(variable, locale);
  TypedColumn read;
  for (std::size_t i = 0; i < texts.size(); ++i) {
    try {
      read.values.push_back(reader.Read(texts[i]));
    } catch (const Error& error) {
      throw Error(std::string(error.what()) + " in row " + std::to_string(firstCase + i + 1),
                  variable.Name());
    }
  }
  read.labels = reader.NewLabels();
  return read;
}

std::vector<std::string> FreeVariableNames(const Spreadsheet& sheet, std::size_t count) {
  std::set<std::string, std::less<>> taken;
  for (std::size_t i = 0; i < sheet.VariableCount(); ++i) taken.insert(sheet.VariableAt(i).Name());
  std::vector<std::string> names;
  for (std::size_t number = sheet.VariableCount() + 1; names.size() < count; ++number) {
    std::string name = "Var" + std::to_string(number);
    if (!taken.contains(name)) names.push_back(std::move(name));
  }
  return names;
}

void RequireChangeableShape(const Spreadsheet& sheet) {
  if (sheet.Kind() == SheetKind::kMatrix)
    throw Error("a matrix keeps its rows and columns; change its cells one by one, or paste within them",
                sheet.Name());
}

bool IsMirrored(const Spreadsheet& sheet, std::size_t row, std::size_t column, double value) {
  if (!HasMatrixRows(sheet) || row >= sheet.VariableCount()) return false;
  const bool isDiagonal = row == column;
  if (!IsCorrelation(value, sheet.VariableAt(column).MissingCode(), isDiagonal))
    throw Error(
        isDiagonal ? "a variable's correlation with itself is 1" : "a correlation is a number from -1 to 1",
        sheet.VariableAt(row).Name() + ", " + sheet.VariableAt(column).Name());
  return !isDiagonal;
}

}  // namespace brenvolt
