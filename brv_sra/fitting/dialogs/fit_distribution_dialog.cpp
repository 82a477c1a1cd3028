#include "brv_sra/fitting/dialogs/fit_distribution_dialog.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <new>
#include <span>
#include <utility>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/fitting/dialogs/fit_options_dialog.h"
#include "brv_sra/fitting/dialogs/fit_variable_inputs_dialog.h"
#include "brv_sra/fitting/dialogs/no_valid_variables.h"
#include "brv_sra/fitting/estimation.h"
#include "brv_sra/fitting/fit_run.h"
#include "brv_sra/frame/captioned_progress.h"
#include "brv_sra/frame/fault_message.h"
#include "brv_sra/frame/sequence_steps.h"
#include "brv_sra/resources/dialog_templates.h"
#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/strings.h"
#include "host/base/error.h"

namespace brenvolt::sra {
namespace {

using namespace fit_dialog;

// Null for no variable, and for one that is no longer there.
template <class Specification>
Specification* At(std::vector<Specification>& specifications, int index) {
  const auto place = static_cast<std::size_t>(index);
  return index >= 0 && place < specifications.size() ? &specifications[place] : nullptr;
}

int FirstOf(const std::vector<std::int16_t>& list) {
  return list.empty() ? -1 : 0;
}

bool IsPlaceIn(const std::vector<std::int16_t>& list, int index) {
  return index >= 0 && index < static_cast<int>(list.size());
}

void RequirePlace(const std::vector<std::int16_t>& list, int position) {
  if (!IsPlaceIn(list, position - 1)) throw Error("no variable " + std::to_string(position) + " in the list");
}

// The three buttons under a tab's check boxes.
enum class CheckAll : std::uint8_t { kSelect, kClear, kToggle };

void ChangeChecks(CAnalysisDialog& dialog, std::span<const std::int32_t> checks, CheckAll how) {
  for (const std::int32_t check : checks) {
    const bool toggled = !dialog.Controls().IsChecked(check);
    dialog.Check(check, how == CheckAll::kToggle ? toggled : how == CheckAll::kSelect);
  }
}

}  // namespace

void CFitDistribution::OnInitDialog() {
  if (!ListsAreOfInput()) Specification() = {};
  const bool pairwise = Specification().deletion == DeletionMode::kPairwise;
  Controls().SetChecked(pairwise ? kPairwise : kCasewise, true);
  RefreshLists();
}

// False when the host has changed the input since the variables were selected, and some are no longer there.
bool CFitDistribution::ListsAreOfInput() const {
  const std::size_t count = GetInputTable() != nullptr ? GetInputTable()->VariableCount() : 0;
  const auto isThere = [count](std::int16_t number) { return static_cast<std::size_t>(number) <= count; };
  return std::ranges::all_of(Specification().continuous, isThere) &&
         std::ranges::all_of(Specification().discrete, isThere);
}

bool CFitDistribution::OnCommand(std::int32_t number) {
  const auto change = [this](std::span<const std::int32_t> checks, CheckAll how) {
    ChangeChecks(*this, checks, how);
    return true;
  };
  switch (number) {
    case kVariables:
      return AskForVariables();
    case kOptions:
      return EditOptions();
    case kOpenData:
      return OpenData();
    case kContinuousPrevious:
      return MoveContinuous(shownContinuous_ - 1);
    case kContinuousNext:
      return MoveContinuous(shownContinuous_ + 1);
    case kContinuousSelectAll:
      return change(ContinuousChecks(), CheckAll::kSelect);
    case kContinuousClearAll:
      return change(ContinuousChecks(), CheckAll::kClear);
    case kContinuousToggle:
      return change(ContinuousChecks(), CheckAll::kToggle);
    case kDiscretePrevious:
      return MoveDiscrete(shownDiscrete_ - 1);
    case kDiscreteNext:
      return MoveDiscrete(shownDiscrete_ + 1);
    case kDiscreteSelectAll:
      return change(DiscreteChecks(), CheckAll::kSelect);
    case kDiscreteClearAll:
      return change(DiscreteChecks(), CheckAll::kClear);
    case kDiscreteToggle:
      return change(DiscreteChecks(), CheckAll::kToggle);
    default:
      return CSimulationAndRiskModelessDialog::OnCommand(number);
  }
}

void CFitDistribution::OnControlChanged(std::int32_t number) {
  if (number == kPairwise || number == kCasewise) {
    Specification().deletion =
        Controls().IsChecked(kPairwise) ? DeletionMode::kPairwise : DeletionMode::kCasewise;
  }
  // A variable whose inputs are wrong stays the shown one.
  if (number == kContinuousVariable && !MoveContinuous(Controls().Selection(number))) {
    Controls().Select(number, shownContinuous_);
  }
  if (number == kDiscreteVariable && !MoveDiscrete(Controls().Selection(number))) {
    Controls().Select(number, shownDiscrete_);
  }
  if (Controls().At(number).kind == ControlKind::kCheckBox) FillUsualInput(Controls(), number);
}

bool CFitDistribution::EditOptions() {
  FitOptionsModalDlg options(Services());
  options.DoModal();
  return true;
}

// A new input has a specification of its own. A person who does not want to fit it has no use for the dialog.
bool CFitDistribution::OpenData() {
  if (!Services().OpenData()) return false;
  OnInitDialog();
  if (!Services().MayFitInput()) GoBack();
  return true;
}

bool CFitDistribution::AskForVariables() {
  if (GetInputTable() == nullptr) return false;
  try {
    VariableQuestion question;
    question.caption = szLoadResString(kFitSelectVariables);
    question.firstListCaption = szLoadResString(kFitSelectContinuous);
    question.secondListCaption = szLoadResString(kFitSelectDiscrete);
    for (std::size_t i = 0; i < GetInputTable()->VariableCount(); ++i) {
      question.names.push_back(NameOf(static_cast<int>(i + 1)));
    }
    question.first = Specification().continuous;
    question.second = Specification().discrete;
    if (!AskUntilTakeable(question)) return false;
    TakeLists(question.first, question.second);
  } catch (const std::bad_alloc&) {
    ShowMessage(kMsgInsufficientMemory);
    return false;
  }
  return true;
}

// Asks again, with a message, until the answer has a variable and no text variable; false when cancelled.
bool CFitDistribution::AskUntilTakeable(VariableQuestion& question) {
  while (Analysis().Interface().SelectVariables(question)) {
    const std::string texts = TextVariablesMessage(question.first, question.second);
    if (!texts.empty()) {
      Analysis().ShowMessage(texts);
      question.first.clear();
      question.second.clear();
    } else if (question.first.empty() && question.second.empty()) {
      ShowMessage(kMsgTooFewVariables);
      question.first = Specification().continuous;
      question.second = Specification().discrete;
    } else {
      return true;
    }
  }
  return false;
}

// The message that refuses the text variables among those selected; empty if there are none.
std::string CFitDistribution::TextVariablesMessage(const std::vector<std::int16_t>& first,
                                                   const std::vector<std::int16_t>& second) const {
  std::string names;
  for (const auto* list : {&first, &second}) {
    for (const std::int16_t number : *list) {
      const Variable& variable = GetInputTable()->VariableAt(static_cast<std::size_t>(number - 1));
      if (variable.Type() == VariableType::kText) names += " " + NameOf(number);
    }
  }
  if (names.empty()) return {};
  return szLoadResString(kMsgTextVariablesSelected) + FormatResource(kFitListSentenceEnd, names);
}

// The lists change together with their specifications, or not at all. The shown variable of a list that did
// not change keeps the contents of its controls.
void CFitDistribution::TakeLists(const std::vector<std::int16_t>& continuous,
                                 const std::vector<std::int16_t>& discrete) {
  FitSpecification& specification = Specification();
  const bool continuousChanged = continuous != specification.continuous;
  const bool discreteChanged = discrete != specification.discrete;
  FitSpecification taken = specification;
  if (continuousChanged) {
    taken.continuous = continuous;
    taken.continuousSpecifications.assign(continuous.size(), NewContinuousSpecification());
  }
  if (discreteChanged) {
    taken.discrete = discrete;
    taken.discreteSpecifications.assign(discrete.size(), NewDiscreteSpecification());
  }
  std::swap(specification, taken);
  ListVariables();
  if (continuousChanged) ShowContinuous(FirstOf(continuous));
  if (discreteChanged) ShowDiscrete(FirstOf(discrete));
}

std::string CFitDistribution::NameOf(int variable) const {
  return OneLineName(*GetInputTable(), variable);
}

std::vector<std::string> CFitDistribution::NamesOf(const std::vector<std::int16_t>& variables) const {
  std::vector<std::string> names;
  names.reserve(variables.size());
  for (const std::int16_t number : variables) names.push_back(NameOf(number));
  return names;
}

void CFitDistribution::ListVariables() {
  const FitSpecification& specification = Specification();
  const auto shown = [this](const std::vector<std::int16_t>& list) {
    return list.empty() ? szLoadResString(kFitListEmpty) : Analysis().dsplst(list);
  };
  Controls().SetText(kContinuousList, shown(specification.continuous));
  Controls().SetText(kDiscreteList, shown(specification.discrete));
  Controls().SetItems(kContinuousVariable, NamesOf(specification.continuous));
  Controls().SetItems(kDiscreteVariable, NamesOf(specification.discrete));
  if (IsPlaceIn(specification.continuous, shownContinuous_)) {
    Controls().Select(kContinuousVariable, shownContinuous_);
  }
  if (IsPlaceIn(specification.discrete, shownDiscrete_)) Controls().Select(kDiscreteVariable, shownDiscrete_);
}

void CFitDistribution::RefreshLists() {
  ListVariables();
  ShowContinuous(FirstOf(Specification().continuous));
  ShowDiscrete(FirstOf(Specification().discrete));
}

void CFitDistribution::ShowContinuous(int index) {
  shownContinuous_ = index;
  Controls().Select(kContinuousVariable, index);
  ShowInputs(Controls(), At(Specification().continuousSpecifications, index));
}

void CFitDistribution::ShowDiscrete(int index) {
  shownDiscrete_ = index;
  Controls().Select(kDiscreteVariable, index);
  ShowInputs(Controls(), At(Specification().discreteSpecifications, index));
}

// The message about a number of mixtures says that it was reverted.
std::int32_t CFitDistribution::ReadShownContinuous() {
  ContinuousSpecification* specification = At(Specification().continuousSpecifications, shownContinuous_);
  if (specification == nullptr) return 0;
  const std::int32_t message = ReadInputs(Controls(), *specification);
  if (message == kMsgInvalidMixtureCountReverted) {
    const auto shown = static_cast<std::size_t>(shownContinuous_);
    const std::int64_t cases = ValidCases(Specification().continuous[shown]);
    Controls().SetDlgItemLong(kMixtures, HighestMixtures(cases));
  }
  return message;
}

std::int32_t CFitDistribution::ReadShownDiscrete() {
  DiscreteSpecification* specification = At(Specification().discreteSpecifications, shownDiscrete_);
  return specification != nullptr ? ReadInputs(Controls(), *specification) : 0;
}

bool CFitDistribution::StoreShownContinuous() {
  const std::int32_t message = ReadShownContinuous();
  if (message != 0) ShowMessage(message);
  return message == 0;
}

bool CFitDistribution::StoreShownDiscrete() {
  const std::int32_t message = ReadShownDiscrete();
  if (message != 0) ShowMessage(message);
  return message == 0;
}

bool CFitDistribution::MoveContinuous(int index) {
  if (!IsPlaceIn(Specification().continuous, index) || !StoreShownContinuous()) return false;
  ShowContinuous(index);
  return true;
}

bool CFitDistribution::MoveDiscrete(int index) {
  if (!IsPlaceIn(Specification().discrete, index) || !StoreShownDiscrete()) return false;
  ShowDiscrete(index);
  return true;
}

void CFitDistribution::ShowContinuousVariable(int position) {
  RequirePlace(Specification().continuous, position);
  if (position - 1 == shownContinuous_) return;
  if (const std::int32_t message = ReadShownContinuous(); message != 0) {
    throw CDispatchException(szLoadResString(message));
  }
  ShowContinuous(position - 1);
}

void CFitDistribution::ShowDiscreteVariable(int position) {
  RequirePlace(Specification().discrete, position);
  if (position - 1 == shownDiscrete_) return;
  if (const std::int32_t message = ReadShownDiscrete(); message != 0) {
    throw CDispatchException(szLoadResString(message));
  }
  ShowDiscrete(position - 1);
}

void CFitDistribution::SelectLists(const std::vector<std::int16_t>& continuous,
                                   const std::vector<std::int16_t>& discrete) {
  const std::string texts = TextVariablesMessage(continuous, discrete);
  if (!texts.empty()) throw CDispatchException(texts);
  TakeLists(continuous, discrete);
}

// Without case weights, which the run counts as well.
std::int64_t CFitDistribution::ValidCases(std::int16_t variable) const {
  const Spreadsheet& sheet = *GetInputTable();
  const Variable& values = sheet.VariableAt(static_cast<std::size_t>(variable - 1));
  std::int64_t valid = 0;
  for (std::size_t i = 0; i < values.Size(); ++i) {
    const bool accepted = !Analysis().CaseSelectionEnabled() || sheet.IsCaseSelected(i);
    if (accepted && !values.IsMissing(i)) ++valid;
  }
  return valid;
}

bool CFitDistribution::EveryVariableHasDistribution() const {
  const auto hasDistribution = [](const auto& variable) {
    return std::ranges::find(variable.fit, true) != variable.fit.end();
  };
  return std::ranges::all_of(Specification().continuousSpecifications, hasDistribution) &&
         std::ranges::all_of(Specification().discreteSpecifications, hasDistribution);
}

// Of all variables, also those that were not shown: what this dialog runs may have been specified elsewhere.
bool CFitDistribution::EveryOffsetIsValid() const {
  for (const ContinuousSpecification& variable : Specification().continuousSpecifications) {
    for (const DistributionCode code : FittedContinuous()) {
      const double offset = variable.offsets[PlaceInKind(code)];
      const bool isNeeded = variable.fit[PlaceInKind(code)] && HasOffset(code);
      if (isNeeded && (IsNotSet(offset) || !std::isfinite(offset))) return false;
    }
  }
  return true;
}

bool CFitDistribution::OnOk() {
  if (!ListsAreOfInput()) OnInitDialog();
  if (Specification().continuous.empty() && Specification().discrete.empty()) {
    AskForVariables();
    return false;
  }
  const std::string texts = TextVariablesMessage(Specification().continuous, Specification().discrete);
  if (!texts.empty()) {
    Analysis().ShowMessage(texts);
    return false;
  }
  if (!StoreShownContinuous() || !StoreShownDiscrete()) return false;
  if (!EveryVariableHasDistribution()) {
    ShowMessage(kMsgNoDistributionSelected);
    return false;
  }
  if (!RunAndKeepResults()) return false;
  GoToStep(step::kFitResults);
  return true;
}

bool CFitDistribution::RunAndKeepResults() {
  std::vector<VariableFit> results;
  CaseCounts cases;
  if (!Run(results, cases)) return false;
  TakeOverMixturesOf(results);
  FitState& state = Services().Fit();
  state.committed = state.specification;
  state.cases = cases;
  state.results = std::move(results);
  state.firstShown = 0;
  const auto firstValid = std::ranges::find_if(state.results, &VariableFit::HasValidFit);
  if (firstValid == state.results.end()) {
    Analysis().ShowMessage(szLoadResString(kMsgNoValidFits), NoValidVariables(state.results).detail);
    return false;
  }
  state.firstShown = static_cast<std::size_t>(firstValid - state.results.begin());
  return true;
}

// The field of the shown variable follows.
void CFitDistribution::TakeOverMixturesOf(const std::vector<VariableFit>& results) {
  const std::string taken = TakeOverMixtures(results, Specification().continuousSpecifications);
  if (taken.empty()) return;
  ShowContinuous(shownContinuous_);
  Analysis().ShowMessage(szLoadResString(kMsgInvalidMixtureCountReverted), taken);
}

// Says which variables have a fault. False if no other is left, so that it is the run's.
bool CFitDistribution::ShowFaults(const std::vector<VariableFit>& results) {
  if (!AnyIsFitted(results)) {
    const auto fault = FirstFault(results);
    if (fault) ShowFault(Analysis(), *fault);
    return !fault;
  }
  for (const VariableFit& fit : results) {
    if (fit.fault) ShowFault(Analysis(), *fit.fault, MessageKind::kReasonOfVariable);
  }
  return true;
}

// False with a message where the run failed, without one where the person cancelled it.
bool CFitDistribution::Run(std::vector<VariableFit>& results, CaseCounts& cases) {
  if (!EveryOffsetIsValid()) {
    ShowMessage(kMsgInvalidInputOffsets);
    return false;
  }
  try {
    const CaseOptions options{Analysis().CaseSelectionEnabled(), Analysis().CaseWeightsEnabled()};
    auto fitted =
        RunFit(*GetInputTable(), Specification(), options, CaptionedProgress(Analysis().Interface()), &cases);
    if (!fitted) {
      ShowFault(Analysis(), fitted.Reason());
      return false;
    }
    results = *std::move(fitted);
    if (!ShowFaults(results)) return false;
    if (Specification().deletion != DeletionMode::kPairwise || AnyIsFitted(results)) return true;
    TakeOverMixturesOf(results);
    ShowFault(Analysis(), NoValidVariables(results));
  } catch (const Error& error) {
    Analysis().ShowMessage(error.what(), error.Where());
  } catch (const std::bad_alloc&) {
    ShowMessage(kMsgInsufficientMemory);
  } catch (const UserCancelled&) {
    return false;
  } catch (const std::exception& error) {
    Analysis().ShowMessage(error.what());
  }
  return false;
}

}  // namespace brenvolt::sra
