#include "host/tables/editing/sheet_structure.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "host/base/error.h"
#include "host/base/number_text.h"
#include "host/base/quoted.h"

namespace brenvolt {
namespace {

std::string Counted(std::size_t count, const char* things) {
  return std::to_string(count) + " " + things;
}

void RequirePlaces(const Spreadsheet& sheet, std::size_t at, std::size_t count, std::size_t present,
                   const char* things) {
  if (at <= present && count <= present - at) return;
  throw Error("there are only " + Counted(present, things), sheet.Name());
}

std::vector<std::string> CaseNamesOf(const Spreadsheet& sheet) {
  std::vector<std::string> names;
  if (!sheet.HasCaseNames() || sheet.AreCasesNumbered()) return names;
  for (std::size_t i = 0; i < sheet.CaseCount(); ++i) names.push_back(sheet.CaseName(i));
  return names;
}

std::vector<std::string> CaseIdentifiersOf(const Spreadsheet& sheet) {
  std::vector<std::string> identifiers;
  for (std::size_t i = 0; i < sheet.CaseCount() && !sheet.CaseIdentifier(i).empty(); ++i)
    identifiers.emplace_back(sheet.CaseIdentifier(i));
  return identifiers;
}

// A sheet's variables, taken out of it.
std::vector<Variable> TakeAll(Spreadsheet& sheet) {
  std::vector<Variable> variables;
  variables.reserve(sheet.VariableCount());
  for (std::size_t i = 0; i < sheet.VariableCount(); ++i) variables.push_back(std::move(sheet.VariableAt(i)));
  return variables;
}

struct Content {
  std::vector<Variable> variables;
  std::size_t cases = 0;
  std::vector<std::string> caseNames;
  std::optional<std::size_t> weight;
  CaseSelection selection;
};

// Makes this the content of a sheet that keeps everything else.
void Refill(Spreadsheet& sheet, Content content) {
  Spreadsheet filled(sheet.Name(), content.cases);
  filled.SetKind(sheet.Kind());
  filled.SetTitle(sheet.Title());
  filled.SetHeader(sheet.Header());
  filled.SetCaseIdentifiers(CaseIdentifiersOf(sheet));
  if (sheet.AreCasesNumbered()) filled.NumberCases();
  if (!content.caseNames.empty()) filled.SetCaseNames(std::move(content.caseNames));
  for (Variable& variable : content.variables) filled.AddVariable(std::move(variable));
  filled.SetWeightVariable(content.weight);
  filled.SetSelection(std::move(content.selection));
  sheet = std::move(filled);
}

template <class T>
void InsertInto(std::vector<T>& all, std::size_t at, std::vector<T> more) {
  all.insert(all.begin() + static_cast<std::ptrdiff_t>(at), std::make_move_iterator(more.begin()),
             std::make_move_iterator(more.end()));
}

template <class T>
std::vector<T> TakeFrom(std::vector<T>& all, std::size_t at, std::size_t count) {
  const auto begin = all.begin() + static_cast<std::ptrdiff_t>(at);
  const auto end = begin + static_cast<std::ptrdiff_t>(count);
  std::vector<T> taken(std::make_move_iterator(begin), std::make_move_iterator(end));
  all.erase(begin, end);
  return taken;
}

std::vector<double> Values(const Variable& variable) {
  return {variable.Values().begin(), variable.Values().end()};
}

}  // namespace

void InsertVariables(Spreadsheet& sheet, std::size_t at, SheetVariables variables) {
  RequirePlaces(sheet, at, 0, sheet.VariableCount(), "variables");
  for (const Variable& variable : variables.variables) {
    if (variable.Size() != sheet.CaseCount())
      throw Error("variable " + variable.Name() + " has " + Counted(variable.Size(), "cases") +
                      ", the sheet has " + std::to_string(sheet.CaseCount()),
                  sheet.Name());
  }
  const std::size_t count = variables.variables.size();
  std::optional<std::size_t> weight = sheet.WeightVariable();
  if (weight && *weight >= at) *weight += count;
  if (variables.weight) weight = at + *variables.weight;
  std::vector<Variable> all = TakeAll(sheet);
  InsertInto(all, at, std::move(variables.variables));
  Refill(sheet, {std::move(all), sheet.CaseCount(), CaseNamesOf(sheet), weight, sheet.Selection()});
}

SheetVariables RemoveVariables(Spreadsheet& sheet, std::size_t at, std::size_t count) {
  RequirePlaces(sheet, at, count, sheet.VariableCount(), "variables");
  SheetVariables removed;
  std::optional<std::size_t> weight = sheet.WeightVariable();
  if (weight && *weight >= at) {
    if (*weight < at + count) removed.weight = *weight - at;
    weight = removed.weight ? std::nullopt : std::optional(*weight - count);
  }
  std::vector<Variable> all = TakeAll(sheet);
  removed.variables = TakeFrom(all, at, count);
  Refill(sheet, {std::move(all), sheet.CaseCount(), CaseNamesOf(sheet), weight, sheet.Selection()});
  return removed;
}

void InsertCases(Spreadsheet& sheet, std::size_t at, const SheetCases& cases) {
  RequirePlaces(sheet, at, 0, sheet.CaseCount(), "cases");
  if (!cases.values.empty() && cases.values.size() != sheet.VariableCount())
    throw Error("there are values for " + Counted(cases.values.size(), "variables") + ", the sheet has " +
                    std::to_string(sheet.VariableCount()),
                sheet.Name());
  if (at == sheet.CaseCount() && cases.values.empty() && cases.names.empty() && cases.accepted.empty())
    return sheet.AddCases(cases.count);
  Content content{TakeAll(sheet), sheet.CaseCount() + cases.count, CaseNamesOf(sheet), sheet.WeightVariable(),
                  sheet.Selection()};
  for (std::size_t v = 0; v < content.variables.size(); ++v) {
    Variable& variable = content.variables[v];
    std::vector<double> values = Values(variable);
    InsertInto(
        values, at,
        cases.values.empty() ? std::vector<double>(cases.count, variable.MissingCode()) : cases.values[v]);
    values.resize(content.cases, variable.MissingCode());
    variable.AssignValues(std::move(values));
  }
  if (!content.caseNames.empty() || !cases.names.empty()) {
    content.caseNames.resize(sheet.CaseCount());
    std::vector<std::string> names = cases.names;
    names.resize(cases.count);
    InsertInto(content.caseNames, at, std::move(names));
  }
  if (!content.selection.accepted.empty()) {
    std::vector<std::uint8_t> accepted = cases.accepted;
    accepted.resize(cases.count, 1);
    InsertInto(content.selection.accepted, at, std::move(accepted));
  }
  Refill(sheet, std::move(content));
}

SheetCases RemoveCases(Spreadsheet& sheet, std::size_t at, std::size_t count) {
  RequirePlaces(sheet, at, count, sheet.CaseCount(), "cases");
  SheetCases removed;
  removed.count = count;
  Content content{TakeAll(sheet), sheet.CaseCount() - count, CaseNamesOf(sheet), sheet.WeightVariable(),
                  sheet.Selection()};
  for (Variable& variable : content.variables) {
    std::vector<double> values = Values(variable);
    removed.values.push_back(TakeFrom(values, at, count));
    variable.AssignValues(std::move(values));
  }
  if (!content.caseNames.empty()) removed.names = TakeFrom(content.caseNames, at, count);
  if (!content.selection.accepted.empty()) removed.accepted = TakeFrom(content.selection.accepted, at, count);
  Refill(sheet, std::move(content));
  return removed;
}

void RequireFreeName(const Spreadsheet& sheet, std::size_t at, std::string_view name) {
  if (Trim(name).empty()) throw Error("a variable needs a name", sheet.Name());
  for (std::size_t i = 0; i < sheet.VariableCount(); ++i) {
    if (i != at && sheet.VariableAt(i).Name() == name)
      throw Error("variable " + std::to_string(i + 1) + " is called " + Quoted(name) +
                      " already; names tell variables apart",
                  sheet.Name());
  }
}

Spreadsheet& InsertSheet(Workbook& workbook, std::size_t at, std::unique_ptr<Spreadsheet> sheet) {
  if (at > workbook.SheetCount())
    throw Error("there are only " + Counted(workbook.SheetCount(), "sheets"), sheet->Name());
  Spreadsheet& added = workbook.Add(std::move(sheet));
  for (std::size_t following = workbook.SheetCount() - 1 - at; following > 0; --following)
    workbook.Add(workbook.Remove(std::string(workbook.SheetAt(at).Name())));
  return added;
}

std::size_t PlaceOfSheet(const Workbook& workbook, std::string_view name) {
  for (std::size_t i = 0; i < workbook.SheetCount(); ++i) {
    if (workbook.SheetAt(i).Name() == name) return i;
  }
  throw Error("the project has no sheet called " + Quoted(name));
}

}  // namespace brenvolt
