#include "apps/desktop/documents/edit.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

#include "host/base/error.h"
#include "host/base/quoted.h"

namespace brenvolt::desktop {
namespace {

Spreadsheet& SheetCalled(Workbook& workbook, const std::string& name) {
  return workbook.SheetAt(PlaceOfSheet(workbook, name));
}

void RequireVariable(const Spreadsheet& sheet, std::size_t variable) {
  if (variable < sheet.VariableCount()) return;
  throw Error("there is no variable " + std::to_string(variable + 1), sheet.Name());
}

void RequireFree(const Workbook& workbook, const std::string& name) {
  if (name.empty()) throw Error("a sheet needs a name");
  if (workbook.Find(name) != nullptr) throw Error("the project already has a sheet called " + Quoted(name));
}

class Applier {
 public:
  explicit Applier(Workbook& workbook) : workbook_(workbook) {}

  Edit operator()(SetCells edit) {
    Spreadsheet& sheet = SheetCalled(workbook_, edit.sheet);
    for (const CellRun& run : edit.runs) {
      RequireVariable(sheet, run.variable);
      if (run.firstCase > sheet.CaseCount() || run.values.size() > sheet.CaseCount() - run.firstCase)
        throw Error("there are only " + std::to_string(sheet.CaseCount()) + " cases", sheet.Name());
    }
    for (CellRun& run : edit.runs) {
      const auto cells =
          sheet.VariableAt(run.variable).MutableValues().subspan(run.firstCase, run.values.size());
      std::ranges::swap_ranges(cells, run.values);
    }
    // Runs that overlap are undone backwards.
    std::ranges::reverse(edit.runs);
    return edit;
  }

  Edit operator()(SetFacts edit) {
    Spreadsheet& sheet = SheetCalled(workbook_, edit.sheet);
    for (const auto& [variable, facts] : edit.variables) RequireVariable(sheet, variable);
    for (auto& [place, facts] : edit.variables) {
      Variable& variable = sheet.VariableAt(place);
      VariableFacts former = FactsOf(variable);
      GiveFacts(facts, variable);
      facts = std::move(former);
    }
    std::ranges::reverse(edit.variables);
    return edit;
  }

  Edit operator()(SetConditions edit) {
    Spreadsheet& sheet = SheetCalled(workbook_, edit.sheet);
    if (edit.weight) RequireVariable(sheet, *edit.weight);
    if (!edit.selection.accepted.empty() && edit.selection.accepted.size() != sheet.CaseCount())
      throw Error("the selection is for a different number of cases than the sheet has", sheet.Name());
    SetConditions former{edit.sheet, sheet.WeightVariable(), sheet.Selection()};
    sheet.SetWeightVariable(edit.weight);
    sheet.SetSelection(std::move(edit.selection));
    return former;
  }

  Edit operator()(AddVariables edit) {
    const std::size_t count = edit.variables.variables.size();
    InsertVariables(SheetCalled(workbook_, edit.sheet), edit.at, std::move(edit.variables));
    return DropVariables{edit.sheet, edit.at, count};
  }
  Edit operator()(const DropVariables& edit) {
    return AddVariables{edit.sheet, edit.at,
                        RemoveVariables(SheetCalled(workbook_, edit.sheet), edit.at, edit.count)};
  }
  Edit operator()(const AddCases& edit) {
    InsertCases(SheetCalled(workbook_, edit.sheet), edit.at, edit.cases);
    return DropCases{edit.sheet, edit.at, edit.cases.count};
  }
  Edit operator()(const DropCases& edit) {
    return AddCases{edit.sheet, edit.at,
                    RemoveCases(SheetCalled(workbook_, edit.sheet), edit.at, edit.count)};
  }

  Edit operator()(AddSheet edit) {
    RequireFree(workbook_, edit.sheet->Name());
    return DropSheet{InsertSheet(workbook_, edit.at, std::move(edit.sheet)).Name()};
  }
  Edit operator()(const DropSheet& edit) {
    const std::size_t at = PlaceOfSheet(workbook_, edit.sheet);
    return AddSheet{at, workbook_.Remove(edit.sheet)};
  }
  Edit operator()(const NameSheet& edit) {
    Spreadsheet& sheet = SheetCalled(workbook_, edit.sheet);
    if (edit.name != edit.sheet) RequireFree(workbook_, edit.name);
    sheet.SetName(edit.name);
    return NameSheet{edit.name, edit.sheet};
  }

 private:
  Workbook& workbook_;
};

bool IsSameCode(double a, double b) {
  return (std::isnan(a) && std::isnan(b)) ||
         std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

// Labels only come to a variable, so that one without them takes its place.
void DropLabels(Variable& variable) {
  Variable bare(variable.Name(), 0);
  bare.SetIdentifier(variable.Identifier());
  bare.AssignValues({variable.Values().begin(), variable.Values().end()});
  for (const auto& [key, text] : variable.Properties()) bare.SetProperty(key, text);
  variable = std::move(bare);
}

}  // namespace

VariableFacts FactsOf(const Variable& variable) {
  return {variable.Name(), variable.Type(), variable.MissingCode(), variable.Labels(), variable.Properties()};
}

void GiveFacts(const VariableFacts& facts, Variable& variable) {
  const auto isKept = [&facts](const auto& label) { return facts.labels.contains(label.first); };
  if (!std::ranges::all_of(variable.Labels(), isKept)) DropLabels(variable);
  variable.SetName(facts.name);
  variable.SetType(facts.type);
  variable.SetMissingCode(facts.missingCode);
  for (const auto& [value, text] : facts.labels) variable.SetLabel(value, text);
  if (variable.Properties() == facts.properties) return;
  const auto former = variable.Properties();
  for (const auto& [key, text] : former) variable.RemoveProperty(key);
  for (const auto& [key, text] : facts.properties) variable.SetProperty(key, text);
}

bool AreSame(const VariableFacts& a, const VariableFacts& b) {
  return a.name == b.name && a.type == b.type && IsSameCode(a.missingCode, b.missingCode) &&
         a.labels == b.labels && a.properties == b.properties;
}

const std::string& SheetOf(const Edit& edit) {
  return std::visit(
      [](const auto& one) -> const std::string& {
        if constexpr (requires { one.sheet->Name(); }) {
          return one.sheet->Name();
        } else {
          return one.sheet;
        }
      },
      edit);
}

bool ChangesShape(const Edit& edit) {
  return !std::holds_alternative<SetCells>(edit) && !std::holds_alternative<SetFacts>(edit) &&
         !std::holds_alternative<SetConditions>(edit);
}

Edit Apply(Workbook& workbook, Edit edit) {
  return std::visit(Applier(workbook), std::move(edit));
}

Edits Apply(Workbook& workbook, Edits edits) {
  Edits inverse;
  try {
    for (Edit& edit : edits) inverse.push_back(Apply(workbook, std::move(edit)));
  } catch (const Error&) {
    for (auto done = inverse.rbegin(); done != inverse.rend(); ++done) Apply(workbook, std::move(*done));
    throw;
  }
  std::ranges::reverse(inverse);
  return inverse;
}

}  // namespace brenvolt::desktop
