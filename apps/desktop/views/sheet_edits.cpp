#include "apps/desktop/views/sheet_edits.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <unordered_set>
#include <utility>

#include "host/base/error.h"
#include "host/tables/csv_reader.h"
#include "host/tables/editing/cell_text.h"
#include "host/tables/editing/typed_cells.h"
#include "host/tables/text/text_header.h"

namespace brenvolt::desktop {
namespace {

std::size_t WidthOf(const TextRows& texts) {
  std::size_t width = 0;
  for (const auto& row : texts) width = std::max(width, row.size());
  return width;
}

// The texts of one column; where rows are shorter, nothing.
std::vector<std::string> ColumnOf(const TextRows& texts, std::size_t column) {
  std::vector<std::string> cells;
  cells.reserve(texts.size());
  for (const auto& row : texts) cells.push_back(column < row.size() ? row[column] : std::string());
  return cells;
}

// Reads a column for a variable of these facts, which get the labels of its texts. One that `mayBecomeText` is of texts if
// not all are numbers.
std::vector<double> ReadColumn(VariableFacts& facts, bool mayBecomeText, const TextRows& texts,
                               std::size_t column, std::size_t firstRow, NumberLocale locale) {
  Variable variable(facts.name, 0);
  GiveFacts(facts, variable);
  const std::vector<std::string> cells = ColumnOf(texts, column);
  TypedColumn read;
  try {
    read = ReadTyped(variable, cells, firstRow, locale);
  } catch (const Error&) {
    if (!mayBecomeText || facts.type == VariableType::kText) throw;
    facts.type = VariableType::kText;
    GiveFacts(facts, variable);
    read = ReadTyped(variable, cells, firstRow, locale);
  }
  facts.labels.merge(read.labels);
  return std::move(read.values);
}

// A new variable of the texts, behind missing values where they do not begin at the first case.
Variable NewVariable(const std::string& name, std::size_t cases, std::size_t firstRow, const TextRows& texts,
                     std::size_t column, NumberLocale locale) {
  VariableFacts facts;
  facts.name = name;
  const std::vector<double> read = ReadColumn(facts, true, texts, column, firstRow, locale);
  Variable variable(name, cases);
  GiveFacts(facts, variable);
  std::vector<double> values(cases, variable.MissingCode());
  std::ranges::copy(read, values.begin() + static_cast<std::ptrdiff_t>(firstRow));
  variable.AssignValues(std::move(values));
  return variable;
}

// Whether a variable has no value outside these cases.
bool HasNoOtherValues(const Variable& variable, std::size_t firstCase, std::size_t count) {
  for (std::size_t i = 0; i < variable.Size(); ++i) {
    if ((i < firstCase || i >= firstCase + count) && !variable.IsMissing(i)) return false;
  }
  return true;
}

// How many lines of names, and of units, texts begin with, as files do.
std::size_t HeaderLines(const TextRows& texts, NumberLocale locale) {
  constexpr std::size_t kLooked = 1000;
  const std::size_t width = WidthOf(texts);
  std::vector<SampleRow> rows;
  for (std::size_t i = 0; i < std::min(texts.size(), kLooked); ++i) {
    SampleRow& row = rows.emplace_back();
    row.line = i + 1;
    for (const std::string& cell : texts[i]) row.cells.push_back({std::string(Trim(cell)), false});
    row.cells.resize(width);
  }
  for (const char decimal : {locale.decimalSeparator, '.'}) {
    const HeaderFound found = FindHeader(rows, {{decimal, 0}, width, false, {}});
    const std::size_t lines = found.hasUnits ? 2 : 1;
    if (!found.hasHeader || found.isOfNumbers || found.line != 1 || rows.size() <= lines) continue;
    const std::vector<SampleRow> values(rows.begin() + static_cast<std::ptrdiff_t>(lines), rows.end());
    if (HasNumericColumn(values, width)) return lines;
  }
  return 0;
}

// Each correlation stands twice.
void Mirror(const Spreadsheet& sheet, std::vector<CellRun>& runs) {
  std::vector<CellRun> mirrored;
  for (const CellRun& run : runs) {
    for (std::size_t i = 0; i < run.values.size(); ++i) {
      const std::size_t row = run.firstCase + i;
      if (IsMirrored(sheet, row, run.variable, run.values[i]))
        mirrored.push_back({row, run.variable, {run.values[i]}});
    }
  }
  runs.insert(runs.end(), mirrored.begin(), mirrored.end());
}

}  // namespace

PastedTexts SplitNames(const Spreadsheet& sheet, std::size_t row, std::size_t column, TextRows texts,
                       NumberLocale locale) {
  const std::size_t lines =
      sheet.Kind() == SheetKind::kMatrix || texts.empty() ? 0 : HeaderLines(texts, locale);
  if (lines == 0) return {std::move(texts), {}};
  std::vector<std::string> names = texts.front();
  names.resize(WidthOf(texts));
  const std::size_t right = std::min(column + names.size(), sheet.VariableCount());
  std::unordered_set<std::string> others;
  for (std::size_t v = 0; v < sheet.VariableCount(); ++v) {
    if (v < column || v >= right) others.insert(sheet.VariableAt(v).Name());
  }
  for (std::size_t v = column; v < right; ++v) {
    std::string& name = names[v - column];
    name = Trim(name).empty() ? sheet.VariableAt(v).Name() : std::string(Trim(name));
    if (name != sheet.VariableAt(v).Name() &&
        !HasNoOtherValues(sheet.VariableAt(v), row, texts.size() - lines))
      return {std::move(texts), {}};
  }
  texts.erase(texts.begin(), texts.begin() + static_cast<std::ptrdiff_t>(lines));
  return {std::move(texts), ColumnNames(std::move(names), std::move(others))};
}

Edits Paste(const Spreadsheet& sheet, std::size_t row, std::size_t column, const PastedTexts& texts,
            NumberLocale locale) {
  Edits edits;
  const TextRows& rows = texts.rows;
  const std::size_t bottom = row + rows.size();
  const std::size_t right = column + std::max(WidthOf(rows), texts.names.size());
  if (bottom > sheet.CaseCount() || right > sheet.VariableCount()) RequireChangeableShape(sheet);
  const std::size_t cases = std::max(sheet.CaseCount(), bottom);
  if (cases > sheet.CaseCount())
    edits.emplace_back(AddCases{sheet.Name(), sheet.CaseCount(), {cases - sheet.CaseCount(), {}, {}, {}}});
  SetFacts changed{sheet.Name(), {}};
  SetCells cells{sheet.Name(), {}};
  for (std::size_t v = column; v < std::min(right, sheet.VariableCount()); ++v) {
    const Variable& variable = sheet.VariableAt(v);
    VariableFacts facts = FactsOf(variable);
    const bool isNew = sheet.Kind() != SheetKind::kMatrix && HasNoOtherValues(variable, row, rows.size());
    cells.runs.push_back({v, row, ReadColumn(facts, isNew, rows, v - column, row, locale)});
    if (!texts.names.empty()) facts.name = texts.names[v - column];
    if (!AreSame(facts, FactsOf(variable))) changed.variables.emplace_back(v, std::move(facts));
  }
  Mirror(sheet, cells.runs);
  if (!changed.variables.empty()) edits.emplace_back(std::move(changed));
  if (!cells.runs.empty()) edits.emplace_back(std::move(cells));
  if (right <= sheet.VariableCount()) return edits;
  SheetVariables added;
  const std::size_t first = std::max(column, sheet.VariableCount());
  const std::vector<std::string> free = FreeVariableNames(sheet, right - sheet.VariableCount());
  for (std::size_t place = sheet.VariableCount(); place < right; ++place) {
    const bool isNamed = place >= first && !texts.names.empty();
    const std::string& name = isNamed ? texts.names[place - column] : free[place - sheet.VariableCount()];
    added.variables.push_back(
        NewVariable(name, cases, row, place < first ? TextRows() : rows, place - column, locale));
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
  RequireChangeableShape(sheet);
  Edits edits;
  edits.emplace_back(AddCases{sheet.Name(), at, {count, {}, {}, {}}});
  return edits;
}

Edits InsertEmptyVariables(const Spreadsheet& sheet, std::size_t at, std::size_t count) {
  RequireChangeableShape(sheet);
  SheetVariables added;
  for (const std::string& name : FreeVariableNames(sheet, count))
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
