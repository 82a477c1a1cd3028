#include "brv_sra/fitting/fit_distribution_dialog.h"

#include <array>
#include <new>

#include "brv_sra/fitting/fit_run.h"
#include "brv_sra/frame/sequence_table.h"
#include "brv_sra/resources/dialog_templates.h"
#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/strings.h"
#include "host/base/error.h"

namespace brenvolt::sra {
namespace {

using namespace fit_dialog;

// A continuous distribution's check box and, where it has one, its offset field.
struct ContinuousControls {
  DistributionCode code;
  std::int32_t check;
  std::int32_t offset;  // 0: none
};
constexpr std::array<ContinuousControls, 3> kContinuousControls{{
    {DistributionCode::kNormal, kNormal, 0},
    {DistributionCode::kLogNormal, kLogNormal, kLogNormalOffset},
    {DistributionCode::kWeibull, kWeibull, kWeibullOffset},
}};
struct DiscreteControls {
  DistributionCode code;
  std::int32_t check;
};
constexpr std::array<DiscreteControls, 1> kDiscreteControls{{{DistributionCode::kPoisson, kPoisson}}};

// What a distribution that is checked without an offset starts with.
constexpr double kDefaultOffset = 0.0;

std::size_t Flag(const ContinuousControls& controls) {
  return static_cast<std::size_t>(FlagOfContinuous(controls.code));
}
std::size_t Flag(const DiscreteControls& controls) {
  return static_cast<std::size_t>(FlagOfDiscrete(controls.code));
}
double& OffsetOf(ContinuousSpecification& specification, const ContinuousControls& controls) {
  return specification.offsets[*OffsetIndex(controls.code)];
}

bool Always(bool) {
  return true;
}
bool Never(bool) {
  return false;
}
bool Opposite(bool checked) {
  return !checked;
}

}  // namespace

void CFitDistribution::OnInitDialog() {
  const FitSpecification& specification = Specification();
  Controls().SetChecked(specification.deletion == DeletionMode::kPairwise ? kPairwise : kCasewise, true);
  RefreshLists();
}

bool CFitDistribution::OnCommand(std::int32_t number) {
  switch (number) {
    case kVariables:
      return AskForVariables();
    case kContinuousPrevious:
      return MoveContinuous(shownContinuous_ - 1);
    case kContinuousNext:
      return MoveContinuous(shownContinuous_ + 1);
    case kContinuousSelectAll:
      SetContinuousChecks(Always);
      return true;
    case kContinuousClearAll:
      SetContinuousChecks(Never);
      return true;
    case kContinuousToggle:
      SetContinuousChecks(Opposite);
      return true;
    case kDiscretePrevious:
      return Select(kDiscreteVariable, shownDiscrete_ - 1);
    case kDiscreteNext:
      return Select(kDiscreteVariable, shownDiscrete_ + 1);
    case kDiscreteSelectAll:
      SetDiscreteChecks(Always);
      return true;
    case kDiscreteClearAll:
      SetDiscreteChecks(Never);
      return true;
    case kDiscreteToggle:
      SetDiscreteChecks(Opposite);
      return true;
    default:
      return CSimulationAndRiskModelessDialog::OnCommand(number);
  }
}

void CFitDistribution::OnControlChanged(std::int32_t number) {
  if (number == kPairwise || number == kCasewise) {
    Specification().deletion =
        Controls().IsChecked(kPairwise) ? DeletionMode::kPairwise : DeletionMode::kCasewise;
  }
  if (number == kContinuousVariable && !MoveContinuous(Controls().Selection(kContinuousVariable))) {
    Controls().Select(kContinuousVariable, shownContinuous_);
  }
  if (number == kDiscreteVariable) {
    ReadShownDiscrete();
    ShowDiscrete(Controls().Selection(kDiscreteVariable));
  }
  // A distribution that needs an offset gets the usual one with its check.
  for (const ContinuousControls& controls : kContinuousControls) {
    if (number != controls.check || controls.offset == 0) continue;
    if (Controls().IsChecked(number) && Controls().Text(controls.offset).empty()) {
      Controls().SetDlgItemDouble(controls.offset, kDefaultOffset);
    }
  }
}

bool CFitDistribution::AskForVariables() {
  if (GetInputTable() == nullptr || !ReadShown()) return false;
  FitSpecification& specification = Specification();
  VariableQuestion question;
  question.caption = szLoadResString(kFitSelectVariables);
  question.firstListCaption = szLoadResString(kFitSelectContinuous);
  question.secondListCaption = szLoadResString(kFitSelectDiscrete);
  for (std::size_t i = 0; i < GetInputTable()->VariableCount(); ++i) {
    question.names.push_back(GetInputTable()->VariableAt(i).Name());
  }
  question.first = specification.continuous;
  question.second = specification.discrete;
  while (Analysis().Interface().SelectVariables(question)) {
    if (question.first.empty() && question.second.empty()) {
      ShowMessage(kMsgTooFewVariables);
      question.first = specification.continuous;
      question.second = specification.discrete;
    } else if (const std::string texts = TextVariables(question.first) + TextVariables(question.second);
               !texts.empty()) {
      Analysis().ShowMessage(TextVariablesMessage(texts));
      question.first.clear();
      question.second.clear();
    } else {
      TakeLists(question.first, question.second);
      return true;
    }
  }
  return false;
}

std::string CFitDistribution::TextVariablesMessage(const std::string& names) const {
  return szLoadResString(kMsgTextVariablesSelected) + FormatResource(kFitListSentenceEnd, names);
}

void CFitDistribution::TakeLists(const std::vector<std::int16_t>& continuous,
                                 const std::vector<std::int16_t>& discrete) {
  FitSpecification& specification = Specification();
  if (continuous != specification.continuous) {
    specification.continuous = continuous;
    specification.continuousSpecifications.assign(continuous.size(), {});
  }
  if (discrete != specification.discrete) {
    specification.discrete = discrete;
    specification.discreteSpecifications.assign(discrete.size(), {});
  }
  RefreshLists();
}

std::string CFitDistribution::TextVariables(const std::vector<std::int16_t>& variables) const {
  std::string names;
  for (const std::int16_t number : variables) {
    const Variable& variable = GetInputTable()->VariableAt(static_cast<std::size_t>(number - 1));
    if (variable.Type() == VariableType::kText) names += " " + variable.Name();
  }
  return names;
}

std::vector<std::string> CFitDistribution::NamesOf(const std::vector<std::int16_t>& variables) const {
  std::vector<std::string> names;
  for (const std::int16_t number : variables) names.push_back(Analysis().get_vn(number));
  return names;
}

void CFitDistribution::RefreshLists() {
  const FitSpecification& specification = Specification();
  const std::string none = szLoadResString(kFitListEmpty);
  const auto shown = [&](const std::vector<std::int16_t>& list) {
    return list.empty() ? none : Analysis().dsplst(list);
  };
  Controls().SetText(kContinuousList, shown(specification.continuous));
  Controls().SetText(kDiscreteList, shown(specification.discrete));
  Controls().SetItems(kContinuousVariable, NamesOf(specification.continuous));
  Controls().SetItems(kDiscreteVariable, NamesOf(specification.discrete));
  ShowContinuous(specification.continuous.empty() ? -1 : 0);
  ShowDiscrete(specification.discrete.empty() ? -1 : 0);
}

void CFitDistribution::ShowContinuous(int index) {
  shownContinuous_ = index;
  Controls().Select(kContinuousVariable, index);
  ContinuousSpecification shown;
  if (index >= 0) shown = Specification().continuousSpecifications[static_cast<std::size_t>(index)];
  for (const ContinuousControls& controls : kContinuousControls) {
    Controls().Enable(controls.check, index >= 0);
    Controls().SetChecked(controls.check, index >= 0 && shown.fit[Flag(controls)]);
    if (controls.offset == 0) continue;
    Controls().Enable(controls.offset, index >= 0);
    Controls().SetDlgItemDouble(controls.offset, OffsetOf(shown, controls));
  }
}

void CFitDistribution::ShowDiscrete(int index) {
  shownDiscrete_ = index;
  Controls().Select(kDiscreteVariable, index);
  DiscreteSpecification shown;
  if (index >= 0) shown = Specification().discreteSpecifications[static_cast<std::size_t>(index)];
  for (const DiscreteControls& controls : kDiscreteControls) {
    Controls().Enable(controls.check, index >= 0);
    Controls().SetChecked(controls.check, index >= 0 && shown.fit[Flag(controls)]);
  }
}

// Copies the shown controls into their variable's specification; false with a message where an offset that is
// needed is not a number, and then nothing has changed.
bool CFitDistribution::ReadShownContinuous() {
  if (shownContinuous_ < 0) return true;
  ContinuousSpecification& specification =
      Specification().continuousSpecifications[static_cast<std::size_t>(shownContinuous_)];
  ContinuousSpecification read = specification;
  for (const ContinuousControls& controls : kContinuousControls) {
    const bool checked = Controls().IsChecked(controls.check);
    read.fit[Flag(controls)] = checked;
    if (controls.offset == 0) continue;
    double offset = kNotSet;
    const bool unreadable = Controls().GetDlgItemDouble(controls.offset, offset) != 0;
    const bool empty = Controls().Text(controls.offset).empty();
    if (unreadable && (checked || !empty)) {
      ShowMessage(kMsgInvalidOffsets);
      return false;
    }
    OffsetOf(read, controls) = offset;
  }
  specification = read;
  return true;
}

void CFitDistribution::ReadShownDiscrete() {
  if (shownDiscrete_ < 0) return;
  DiscreteSpecification& specification =
      Specification().discreteSpecifications[static_cast<std::size_t>(shownDiscrete_)];
  for (const DiscreteControls& controls : kDiscreteControls) {
    specification.fit[Flag(controls)] = Controls().IsChecked(controls.check);
  }
}

bool CFitDistribution::ReadShown() {
  if (!ReadShownContinuous()) return false;
  ReadShownDiscrete();
  return true;
}

bool CFitDistribution::MoveContinuous(int index) {
  if (index < 0 || index >= static_cast<int>(Specification().continuous.size())) return false;
  if (!ReadShownContinuous()) return false;
  ShowContinuous(index);
  return true;
}

void CFitDistribution::SetContinuousChecks(bool (*next)(bool)) {
  for (const ContinuousControls& controls : kContinuousControls) {
    Check(controls.check, next(Controls().IsChecked(controls.check)));
  }
}

void CFitDistribution::SetDiscreteChecks(bool (*next)(bool)) {
  for (const DiscreteControls& controls : kDiscreteControls) {
    Check(controls.check, next(Controls().IsChecked(controls.check)));
  }
}

bool CFitDistribution::EveryVariableHasDistribution() const {
  const FitSpecification& specification = SimulationAndRisk().Fit().specification;
  for (const ContinuousSpecification& variable : specification.continuousSpecifications) {
    bool any = false;
    for (int flag = 0; flag < kContinuousFlagCount; ++flag) {
      any = any || (flag != kPercentileFitFlag && variable.fit[static_cast<std::size_t>(flag)]);
    }
    if (!any) return false;
  }
  for (const DiscreteSpecification& variable : specification.discreteSpecifications) {
    bool any = false;
    for (const bool checked : variable.fit) any = any || checked;
    if (!any) return false;
  }
  return true;
}

bool CFitDistribution::OnOk() {
  const FitSpecification& specification = Specification();
  if (specification.continuous.empty() && specification.discrete.empty()) {
    AskForVariables();
    return false;
  }
  if (!ReadShown()) return false;
  if (!EveryVariableHasDistribution()) {
    ShowMessage(kMsgNoDistributionSelected);
    return false;
  }
  if (!RunAndKeepResults()) return false;
  GoToStep(step::kFitResults);
  return true;
}

bool CFitDistribution::RunAndKeepResults() {
  FitState& state = SimulationAndRisk().Fit();
  std::vector<VariableFit> results;
  try {
    const CaseOptions options{Analysis().CaseSelectionEnabled(), Analysis().CaseWeightsEnabled()};
    results = RunFit(*GetInputTable(), state.specification, options, Analysis().Interface());
  } catch (const Error& error) {
    Analysis().ShowMessage(error.what(), error.Where());
    return false;
  } catch (const UserCancelled&) {
    return false;
  } catch (const std::bad_alloc&) {
    ShowMessage(kMsgInsufficientMemory);
    return false;
  }
  std::size_t firstValid = 0;
  while (firstValid < results.size() && !results[firstValid].HasValidFit()) ++firstValid;
  if (firstValid == results.size()) {
    ShowMessage(kMsgNoValidFits);
    return false;
  }
  state.committed = state.specification;
  state.results = std::move(results);
  state.firstShown = firstValid;
  return true;
}

void CFitDistribution::SelectContinuous(const std::vector<std::int16_t>& variables) {
  RequireTakeable(variables);
  TakeLists(variables, Specification().discrete);
}

void CFitDistribution::SelectDiscrete(const std::vector<std::int16_t>& variables) {
  RequireTakeable(variables);
  TakeLists(Specification().continuous, variables);
}

void CFitDistribution::RequireTakeable(const std::vector<std::int16_t>& variables) {
  const std::string texts = TextVariables(variables);
  if (!texts.empty()) throw CDispatchException(TextVariablesMessage(texts));
  if (!ReadShown()) throw CDispatchException(szLoadResString(kMsgInvalidOffsets));
}

namespace {

void Require(bool taken, int position) {
  if (!taken) throw Error("no variable " + std::to_string(position) + " in the list");
}

}  // namespace

bool CFitDistribution::IsContinuousChecked(int position, std::int32_t control) {
  Require(Select(kContinuousVariable, position - 1), position);
  return Controls().IsChecked(control);
}

void CFitDistribution::CheckContinuous(int position, std::int32_t control, bool checked) {
  Require(Select(kContinuousVariable, position - 1), position);
  Check(control, checked);
}

double CFitDistribution::Offset(int position, std::int32_t control) {
  Require(Select(kContinuousVariable, position - 1), position);
  double value = kNotSet;
  Controls().GetDlgItemDouble(control, value);
  return value;
}

void CFitDistribution::EnterOffset(int position, std::int32_t control, double value) {
  Require(Select(kContinuousVariable, position - 1), position);
  Controls().SetDlgItemDouble(control, value);
}

bool CFitDistribution::IsDiscreteChecked(int position, std::int32_t control) {
  Require(Select(kDiscreteVariable, position - 1), position);
  return Controls().IsChecked(control);
}

void CFitDistribution::CheckDiscrete(int position, std::int32_t control, bool checked) {
  Require(Select(kDiscreteVariable, position - 1), position);
  Check(control, checked);
}

}  // namespace brenvolt::sra
