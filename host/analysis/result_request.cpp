#include "host/analysis/result_request.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "host/automation/dialog_interface.h"
#include "host/base/almost_equal.h"
#include "host/base/error.h"
#include "host/base/number_text.h"
#include "host/formula/expression.h"

namespace brenvolt {
namespace {

using namespace common_member;

std::vector<double> FiniteNumbers(const Variant& value) {
  std::vector<double> numbers;
  for (const Variant& element : value.ToArray()) {
    numbers.push_back(element.ToReal());
    if (!std::isfinite(numbers.back())) throw Error("expected finite numbers, got " + element.ToText());
  }
  return numbers;
}

std::vector<std::string> Texts(const Variant& value) {
  std::vector<std::string> texts;
  for (const Variant& element : value.ToArray()) texts.push_back(element.ToText());
  return texts;
}

void TakeSelection(const Variant& value, CaseChoice& cases) {
  CaseChoice changed = cases;
  changed.condition.clear();
  changed.numbers.clear();
  if (value.IsText()) changed.condition = Trim(value.ToText());
  if (!value.IsText() && !value.IsEmpty()) {
    for (const Variant& element : value.ToArray()) changed.numbers.push_back(element.ToInteger());
  }
  cases = std::move(changed);
}

void TakeCodes(const Variant& value, CaseChoice& cases) {
  Variant::Array elements;
  if (!value.IsEmpty()) elements = value.ToArray();
  if (elements.size() == 1) throw Error("expected a variable and its codes, got no code");
  cases.codeVariable = elements.empty() ? Variant() : elements.front();
  cases.codes.assign(elements.begin() + (elements.empty() ? 0 : 1), elements.end());
}

bool TakeLeavesOut(const Variant& value) {
  const std::int32_t option = value.IsEmpty() ? 0 : value.ToInteger();
  if (option != 0 && option != 1)
    throw Error("expected 0, which takes the selected cases, or 1, which takes all others, got " +
                value.ToText());
  return option == 1;
}

void KeepNumbers(const std::vector<std::int32_t>& numbers, std::vector<std::uint8_t>& chosen) {
  std::ranges::fill(chosen, std::uint8_t{0});
  for (const std::int32_t number : numbers) {
    if (number < 1 || static_cast<std::size_t>(number) > chosen.size())
      throw Error("there is no case " + std::to_string(number) + "; there are " +
                  std::to_string(chosen.size()));
    chosen[static_cast<std::size_t>(number - 1)] = 1;
  }
}

const Variable& CodeVariable(const Variant& given, const Spreadsheet& sheet) {
  if (given.IsText()) {
    if (const auto place = sheet.FindVariable(given.ToText())) return sheet.VariableAt(*place);
    throw Error("there is no variable " + given.ToText(), "sheet " + sheet.Name());
  }
  const std::int32_t number = given.ToInteger();
  if (number < 1 || static_cast<std::size_t>(number) > sheet.VariableCount())
    throw Error("there is no variable " + std::to_string(number), "sheet " + sheet.Name());
  return sheet.VariableAt(static_cast<std::size_t>(number - 1));
}

// A code is a number or the text that stands for it.
double CodeOf(const Variable& variable, const Variant& code) {
  if (!code.IsText()) return code.ToReal();
  const std::string text = code.ToText();
  for (const auto& [value, label] : variable.Labels()) {
    if (label == text) return value;
  }
  if (const auto number = ParseNumber(text)) return *number;
  throw Error("there is no code " + text, "variable " + variable.Name());
}

void KeepCodes(const CaseChoice& choice, const Spreadsheet& sheet, std::vector<std::uint8_t>& chosen) {
  const Variable& variable = CodeVariable(choice.codeVariable, sheet);
  std::vector<double> codes;
  for (const Variant& code : choice.codes) codes.push_back(CodeOf(variable, code));
  for (std::size_t i = 0; i < chosen.size(); ++i) {
    const double value = variable.Values()[i];
    const bool isOne = std::ranges::any_of(codes, [&](double code) { return AlmostEqual(value, code); });
    if (!isOne || variable.IsMissing(i)) chosen[i] = 0;
  }
}

}  // namespace

void ResultRequest::Take(DispatchId member, const Variant& value) {
  switch (member) {
    case kResultsOption:
      kind = value.ToInteger();
      return;
    case kResultsOutputFields:
      columns = value.IsEmpty() ? std::vector<std::string>() : Texts(value);
      return;
    case kResultsSelection:
      return TakeSelection(value, cases);
    case kResultsSelectionOption:
      cases.leavesOut = TakeLeavesOut(value);
      return;
    case kResultsCodes:
      return TakeCodes(value, cases);
    case kResultsValues:
      values = value.IsEmpty() ? std::vector<double>() : FiniteNumbers(value);
      return;
    case kResultsSaveFileName:
      file = value.ToText();
      return;
    default:
      throw Error("is not part of a request");
  }
}

void ResultRequest::RequireUsed() const {
  const auto refuse = [](const char* member) {
    throw Error(std::string(member) + " has no meaning for this result");
  };
  if (kind) refuse("ResultsOption");
  if (!columns.empty()) refuse("ResultsOutputFields");
  if (cases.HasSelection()) refuse("ResultsSelection");
  if (cases.leavesOut) refuse("ResultsSelectionOption");
  if (!cases.codes.empty()) refuse("ResultsCodes");
  if (!values.empty()) refuse("ResultsValues");
}

std::vector<std::uint8_t> CasesMeeting(const std::string& condition, const Spreadsheet& sheet,
                                       std::string_view sourceName) {
  std::vector<FormulaVariable> variables;
  for (std::size_t i = 0; i < sheet.VariableCount(); ++i) {
    const Variable& variable = sheet.VariableAt(i);
    variables.push_back({variable.Name(), variable.Values(), variable.MissingCode()});
  }
  const auto truth = EvaluateOverCases(condition, variables, sheet.CaseCount(), sourceName);
  std::vector<std::uint8_t> met;
  met.reserve(truth.size());
  for (const double value : truth) met.push_back(!std::isnan(value) && value != 0 ? 1 : 0);
  return met;
}

std::vector<std::uint8_t> ChosenCases(const CaseChoice& choice, const Spreadsheet& sheet) {
  if (choice.leavesOut && !choice.HasSelection())
    throw Error("ResultsSelectionOption has no effect without ResultsSelection, whose cases it leaves out");
  std::vector<std::uint8_t> chosen(sheet.CaseCount(), 1);
  if (!choice.condition.empty()) chosen = CasesMeeting(choice.condition, sheet, "ResultsSelection");
  if (!choice.numbers.empty()) KeepNumbers(choice.numbers, chosen);
  if (choice.leavesOut) {
    for (std::uint8_t& flag : chosen) flag = flag == 0 ? 1 : 0;
  }
  if (!choice.codes.empty()) KeepCodes(choice, sheet, chosen);
  if (std::ranges::count(chosen, 1) == 0) throw Error("no case is chosen", "sheet " + sheet.Name());
  return chosen;
}

std::unique_ptr<Spreadsheet> PartOf(const Spreadsheet& sheet, const std::vector<std::size_t>& variables,
                                    const std::vector<std::uint8_t>& chosen) {
  std::vector<std::size_t> cases;
  for (std::size_t i = 0; i < sheet.CaseCount(); ++i) {
    if (chosen.empty() || chosen[i] != 0) cases.push_back(i);
  }
  auto part = std::make_unique<Spreadsheet>(sheet.Name());
  part->SetKind(sheet.Kind());
  part->SetTitle(sheet.Title());
  part->SetHeader(sheet.Header());
  for (const std::size_t place : variables) {
    Variable variable = sheet.VariableAt(place);
    std::vector<double> values;
    values.reserve(cases.size());
    for (const std::size_t i : cases) values.push_back(variable.Values()[i]);
    variable.AssignValues(std::move(values));
    part->AddVariable(std::move(variable));
  }
  std::vector<std::string> names;
  std::vector<std::string> identifiers;
  for (const std::size_t i : cases) {
    if (sheet.HasCaseNames()) names.push_back(sheet.CaseName(i));
    identifiers.emplace_back(sheet.CaseIdentifier(i));
  }
  if (sheet.HasCaseNames()) part->SetCaseNames(std::move(names));
  part->SetCaseIdentifiers(std::move(identifiers));
  return part;
}

std::vector<std::size_t> PlacesOfColumns(const Spreadsheet& table, const std::vector<std::string>& columns) {
  std::vector<std::size_t> places;
  std::string known;
  if (!columns.empty() && table.Kind() == SheetKind::kMatrix)
    throw Error("ResultsOutputFields has no meaning for a matrix");
  for (std::size_t i = 0; i < table.VariableCount(); ++i) {
    const Variable& variable = table.VariableAt(i);
    known += (i > 0 ? ", " : "") + (variable.Identifier().empty() ? variable.Name() : variable.Identifier());
  }
  for (const std::string& column : columns) {
    std::size_t place = 0;
    while (place < table.VariableCount() && table.VariableAt(place).Identifier() != column &&
           table.VariableAt(place).Name() != column)
      ++place;
    if (place == table.VariableCount())
      throw Error("there is no column " + column + "; there are " + known, "table " + table.Name());
    places.push_back(place);
  }
  return places;
}

}  // namespace brenvolt
