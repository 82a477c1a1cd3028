#include "brv_sra/fitting/dialogs/fit_results_dialog.h"

#include <algorithm>
#include <new>
#include <utility>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/distributions/sheet_property_store.h"
#include "brv_sra/distributions/variable_properties.h"
#include "brv_sra/fitting/dialogs/fit_documents.h"
#include "brv_sra/fitting/fit_correlation.h"
#include "brv_sra/fitting/save_settings.h"
#include "brv_sra/frame/distribution_texts.h"
#include "brv_sra/frame/fault_message.h"
#include "brv_sra/frame/sequence_steps.h"
#include "brv_sra/matrix/matrix_state.h"
#include "brv_sra/resources/dialog_templates.h"
#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/strings.h"
#include "host/base/error.h"
#include "host/numeric/vector/sorting.h"

namespace brenvolt::sra {
namespace {

using namespace fit_results;

constexpr std::pair<std::int32_t, FitPlot> kPlotButtons[] = {
    {kHistogram, FitPlot::kHistogram},
    {kCumulativeHistogram, FitPlot::kCumulativeHistogram},
    {kEmpiricalPlot, FitPlot::kEmpiricalDistribution},
    {kProbabilityPlot, FitPlot::kProbabilityPlot},
    {kQuantilePlot, FitPlot::kQuantilePlot},
    {kBoxPlot, FitPlot::kBoxPlot},
    {kSummaryGraph, FitPlot::kSummary}};

// The buttons that make the outputs of OuptutType, in their order.
constexpr std::int32_t kKinds[] = {kHistogram,       kCumulativeHistogram, kEmpiricalPlot,     kQuantilePlot,
                                   kProbabilityPlot, kDistributionSummary, kSummaryStatistics, kSummaryGraph};

// So many undefined correlations are named; the others are counted.
constexpr std::size_t kNamedCorrelations = 3;

// Keeps those of the cases that are chosen. Throws Error if none is.
void KeepChosen(const std::vector<std::uint8_t>& chosen, CaseSet& set) {
  std::size_t kept = 0;
  for (std::size_t i = 0; i < set.cases.size(); ++i) {
    if (chosen[set.cases[i]] == 0) continue;
    set.cases[kept] = set.cases[i];
    if (!set.weights.empty()) set.weights[kept] = set.weights[i];
    ++kept;
  }
  if (kept == 0) throw Error("none of the chosen cases is among the fitted ones");
  set.cases.resize(kept);
  if (!set.weights.empty()) set.weights.resize(kept);
}

RankingCriterion CriterionOf(const VariableFit& variable, const FitSpecification& specification) {
  return variable.continuous ? specification.continuousCriterion : specification.discreteCriterion;
}

}  // namespace

void CFitDistributionResults::OnInitDialog() {
  std::vector<std::string> names;
  for (const VariableFit& fit : Results().results) names.push_back(fit.name);
  if (GetInputTable() != nullptr) {
    // Fitting again keeps the truncation that a variable carries.
    const SheetPropertyStore store = PropertiesOf(*GetInputTable());
    for (VariableFit& fit : Results().results) {
      fit.saving.truncation = StoredTruncation(store, fit.variableNumber);
    }
  }
  for (const std::int32_t list : {kVariable, kSaveVariable}) {
    Controls().SetItems(list, names);
    Controls().Select(list, static_cast<int>(Results().firstShown));
  }
  Controls().SetChecked(kUserDefined, Results().saveUserDefined);
  ListDistributions();
  ShowSaveSettings();
}

bool CFitDistributionResults::OnCommand(std::int32_t number) {
  for (const auto& [button, plot] : kPlotButtons) {
    if (button == number) return Attempt([this, shown = plot] { ShowPlot(shown); });
  }
  switch (number) {
    case kSummaryStatistics:
      return Attempt([this] { ShowSummaryStatistics(); });
    case kDistributionSummary:
      return Attempt([this] { ShowDistributionSummary(QuickVariable()); });
    case kDetails:
      return Attempt([this] { ShowDetails(); });
    case kSaveDistributionSummary:
      return Attempt([this] { ShowDistributionSummary(SaveVariable()); });
    case kCorrelationMatrix:
      return Attempt([this] { ShowCorrelationMatrix(); });
    case kSaveFit:
      return Attempt([this] { SaveFits(); });
    case kSimulate:
      return Attempt([this] { SaveAndSimulate(); });
    case kPrevious:
    case kNext:
      return Move(kVariable, number == kNext ? 1 : -1);
    case kSavePrevious:
    case kSaveNext:
      return Move(kSaveVariable, number == kSaveNext ? 1 : -1);
    case kMoveUp:
    case kMoveDown:
      return Attempt([this, number] { MoveInOrder(number == kMoveDown ? 1 : -1); });
    case kLeaveOut:
      return Attempt([this] { LeaveOutOfOrder(); });
    case kDefaultOrder:
      return Attempt([this] {
        ValueOrThrow(SetSavedOrder(SaveVariable(), {}));
        ShowSaveSettings();
      });
    default:
      return CSimulationAndRiskModelessDialog::OnCommand(number);
  }
}

bool CFitDistributionResults::OnOk() {
  const auto kind = std::exchange(Request().kind, {});
  if (kind) return Attempt([&] { ShowKind(*kind); });
  if (!Request().values.empty()) return Attempt([this] { ShowPoints(); });
  return Attempt([this] { ShowSummaryStatistics(); });
}

std::string_view CFitDistributionResults::KindWithoutMeaning(std::int32_t kind) const {
  const bool isKind = kind >= 0 && static_cast<std::size_t>(kind) < std::size(kKinds);
  return isKind ? "" : "the constants of OuptutType are 0 to 7";
}

void CFitDistributionResults::ShowKind(std::int32_t kind) {
  const std::int32_t button = kKinds[static_cast<std::size_t>(kind)];
  for (const auto& [number, plot] : kPlotButtons) {
    if (number == button) ShowPlot(plot);
  }
  if (button == kDistributionSummary) ShowDistributionSummary(QuickVariable());
  if (button == kSummaryStatistics) ShowSummaryStatistics();
}

void CFitDistributionResults::OnControlChanged(std::int32_t number) {
  switch (number) {
    case kVariable:
      return ListDistributions();
    case kSaveVariable:
      return ShowSaveSettings();
    case kTruncateBelow:
    case kTruncateAbove:
    case kTruncationMinimum:
    case kTruncationMaximum:
      return TakeTruncation();
    case kUserDefined:
      Results().saveUserDefined = Controls().IsChecked(kUserDefined);
      return;
    default:
      return;
  }
}

bool CFitDistributionResults::Move(std::int32_t variableList, int by) {
  return Select(variableList, Controls().Selection(variableList) + by);
}

VariableFit& CFitDistributionResults::VariableAt(int place) const {
  auto& results = Results().results;
  if (place < 1 || static_cast<std::size_t>(place) > results.size()) {
    throw Error("no variable " + std::to_string(place) + " among the results");
  }
  return results[static_cast<std::size_t>(place - 1)];
}

VariableFit& CFitDistributionResults::QuickVariable() const {
  return VariableAt(Controls().Selection(kVariable) + 1);
}

VariableFit& CFitDistributionResults::SaveVariable() const {
  return VariableAt(Controls().Selection(kSaveVariable) + 1);
}

void CFitDistributionResults::RequireFitted(const VariableFit& variable) const {
  if (variable.invalid) throw CDispatchException(szLoadResString(kMsgVariableNotFitted), variable.name);
}

void CFitDistributionResults::ListDistributions() {
  const VariableFit& variable = QuickVariable();
  std::vector<std::string> names;
  for (const std::size_t index : variable.ranked)
    names.emplace_back(SpacedKey(variable.fits[index].specification.code));
  Controls().SetItems(kDistribution, std::move(names));
  const auto best = std::ranges::find_if(variable.ranked,
                                         [&](std::size_t index) { return variable.fits[index].IsValid(); });
  const auto place = best == variable.ranked.end() ? 0 : best - variable.ranked.begin();
  Controls().Select(kDistribution, static_cast<int>(place));
}

const DistributionFit& CFitDistributionResults::ChosenFit() const {
  const VariableFit& variable = QuickVariable();
  RequireFitted(variable);
  const int chosen = Controls().Selection(kDistribution);
  if (chosen < 0) throw Error("no distribution is selected");
  return variable.fits[variable.ranked[static_cast<std::size_t>(chosen)]];
}

void CFitDistributionResults::ShowSaveSettings() {
  const VariableFit& variable = SaveVariable();
  std::vector<std::string> names;
  for (const std::size_t index : SavedOrder(variable))
    names.emplace_back(SpacedKey(variable.fits[index].specification.code));
  const int selected = std::max(Controls().Selection(kOrder), 0);
  const int last = static_cast<int>(names.size()) - 1;
  Controls().SetItems(kOrder, std::move(names));
  Controls().Select(kOrder, std::min(selected, last));
  const Truncation& truncation = variable.saving.truncation;
  Controls().SetChecked(kTruncateBelow, truncation.below);
  Controls().SetChecked(kTruncateAbove, truncation.above);
  Controls().SetDlgItemDouble(kTruncationMinimum, truncation.minimum);
  Controls().SetDlgItemDouble(kTruncationMaximum, truncation.maximum);
  Controls().SetChecked(kUserDefined, Results().saveUserDefined);
}

void CFitDistributionResults::TakeTruncation() {
  Truncation& truncation = SaveVariable().saving.truncation;
  truncation = {Controls().IsChecked(kTruncateBelow), Controls().IsChecked(kTruncateAbove), kNotSet, kNotSet};
  Controls().GetDlgItemDouble(kTruncationMinimum, truncation.minimum);
  Controls().GetDlgItemDouble(kTruncationMaximum, truncation.maximum);
}

void CFitDistributionResults::MoveInOrder(int by) {
  VariableFit& variable = SaveVariable();
  std::vector<std::size_t> order = SavedOrder(variable);
  const int from = Controls().Selection(kOrder);
  const int to = from + by;
  if (from < 0 || to < 0 || static_cast<std::size_t>(to) >= order.size()) return;
  std::swap(order[static_cast<std::size_t>(from)], order[static_cast<std::size_t>(to)]);
  ValueOrThrow(SetSavedOrder(variable, CodesOf(variable, order)));
  Controls().Select(kOrder, to);
  ShowSaveSettings();
}

// The last one stays: an empty order means the default.
void CFitDistributionResults::LeaveOutOfOrder() {
  VariableFit& variable = SaveVariable();
  std::vector<std::size_t> order = SavedOrder(variable);
  const int chosen = Controls().Selection(kOrder);
  if (chosen < 0 || order.size() < 2) return;
  order.erase(order.begin() + chosen);
  ValueOrThrow(SetSavedOrder(variable, CodesOf(variable, order)));
  ShowSaveSettings();
}

std::optional<std::vector<std::string>> CFitDistributionResults::FittedDistributions(int variable) const {
  const auto& results = Results().results;
  if (variable < 0 || static_cast<std::size_t>(variable) >= results.size()) return std::nullopt;
  const VariableFit& fit = results[static_cast<std::size_t>(variable)];
  std::vector<std::string> names;
  for (const std::size_t index : fit.ranked) {
    if (fit.fits[index].IsValid()) names.emplace_back(SpacedKey(fit.fits[index].specification.code));
  }
  return names;
}

CaseSet CFitDistributionResults::Cases() const {
  if (GetInputTable() == nullptr) throw Error("no input spreadsheet");
  const CaseOptions options{Analysis().CaseSelectionEnabled(), Analysis().CaseWeightsEnabled()};
  return ValueOrThrow(FittedCases(*GetInputTable(), Results().committed, options));
}

std::vector<double> CFitDistributionResults::SortedValues(const VariableFit& variable) {
  CaseSet cases = Cases();
  const CaseChoice choice = std::exchange(Request().cases, {});
  if (choice.IsGiven()) KeepChosen(ChosenCases(choice, *GetInputTable()), cases);
  const auto number = static_cast<std::size_t>(variable.variableNumber);
  if (number > GetInputTable()->VariableCount()) throw Error("is no longer in the input", variable.name);
  const auto progress =
      std::make_unique<ProgressBar>(Analysis().Interface(), szLoadResString(kProgressPreparingResults),
                                    static_cast<std::int64_t>(cases.cases.size()) + 1);
  Sample sample = ReadSample(*GetInputTable(), variable.variableNumber, cases, *progress);
  if (sample.fault) ThrowFault(*sample.fault);
  SortAscending(sample.values);
  return std::move(sample.values);
}

std::shared_ptr<CAnalysisTableDoc> CFitDistributionResults::Show(std::unique_ptr<Spreadsheet> table) {
  auto document = std::make_shared<CAnalysisTableDoc>(std::move(table));
  Present(document);
  return document;
}

std::shared_ptr<CAnalysisTableDoc> CFitDistributionResults::ShowPoints() {
  const std::vector<double> points = std::exchange(Request().values, {});
  return Show(PointsTable(QuickVariable(), ChosenFit(), points));
}

std::shared_ptr<CAnalysisTableDoc> CFitDistributionResults::ShowSummaryStatistics() {
  std::vector<VariableFit> selected;
  for (const VariableFit& variable : Results().results) {
    if (variable.saving.selected) selected.push_back(variable);
  }
  return Show(SummaryTable(selected));
}

std::shared_ptr<CAnalysisTableDoc> CFitDistributionResults::ShowDistributionSummary(
    const VariableFit& variable) {
  RequireFitted(variable);
  return Show(RankedTable(variable, CriterionOf(variable, Results().committed)));
}

std::shared_ptr<CAnalysisTableDoc> CFitDistributionResults::ShowDetails() {
  if (!Request().values.empty()) return ShowPoints();
  return Show(DetailsTable(QuickVariable(), ChosenFit()));
}

std::shared_ptr<CAnalysisGraphDoc> CFitDistributionResults::ShowPlot(FitPlot plot) {
  const DistributionFit& fit = ChosenFit();
  const VariableFit& variable = QuickVariable();
  auto document =
      std::make_shared<CAnalysisGraphDoc>(MakeFitPlot(plot, variable, fit, SortedValues(variable)));
  Present(document);
  return document;
}

std::shared_ptr<CAnalysisTableDoc> CFitDistributionResults::ShowCorrelations(
    const std::vector<int>& variables) {
  const FitCorrelations correlations = CorrelateVariables(*GetInputTable(), variables, Cases());
  const auto& names = correlations.file.variables;
  const auto& undefined = correlations.undefined;
  const std::size_t named = std::min(undefined.size(), kNamedCorrelations);
  for (std::size_t i = 0; i < named; ++i) {
    Analysis().ShowMessage(
        FormatResource(kMsgCorrelationUndefined, names[undefined[i].first], names[undefined[i].second]));
  }
  if (named < undefined.size()) {
    Analysis().ShowMessage(
        FormatResource(kMsgCorrelationsUndefined, std::to_string(undefined.size() - named)));
  }
  return Show(ValueOrThrow(MakeMatrixFile(correlations.file)));
}

std::shared_ptr<CAnalysisTableDoc> CFitDistributionResults::ShowCorrelationMatrix() {
  std::vector<int> variables;
  for (const VariableFit& variable : Results().results) {
    if (variable.saving.selected && variable.HasValidFit()) variables.push_back(variable.variableNumber);
  }
  if (variables.empty()) throw CDispatchException(szLoadResString(kMsgNothingToSave));
  Cases();  // throws if there is no input
  return ShowCorrelations(variables);
}

std::shared_ptr<CAnalysisTableDoc> CFitDistributionResults::SaveFits() {
  if (GetInputTable() == nullptr) return nullptr;
  SheetPropertyStore store = PropertiesOf(*GetInputTable());
  for (const VariableFit& variable : Results().results) {
    if (variable.saving.selected) ValueOrThrow(CheckTruncation(variable));
  }
  std::vector<VariableDistributions> all;
  for (const VariableFit& variable : Results().results) {
    if (variable.saving.selected) all.push_back(DistributionsToSave(variable, Results().saveUserDefined));
  }
  const auto isFitted = [](const VariableDistributions& one) { return !one.ranked.empty(); };
  if (std::ranges::none_of(all, isFitted)) throw CDispatchException(szLoadResString(kMsgNothingToSave));
  std::vector<int> saved;
  for (const VariableDistributions& distributions : all) {
    const int number = distributions.variableNumber;
    // Fits of before would pass for those of this time.
    if (!isFitted(distributions) && HasStoredOrder(store, number))
      Analysis().ShowMessage(FormatResource(kMsgFormerFitsRemoved, store.VariableName(number)));
    if (isFitted(distributions)) saved.push_back(number);
  }
  Analysis().Interface().Change([&] {
    for (const VariableDistributions& distributions : all) WriteDistributionProperties(&store, distributions);
  });
  for (std::size_t i = 0; i < GetInputTable()->VariableCount(); ++i) {
    const int number = static_cast<int>(i) + 1;
    const bool before = HasStoredOrder(store, number) && std::ranges::find(saved, number) == saved.end();
    if (before) saved.push_back(number);
  }
  auto correlations = ShowCorrelations(saved);
  // A simulation of the same input goes on with them.
  if (correlations->HasTable()) {
    Services().Matrix().saved =
        ValueOrThrow(ReadMatrixFile(correlations->Table(), {.useCaseSelection = false, .isCancelled = {}}));
  }
  return correlations;
}

void CFitDistributionResults::SaveAndSimulate() {
  if (GetInputTable() == nullptr) throw Error("no input spreadsheet");
  SaveFits();
  GoToStep(step::kSimulation);
}

}  // namespace brenvolt::sra
