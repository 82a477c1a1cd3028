#include "apps/desktop/views/sheet_edits.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <set>
#include <utility>

#include "host/base/error.h"
#include "host/tables/editing/cell_text.h"
#include "host/tables/matrix_sheet.h"

namespace brenvolt::desktop {
namespace {

std::string Place(std::size_t row) {
  return "row " + std::to_string(row + 1);
}

// The values of the texts of one column, and of the labels that they need an edit.
struct ReadColumn {
  std::vector<double> values;
  std::map<double, std::string> labels;
};

ReadColumn ReadTexts(const Variable& variable, const TextRows& texts, std::size_t column,
                     std::size_t firstRow, NumberLocale locale) {
  CellReader reader(variable, locale);
  ReadColumn read;
  for (std::size_t i = 0; i < texts.size(); ++i) {
    try {
      read.values.push_back(reader.Read(column < texts[i].size() ? texts[i][column] : std::string()));
    } catch (const Error& error) {
      throw Error(std::string(error.what()) + " in " + Place(firstRow + i), variable.Name());
    }
  }
  read.labels = reader.NewLabels();
  return read;
}

std::vector<std::string> FreeNames(const Spreadsheet& sheet, std::size_t count) {
  std::set<std::string, std::less<>> taken;
  for (std::size_t i = 0; i < sheet.VariableCount(); ++i) taken.insert(sheet.VariableAt(i).Name());
  std::vector<std::string> names;
  for (std::size_t number = sheet.VariableCount() + 1; names.size() < count; ++number) {
    std::string name = "Var" + std::to_string(number);
    if (!taken.contains(name)) names.push_back(std::move(name));
  }
  return names;
}

void RequireData(const Spreadsheet& sheet) {
  if (sheet.Kind() == SheetKind::kMatrix)
    throw Error("a matrix keeps its rows and columns; change its cells one by one, or paste within them",
                sheet.Name());
}

// A new variable of the texts, behind missing values where they do not begin at the first case.
Variable NewVariable(const std::string& name, std::size_t cases, std::size_t firstRow, const TextRows& texts,
                     std::size_t column, NumberLocale locale) {
  Variable variable(name, cases);
  ReadColumn read;
  try {
    read = ReadTexts(variable, texts, column, firstRow, locale);
  } catch (const Error&) {
    variable.SetType(VariableType::kText);
    read = ReadTexts(variable, texts, column, firstRow, locale);
  }
  for (const auto& [code, text] : read.labels) variable.SetLabel(code, text);
  std::vector<double> values(cases, variable.MissingCode());
  std::ranges::copy(read.values, values.begin() + static_cast<std::ptrdiff_t>(firstRow));
  variable.AssignValues(std::move(values));
  return variable;
}

bool IsCorrelationCell(const Spreadsheet& sheet, std::size_t row) {
  return HasMatrixRows(sheet) && row < sheet.VariableCount();
}

// Each correlation stands twice.
void Mirror(const Spreadsheet& sheet, std::vector<CellRun>& runs) {
  std::vector<CellRun> mirrored;
  for (const CellRun& run : runs) {
    for (std::size_t i = 0; i < run.values.size(); ++i) {
      const std::size_t row = run.firstCase + i;
      if (!IsCorrelationCell(sheet, row)) continue;
      if (!IsCorrelation(run.values[i], sheet.VariableAt(run.variable).MissingCode(), row == run.variable))
        throw Error(row == run.variable ? "a variable's correlation with itself is 1"
                                        : "a correlation is a number from -1 to 1",
                    sheet.VariableAt(row).Name() + ", " + sheet.VariableAt(run.variable).Name());
      if (row != run.variable) mirrored.push_back({row, run.variable, {run.values[i]}});
    }
  }
  runs.insert(runs.end(), mirrored.begin(), mirrored.end());
}

std::size_t WidthOf(const TextRows& texts) {
  std::size_t width = 0;
  for (const auto& row : texts) width = std::max(width, row.size());
  return width;
}

}  // namespace

Edits Paste(const Spreadsheet& sheet, std::size_t row, std::size_t column, const TextRows& texts,
            NumberLocale locale) {
  Edits edits;
  const std::size_t bottom = row + texts.size();
  const std::size_t right = column + WidthOf(texts);
  if (bottom > sheet.CaseCount() || right > sheet.VariableCount()) RequireData(sheet);
  const std::size_t cases = std::max(sheet.CaseCount(), bottom);
  if (cases > sheet.CaseCount())
    edits.emplace_back(AddCases{sheet.Name(), sheet.CaseCount(), {cases - sheet.CaseCount(), {}, {}, {}}});
  SetFacts facts{sheet.Name(), {}};
  SetCells cells{sheet.Name(), {}};
  for (std::size_t v = column; v < std::min(right, sheet.VariableCount()); ++v) {
    const Variable& variable = sheet.VariableAt(v);
    ReadColumn read = ReadTexts(variable, texts, v - column, row, locale);
    if (!read.labels.empty()) {
      facts.variables.emplace_back(v, FactsOf(variable));
      facts.variables.back().second.labels.merge(read.labels);
    }
    cells.runs.push_back({v, row, std::move(read.values)});
  }
  Mirror(sheet, cells.runs);
  if (!facts.variables.empty()) edits.emplace_back(std::move(facts));
  if (!cells.runs.empty()) edits.emplace_back(std::move(cells));
  if (right <= sheet.VariableCount()) return edits;
  SheetVariables added;
  const std::size_t first = std::max(column, sheet.VariableCount());
  for (const std::string& name : FreeNames(sheet, right - sheet.VariableCount())) {
    const std::size_t place = sheet.VariableCount() + added.variables.size();
    added.variables.push_back(
        NewVariable(name, cases, row, place < first ? TextRows() : texts, place - column, locale));
  }
  edits.emplace_back(AddVariables{sheet.Name(), sheet.VariableCount(), std::move(added)});
  return edits;
}

Edits Fill(const Spreadsheet& sheet, const CellArea& area, const std::string& text, NumberLocale locale) {
  SetFacts facts{sheet.Name(), {}};
  SetCells cells{sheet.Name(), {}};
  for (std::size_t v = area.column; v < area.column + area.columns; ++v) {
    const Variable& variable = sheet.VariableAt(v);
    CellReader reader(variable, locale);
    const double value = reader.Read(text);
    if (!reader.NewLabels().empty()) {
      facts.variables.emplace_back(v, FactsOf(variable));
      for (const auto& [code, label] : reader.NewLabels()) facts.variables.back().second.labels[code] = label;
    }
    cells.runs.push_back({v, area.row, std::vector<double>(area.rows, value)});
  }
  Mirror(sheet, cells.runs);
  Edits edits;
  if (!facts.variables.empty()) edits.emplace_back(std::move(facts));
  edits.emplace_back(std::move(cells));
  return edits;
}

Edits InsertEmptyCases(const Spreadsheet& sheet, std::size_t at, std::size_t count) {
  RequireData(sheet);
  Edits edits;
  edits.emplace_back(AddCases{sheet.Name(), at, {count, {}, {}, {}}});
  return edits;
}

Edits InsertEmptyVariables(const Spreadsheet& sheet, std::size_t at, std::size_t count) {
  RequireData(sheet);
  SheetVariables added;
  for (const std::string& name : FreeNames(sheet, count))
    added.variables.push_back(NewVariable(name, sheet.CaseCount(), 0, {}, 0, {}));
  Edits edits;
  edits.emplace_back(AddVariables{sheet.Name(), at, std::move(added)});
  return edits;
}

std::string CopyText(const Spreadsheet& sheet, const CellArea& area, bool withNames, NumberLocale locale) {
  std::string text;
  for (std::size_t v = 0; withNames && v < area.columns; ++v)
    AppendCell(text, sheet.VariableAt(area.column + v).Name(), v == 0);
  if (withNames) text += '\n';
  for (std::size_t row = area.row; row < area.row + area.rows; ++row) {
    for (std::size_t v = 0; v < area.columns; ++v)
      AppendCell(text, CellText(sheet.VariableAt(area.column + v), row, locale), v == 0);
    text += '\n';
  }
  return text;
}

}  // namespace brenvolt::desktop
