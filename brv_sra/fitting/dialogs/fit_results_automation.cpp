// The automation interface of the fit results: what its members do.
//
// An index counts the fitted variables, continuous ones first, from 1. A member that names an output makes,
// shows and returns it as the button of the same meaning does: a spreadsheet or a graph document.
// SaveDistributionFit saves and returns the correlation matrix file that goes with the fits.
//
// Orders of distributions are read as "Weibull;Normal;" and put as such a text or as an array of names
// (display names or keys) or codes; an empty one restores the default. Values of a distribution are an array
// of numbers in catalogue order, the offset last where the type has one, alone or as the catalogue's macro
// text.
#include <algorithm>
#include <array>
#include <cmath>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/fitting/dialogs/fit_results_dialog.h"
#include "brv_sra/fitting/dialogs/variable_lists.h"
#include "brv_sra/fitting/save_settings.h"
#include "brv_sra/frame/control_members.h"
#include "brv_sra/frame/distribution_texts.h"
#include "brv_sra/frame/fault_message.h"
#include "brv_sra/frame/specification_array.h"
#include "brv_sra/resources/dialog_templates.h"
#include "brv_sra/resources/fit_results_interface.h"
#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/strings.h"
#include "host/base/error.h"
#include "host/base/number_text.h"

namespace brenvolt::sra {
namespace {

using namespace fit_results;
using Dialog = CFitDistributionResults;
using Indexes = std::span<const Variant>;
using Member = AutomationMember<Dialog>;
using Codes = std::vector<DistributionCode>;

// An output: what a button makes.
template <auto Show>
Variant GetOutput(Dialog& dialog, Indexes) {
  return Variant::Object((dialog.*Show)());
}
template <FitPlot Plot>
Variant GetPlot(Dialog& dialog, Indexes) {
  return Variant::Object(dialog.ShowPlot(Plot));
}
template <auto Variable>
Variant GetDistributionSummary(Dialog& dialog, Indexes) {
  return Variant::Object(dialog.ShowDistributionSummary((dialog.*Variable)()));
}

// The variables that are summarised, correlated and saved: by default all that were fitted.
Variant GetVariables(Dialog& dialog, Indexes) {
  VariableLists lists;
  for (const VariableFit& variable : dialog.Results().results) {
    if (!variable.saving.selected) continue;
    auto& list = variable.continuous ? lists.continuous : lists.discrete;
    list.push_back(static_cast<std::int16_t>(variable.variableNumber));
  }
  return dialog.Analysis().dsplst(lists.continuous) + " " + kListBar + " " +
         dialog.Analysis().dsplst(lists.discrete);
}

void PutVariables(Dialog& dialog, Indexes, const Variant& value) {
  const Spreadsheet* table = dialog.GetInputTable();
  if (table == nullptr) throw Error("no input spreadsheet");
  const VariableLists lists = VariableListsFrom(value, table->VariableCount());
  if (lists.continuous.empty() && lists.discrete.empty())
    throw Error(dialog.szLoadResString(kMsgTooFewVariables));
  auto& results = dialog.Results().results;
  std::vector<bool> selected(results.size(), false);
  for (const bool continuous : {true, false}) {
    for (const std::int16_t number : continuous ? lists.continuous : lists.discrete) {
      const auto found = std::ranges::find_if(results, [&](const VariableFit& variable) {
        return variable.variableNumber == number && variable.continuous == continuous;
      });
      if (found == results.end()) {
        throw Error(FormatResource(kMsgNotAmongResults, dialog.Analysis().get_vn(number)));
      }
      selected[static_cast<std::size_t>(found - results.begin())] = true;
    }
  }
  for (std::size_t i = 0; i < results.size(); ++i) results[i].saving.selected = selected[i];
}

VariableFit& IndexedVariable(Dialog& dialog, Indexes indexes) {
  return dialog.VariableAt(indexes[0].ToInteger());
}

Codes OrderFrom(const Variant& value) {
  Codes order;
  if (!value.IsText()) {
    for (const Variant& element : value.ToArray()) order.push_back(CodeFromVariant(element));
    return order;
  }
  const std::string text = value.ToText();
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = std::min(text.find(';', begin), text.size());
    const std::string_view name = Trim(std::string_view(text).substr(begin, end - begin));
    if (!name.empty()) order.push_back(CodeFromVariant(std::string(name)));
    begin = end + 1;
  }
  return order;
}

Variant GetOrder(Dialog& dialog, Indexes indexes) {
  const VariableFit& variable = IndexedVariable(dialog, indexes);
  return OrderText(CodesOf(variable, SavedOrder(variable)));
}
void PutOrder(Dialog& dialog, Indexes indexes, const Variant& value) {
  ValueOrThrow(SetSavedOrder(IndexedVariable(dialog, indexes), OrderFrom(value)));
  dialog.ShowSaveSettings();
}

Variant GetUserDefinedOrder(Dialog& dialog, Indexes indexes) {
  return OrderText(UserDefinedOrder(IndexedVariable(dialog, indexes)));
}
void PutUserDefinedOrder(Dialog& dialog, Indexes indexes, const Variant& value) {
  ValueOrThrow(SetUserDefinedOrder(IndexedVariable(dialog, indexes), OrderFrom(value)));
}

// Whether a distribution of a variable is saved as fitted. True drops the person's own values; false takes
// the fitted ones as a start for them.
Variant GetIsDefault(Dialog& dialog, Indexes indexes) {
  const bool own = HasUserDefinedValues(IndexedVariable(dialog, indexes), CodeFromVariant(indexes[1]));
  return std::int32_t{own ? 0 : 1};
}
void PutIsDefault(Dialog& dialog, Indexes indexes, const Variant& value) {
  VariableFit& variable = IndexedVariable(dialog, indexes);
  const DistributionCode code = CodeFromVariant(indexes[1]);
  if (value.ToBoolean()) return DropUserDefinedValues(variable, code);
  const DistributionSpecification* fitted = UserDefinedSpecification(variable, code);
  if (fitted == nullptr) throw Error(FormatResource(kMsgOrderUnknown, DisplayName(code), variable.name));
  ValueOrThrow(SetUserDefinedValues(variable, *fitted));
}

Variant GetUserDefined(Dialog& dialog, Indexes indexes) {
  const DistributionSpecification* specification =
      UserDefinedSpecification(IndexedVariable(dialog, indexes), CodeFromVariant(indexes[1]));
  Variant::Array values;
  if (specification == nullptr) return values;
  for (const double value : specification->values) values.emplace_back(value);
  if (HasOffset(specification->code)) {
    values.emplace_back(IsNotSet(specification->offset) ? 0.0 : specification->offset);
  }
  return values;
}
// The catalogue's macro text begins with the distribution's constant and ends with the truncation.
constexpr std::size_t kMacroFrame = 5;
constexpr std::size_t kMacroTruncation = 4;

// Whether an array is that of a macro text: no array of values alone has its length.
bool IsMacroArray(const Variant::Array& elements, DistributionCode code) {
  if (elements.size() <= kMacroFrame || elements[0].IsText()) return false;
  const std::size_t values = elements.size() - kMacroFrame;
  const std::size_t group = Facts(code).ParameterCount();
  const bool isRepeated = code == DistributionCode::kGaussianMixture || code == DistributionCode::kHistogram;
  return isRepeated ? values % group == 0 : values == group + (HasOffset(code) ? 1 : 0);
}

// Takes the values out of the array of a macro text.
Variant::Array ValuesOfMacroArray(const Variant::Array& elements, DistributionCode code) {
  if (CodeFromVariant(elements[0]) != code)
    throw Error("values of another distribution: " + std::string(DisplayName(CodeFromVariant(elements[0]))));
  const auto truncation = elements.end() - kMacroTruncation;
  if (truncation[0].ToBoolean() || truncation[2].ToBoolean())
    throw Error("bounds are put by UserDefinedTruncMin and UserDefinedTruncMax");
  return {elements.begin() + 1, truncation};
}

// An offset that is left out is 0.
DistributionSpecification UserDefinedFrom(DistributionCode code, const Variant& value) {
  DistributionSpecification specification;
  specification.code = code;
  Variant::Array elements = value.ToArray();
  if (IsMacroArray(elements, code)) elements = ValuesOfMacroArray(elements, code);
  for (const Variant& element : elements) specification.values.push_back(element.ToReal());
  if (HasOffset(code)) {
    specification.offset = 0;
    if (specification.values.size() > Facts(code).ParameterCount()) {
      specification.offset = specification.values.back();
      specification.values.pop_back();
    }
  }
  return specification;
}

void PutUserDefined(Dialog& dialog, Indexes indexes, const Variant& value) {
  ValueOrThrow(SetUserDefinedValues(IndexedVariable(dialog, indexes),
                                    UserDefinedFrom(CodeFromVariant(indexes[1]), value)));
}
std::string UserDefinedText(Dialog&, Indexes indexes, const Variant& value) {
  return MacroText(UserDefinedFrom(CodeFromVariant(indexes[1]), value));
}

// The dialog is closed afterwards, if it was done.
Variant CallRunSimulation(Dialog& dialog, Indexes) {
  return std::int32_t{dialog.Press(kSimulate) ? 1 : 0};
}

// The variable of the Save/plot tab.
std::int32_t SavePlace(Dialog& dialog) {
  return dialog.Controls().Selection(kSaveVariable) + 1;
}

template <bool Truncation::*Flag>
Variant GetTruncated(Dialog& dialog, Indexes indexes) {
  return std::int32_t{IndexedVariable(dialog, indexes).saving.truncation.*Flag ? 1 : 0};
}
template <bool Truncation::*Flag>
void PutTruncated(Dialog& dialog, Indexes indexes, const Variant& value) {
  IndexedVariable(dialog, indexes).saving.truncation.*Flag = value.ToBoolean();
  dialog.ShowSaveSettings();
}
template <double Truncation::*Bound>
Variant GetBound(Dialog& dialog, Indexes indexes) {
  return IndexedVariable(dialog, indexes).saving.truncation.*Bound;
}
template <double Truncation::*Bound>
void PutBound(Dialog& dialog, Indexes indexes, const Variant& value) {
  const double bound = value.ToReal();
  if (!std::isfinite(bound)) throw Error("expected a finite number, got " + value.ToText());
  IndexedVariable(dialog, indexes).saving.truncation.*Bound = bound;
  dialog.ShowSaveSettings();
}

constexpr std::array<Member, 27> kMembers{{
    {"QuickTabVariable", GetSelection<Dialog, kVariable, 1>, PutSelection<Dialog, kVariable, 1>},
    {"QuickTabDistribution", GetSelection<Dialog, kDistribution, 1>, PutSelection<Dialog, kDistribution, 1>},
    Member{"SummaryStats", GetOutput<&Dialog::ShowSummaryStatistics>, nullptr}.ByButton(kSummaryStatistics),
    Member{"SummaryGraph", GetPlot<FitPlot::kSummary>, nullptr}.ByButton(kSummaryGraph),
    Member{"EmpiricalCDFPlot", GetPlot<FitPlot::kEmpiricalDistribution>, nullptr}.ByButton(kEmpiricalPlot),
    Member{"HistogramWithFit", GetPlot<FitPlot::kHistogram>, nullptr}.ByButton(kHistogram),
    Member{"CumulativeHistogram", GetPlot<FitPlot::kCumulativeHistogram>, nullptr}.ByButton(
        kCumulativeHistogram),
    Member{"PPPlot", GetPlot<FitPlot::kProbabilityPlot>, nullptr}.ByButton(kProbabilityPlot),
    Member{"QQPlot", GetPlot<FitPlot::kQuantilePlot>, nullptr}.ByButton(kQuantilePlot),
    Member{"BoxPlot", GetPlot<FitPlot::kBoxPlot>, nullptr}.ByButton(kBoxPlot),
    {"SaveFitTabVariable", GetSelection<Dialog, kSaveVariable, 1>, PutSelection<Dialog, kSaveVariable, 1>},
    Member{"CorrelationMatrix", GetOutput<&Dialog::ShowCorrelationMatrix>, nullptr}.ByButton(
        kCorrelationMatrix),
    Member{"QuickTabDistributionSummaryStats", GetDistributionSummary<&Dialog::QuickVariable>, nullptr}
        .ByButton(kDistributionSummary),
    Member{"SavePlotTabDistributionSummaryStats", GetDistributionSummary<&Dialog::SaveVariable>, nullptr}
        .ByButton(kSaveDistributionSummary),
    Member{"SaveDistributionFit", GetOutput<&Dialog::SaveFits>, nullptr}.ByButton(kSaveFit),
    Member{"DistributionOrder", GetOrder, PutOrder}.ShownAt(SavePlace),
    {"IsUserDefinedDistributions", GetChecked<Dialog, kUserDefined>, PutChecked<Dialog, kUserDefined>},
    {"UserDefinedDistributionOrder", GetUserDefinedOrder, PutUserDefinedOrder},
    {"IsDefaultDistributionSettings", GetIsDefault, PutIsDefault},
    Member{"UserDefinedDistributions", GetUserDefined, PutUserDefined}.WrittenBy(UserDefinedText),
    Member{"IsUserDefinedTruncMin", GetTruncated<&Truncation::below>, PutTruncated<&Truncation::below>}
        .ShownAt(SavePlace),
    Member{"UserDefinedTruncMin", GetBound<&Truncation::minimum>, PutBound<&Truncation::minimum>}.ShownAt(
        SavePlace),
    Member{"IsUserDefinedTruncMax", GetTruncated<&Truncation::above>, PutTruncated<&Truncation::above>}
        .ShownAt(SavePlace),
    Member{"UserDefinedTruncMax", GetBound<&Truncation::maximum>, PutBound<&Truncation::maximum>}.ShownAt(
        SavePlace),
    {"Variables", GetVariables, PutVariables},
    Member{"DistributionDetails", GetOutput<&Dialog::ShowDetails>, nullptr}.ByButton(kDetails),
    Member{"RunSimulation", CallRunSimulation, nullptr}.ByButton(kSimulate),
}};
static_assert(Binds(kFitDistributionResultsInterface, kMembers));

}  // namespace

CFitDistributionResults::CFitDistributionResults(AnalysisServices& analysis)
    : CSimulationAndRiskModelessDialog(analysis, FitResultsTemplate()) {
  EnableAutomation<CFitDistributionResults>(kFitDistributionResultsInterface, "CFitDistributionResults",
                                            kMembers);
}

void CFitDistributionResults::PutResultsVariables(const Variant& variables) {
  PutVariables(*this, {}, variables);
}

}  // namespace brenvolt::sra
