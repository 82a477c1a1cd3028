#include "brv_sra/simulation/dialogs/design_dialog.h"

#include <algorithm>
#include <set>
#include <utility>

#include "brv_sra/distributions/sheet_property_store.h"
#include "brv_sra/frame/attached_input.h"
#include "brv_sra/frame/distribution_texts.h"
#include "brv_sra/frame/fault_message.h"
#include "brv_sra/frame/sequence_steps.h"
#include "brv_sra/matrix/matrix_state.h"
#include "brv_sra/resources/dialog_templates.h"
#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/strings.h"
#include "brv_sra/simulation/dialogs/design_correlations_dialog.h"
#include "brv_sra/simulation/dialogs/design_defaults_dialog.h"
#include "brv_sra/simulation/dialogs/design_distribution_dialog.h"
#include "brv_sra/simulation/dialogs/design_user_defined_dialog.h"
#include "brv_sra/simulation/dialogs/input_matrix.h"
#include "host/automation/automation_failure.h"
#include "host/automation/dialog_interface.h"
#include "host/automation/variable_list.h"
#include "host/base/error.h"
#include "host/base/number_text.h"
#include "host/tables/matrix_sheet.h"

namespace brenvolt::sra {
namespace {

using namespace design_dialog;
using Names = std::vector<std::string>;

// A sheet whose variables are named by the design.
bool TakesNames(const Spreadsheet& sheet) {
  return sheet.Kind() == SheetKind::kData && sheet.CaseCount() == 0;
}

Names NumericVariables(const Spreadsheet& sheet) {
  Names names;
  for (std::size_t i = 0; i < sheet.VariableCount(); ++i) {
    const Variable& variable = sheet.VariableAt(i);
    if (variable.Type() == VariableType::kNumeric) names.emplace_back(Trim(variable.Name()));
  }
  return names;
}

void CheckNames(const Names& names) {
  if (names.empty()) throw Error("a design has at least one variable");
  std::set<std::string> seen;
  for (const std::string& name : names) {
    if (name.empty()) throw Error("a variable has no name");
    if (!seen.insert(name).second) throw Error("is there twice", "variable " + name);
  }
}

// A cell of the matrix file that the input is.
void PutCell(Spreadsheet& sheet, std::size_t variable, std::size_t row, double value) {
  sheet.VariableAt(variable).MutableValues()[row] = value;
}

// Writes the design's part of a matrix file into it; variables that are not in the design keep theirs.
void WriteIntoMatrix(const DesignState& design, Spreadsheet& sheet) {
  const MatrixFile file = MatrixOf(design);
  const Names names = VariableNames(sheet);
  const MatrixSummaryRows rows(sheet.CaseCount());
  const auto placeOf = [&](const std::string& name) {
    return static_cast<std::size_t>(std::ranges::find(names, name) - names.begin());
  };
  for (std::size_t i = 0; i < file.variables.size(); ++i) {
    const std::size_t column = placeOf(file.variables[i]);
    PutCell(sheet, column, rows.means, file.means[i]);
    PutCell(sheet, column, rows.standardDeviations, file.standardDeviations[i]);
    for (std::size_t j = 0; j < file.variables.size(); ++j)
      PutCell(sheet, column, placeOf(file.variables[j]), file.correlations[j][i]);
  }
}

}  // namespace

DesignedVariable& CDesignSimulation::VariableAt(std::int32_t place) const {
  const std::size_t count = Design().variables.size();
  if (place < 1 || static_cast<std::size_t>(place) > count)
    throw Error("the design has no variable " + std::to_string(place) + "; it has " + std::to_string(count));
  return Design().variables[static_cast<std::size_t>(place) - 1];
}

// Who comes back to a design has said already what its input is.
bool CDesignSimulation::IsBegun() const {
  if (Design().variables.empty() || GetInputTable() == nullptr) return false;
  const Names known = NumericVariables(*GetInputTable());
  return std::ranges::all_of(Design().variables, [&](const DesignedVariable& variable) {
    return std::ranges::find(known, variable.name) != known.end();
  });
}

// A person may make a matrix file of the input's variables, which is then the input; the variables keep the
// distributions that they carry in the former one.
void CDesignSimulation::OnInitDialog() {
  Spreadsheet* const former = GetInputTable();
  IsBegun() ? Services().ValidateInputMatrixFile() : Services().ValidateOrDesignInputMatrixFile();
  ReadInput();
  if (former != nullptr && former != GetInputTable()) ReadFitted(*former);
  Controls().SetChecked(kUseFitted, Design().source == ParameterSource::kFitted);
  ShowVariables();
}

// What was designed before for variables of the same names stays.
void CDesignSimulation::ReadInput() {
  Spreadsheet* const input = GetInputTable();
  if (input == nullptr) return;
  SetDesignVariables(Design(), NumericVariables(*input));
  ReadFitted(*input);
  const MatrixState& matrix = Services().Matrix();
  if (matrix.attached) {
    TakeMatrix(matrix.file, Design());
  } else {
    TakeKeptCorrelations();
  }
}

// The simulation follows the design's matrix from OK on, so it must begin with what is kept. Means and deviations come
// from the distributions, which may change here. A matrix that is not valid is told and not taken.
void CDesignSimulation::TakeKeptCorrelations() {
  Attempt([this] {
    if (const auto kept = KeptMatrix(Services())) TakeCorrelations(*kept, Design());
  });
}

// A variable whose properties cannot be read counts as one without, so that it can be given a distribution.
void CDesignSimulation::ReadFitted(Spreadsheet& sheet) {
  const SheetPropertyStore store = PropertiesOf(sheet);
  const Names names = VariableNames(sheet);
  for (DesignedVariable& variable : Design().variables) {
    const auto found = std::ranges::find(names, variable.name);
    if (found == names.end()) continue;
    auto saved = SavedDistributions(store, static_cast<int>(found - names.begin()) + 1);
    if (!saved) ShowFault(Analysis(), saved.Reason());
    if (saved && !saved->empty()) variable.fitted = *std::move(saved);
  }
}

void CDesignSimulation::SetVariables(const Names& names) {
  CheckNames(names);
  const Spreadsheet* const input = GetInputTable();
  if (input == nullptr || TakesNames(*input)) {
    AddToInput(names);
  } else {
    const Names known = NumericVariables(*input);
    for (const std::string& name : names) {
      if (std::ranges::find(known, name) == known.end())
        throw Error("no numeric variable called " + name, "sheet " + input->Name());
    }
  }
  SetDesignVariables(Design(), names);
  ReadFitted(*GetInputTable());
  ShowVariables();
}

void CDesignSimulation::AddToInput(const Names& names) {
  Spreadsheet* sheet = GetInputTable();
  if (sheet == nullptr) {
    if (Analysis().Document() == nullptr) throw Error("no document takes an input");
    const auto document =
        std::make_shared<CAnalysisTableDoc>(std::make_unique<Spreadsheet>(szLoadResString(kDesignSheetName)));
    ShowAndAttachInput(Analysis(), document);
    sheet = GetInputTable();
  }
  const Names known = VariableNames(*sheet);
  Analysis().Interface().Change([&] {
    for (const std::string& name : names) {
      if (std::ranges::find(known, name) == known.end()) sheet->AddVariable(Variable(name, 0));
    }
  });
}

void CDesignSimulation::RequireParticipants() const {
  const auto takesPart = [this](const DesignedVariable& variable) {
    return TakesPart(variable, Design().source);
  };
  if (std::ranges::none_of(Design().variables, takesPart)) throw Error(szLoadResString(kMsgDesignNothing));
}

void CDesignSimulation::SaveToInput() {
  RequireParticipants();
  Spreadsheet& input = *GetInputTable();
  SheetPropertyStore store = PropertiesOf(input);
  const bool isMatrix = Services().Matrix().attached;
  Analysis().Interface().Change([&] {
    SaveDesign(store, VariableNames(input), Design());
    if (isMatrix) WriteIntoMatrix(Design(), input);
  });
  if (!isMatrix) return;
  Services().ValidateInputMatrixFile();
}

std::shared_ptr<CAnalysisTableDoc> CDesignSimulation::ShowCorrelationMatrix() {
  RequireParticipants();
  const MatrixFile file = MatrixOf(Design());
  const auto document = std::make_shared<CAnalysisTableDoc>(ValueOrThrow(MakeMatrixFile(file)));
  Present(document);
  Services().Matrix().saved = file;
  return document;
}

std::string_view CDesignSimulation::WithoutMeaning(DispatchId resultsMember) const {
  return resultsMember == common_member::kResultsSaveFileName
             ? ""
             : "the dialog makes the correlation matrix alone";
}

// ---- What a person does

DesignedVariable* CDesignSimulation::Highlighted() const {
  const int place = Controls().Selection(kVariableList);
  const bool exists = place >= 0 && static_cast<std::size_t>(place) < Design().variables.size();
  return exists ? &Design().variables[static_cast<std::size_t>(place)] : nullptr;
}

void CDesignSimulation::ShowVariables() {
  Names lines;
  for (const DesignedVariable& variable : Design().variables)
    lines.push_back(DesignLine(variable, Design().source));
  const int place = std::max(0, Controls().Selection(kVariableList));
  Controls().SetItems(kVariableList, std::move(lines));
  Controls().Select(kVariableList, place);
  Controls().Enable(kEditCorrelations, Design().variables.size() > 1);
  Controls().Enable(kEditDefaults, !Design().variables.empty());
  HighlightVariable();
}

void CDesignSimulation::HighlightVariable() {
  const DesignedVariable* variable = Highlighted();
  for (const std::int32_t control : {kTakesPart, kEditDistribution, kEditUserDefined})
    Controls().Enable(control, variable != nullptr);
  Controls().SetChecked(kTakesPart, variable != nullptr && !variable->isLeftOut);
}

bool CDesignSimulation::OnCommand(std::int32_t number) {
  switch (number) {
    case kVariables:
      return AskForVariables();
    case kEditCorrelations:
      return EditCorrelations();
    case kEditDistribution:
      return EditDistribution<DesignSimDistributionModalDlg>();
    case kEditUserDefined:
      return EditDistribution<DesignSimUserDefinedModalDlg>();
    case kEditDefaults:
      return EditDefaults();
    case kSaveToInput:
      return Attempt([this] { SaveToInput(); });
    case kCorrelationMatrix:
      return Attempt([this] { ShowCorrelationMatrix(); });
    default:
      return CSimulationAndRiskModelessDialog::OnCommand(number);
  }
}

// What a person enters is to be simulated.
void CDesignSimulation::TakeOwn(DesignedVariable& variable, DistributionSpecification own) {
  variable.own = std::move(own);
  variable.isLeftOut = false;
  Controls().SetChecked(kUseFitted, false);
  OnControlChanged(kUseFitted);
}

template <class Editor>
bool CDesignSimulation::EditDistribution() {
  DesignedVariable& variable = *Highlighted();
  Editor editor(Services(), variable.name, SimulatedFrom(variable, Design().source));
  if (!editor.DoModal()) return false;
  TakeOwn(variable, editor.Entered());
  return true;
}

bool CDesignSimulation::EditCorrelations() {
  return DesignSimCorrelationParamsModalDlg(Services(), Design()).DoModal();
}

bool CDesignSimulation::EditDefaults() {
  if (!DesignSimDefaultDistributionsModalDlg(Services(), Design()).DoModal()) return false;
  Controls().SetChecked(kUseFitted, Design().source == ParameterSource::kFitted);
  ShowVariables();
  return true;
}

void CDesignSimulation::OnControlChanged(std::int32_t number) {
  switch (number) {
    case kVariableList:
      return HighlightVariable();
    case kTakesPart:
      Highlighted()->isLeftOut = !Controls().IsChecked(kTakesPart);
      return ShowVariables();
    case kUseFitted:
      Design().source =
          Controls().IsChecked(kUseFitted) ? ParameterSource::kFitted : ParameterSource::kUserSpecified;
      return ShowVariables();
    default:
      return;
  }
}

bool CDesignSimulation::AskForVariables() {
  if (GetInputTable() == nullptr) return false;
  VariableQuestion question;
  question.caption = szLoadResString(kDesignSelectVariables);
  question.names = NumericVariables(*GetInputTable());
  question.takesNames = TakesNames(*GetInputTable());
  for (const std::string& name : Design().Names()) {
    const auto place = std::ranges::find(question.names, name) - question.names.begin();
    question.first.push_back(VariableNumberOf(static_cast<std::size_t>(place)));
  }
  if (!Analysis().Interface().SelectVariables(question)) return false;
  Names chosen;
  for (const std::int16_t number : question.first)
    chosen.push_back(question.names.at(static_cast<std::size_t>(number - 1)));
  return Attempt([&] { SetVariables(chosen); });
}

bool CDesignSimulation::OnOk() {
  const bool saved = Attempt([this] {
    SaveToInput();
    Services().Matrix().saved = MatrixOf(Design());
  });
  if (!saved) return false;
  SimulationOptions& options = Services().Simulation().options;
  options.source = Design().source;
  options.variables.clear();
  options.excluded.clear();
  const Names names = VariableNames(*GetInputTable());
  for (const DesignedVariable& variable : Design().variables) {
    const bool takesPart = TakesPart(variable, Design().source);
    if (!takesPart && variable.fitted.empty()) continue;
    const auto place = std::ranges::find(names, variable.name) - names.begin();
    const std::int16_t number = VariableNumberOf(static_cast<std::size_t>(place));
    options.variables.push_back(number);
    if (!takesPart) options.excluded.push_back(number);
  }
  GoToStep(step::kSimulation);
  return true;
}

}  // namespace brenvolt::sra
