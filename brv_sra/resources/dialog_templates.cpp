#include "brv_sra/resources/dialog_templates.h"

#include <utility>

#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/strings.h"
#include "host/numeric/distributions/distribution_table.h"

namespace brenvolt::sra {
namespace {

using enum ControlKind;

std::string_view Text(std::int32_t number) {
  return ResourceString(number);
}

RowTemplate OkAndCancel(std::int32_t okCaption) {
  return {{kControlOk, kButton, Text(okCaption)}, {kControlCancel, kButton, Text(kFitButtonCancel)}};
}

// The check box of a distribution, and what belongs to it.
RowTemplate DistributionRow(const DistributionFacts& facts) {
  using namespace fit_dialog;
  RowTemplate row{{CheckOf(facts.code), kCheckBox, Text(FitCheckResource(facts.code))}};
  if (facts.HasOffset()) row.push_back({FieldOf(facts.code), kRealField, Text(kOffsetCaption)});
  if (facts.code == DistributionCode::kGaussianMixture)
    row.push_back({kMixtures, kIntegerField, Text(kFitLabelMixtures)});
  if (facts.code == DistributionCode::kJohnson)
    row.push_back({kJohnsonPercentile, kCheckBox, Text(kFitCheckJohnsonPercentile)});
  if (facts.code == DistributionCode::kBinomial) {
    row.push_back({kUseTrials, kCheckBox, Text(kFitLabelTrials)});
    row.push_back({kTrials, kIntegerField, ""});
  }
  return row;
}

// The tabs of both kinds of variables number their controls alike.
TabTemplate DistributionTab(std::int32_t caption, bool isContinuous) {
  using namespace fit_dialog;
  const std::int32_t shift = isContinuous ? 0 : kDiscreteVariable - kContinuousVariable;
  const auto button = [shift](std::int32_t number, std::int32_t text) {
    return ControlTemplate{number + shift, kButton, Text(text)};
  };
  std::vector<RowTemplate> rows{{{kContinuousVariable + shift, kComboBox, ""},
                                 button(kContinuousPrevious, kFitButtonPrevious),
                                 button(kContinuousNext, kFitButtonNext)}};
  for (const DistributionEntry* entry : DistributionTable()) {
    if (entry->facts.isContinuous == isContinuous) rows.push_back(DistributionRow(entry->facts));
  }
  rows.push_back({button(kContinuousSelectAll, kFitButtonSelectAll),
                  button(kContinuousClearAll, kFitButtonClearAll),
                  button(kContinuousToggle, kFitButtonToggle)});
  return {Text(caption), {{"", std::move(rows)}}};
}

}  // namespace

const DialogTemplate& DefineTaskTemplate() {
  using namespace define_task;
  static const DialogTemplate result{
      25980,
      Text(kAnalysisTitle),
      {OkAndCancel(kFitButtonOk),
       {{kSelectionConditions, kButton, Text(kStartupSelection)},
        {kCaseWeights, kButton, Text(kStartupWeights)},
        {kOpenData, kButton, Text(kFitButtonOpenData)}}},
      {{Text(kFitTabQuick),
        {{"", {{{kTaskList, kListBox, ""}}, {{kAutoProfiler, kCheckBox, Text(kCommandAutoProfiler)}}}},
         {"",
          {{{kFitDistribution, kButton, Text(kCommandFitDistribution)},
            {kRunSimulation, kButton, Text(kCommandRunSimulation)}},
           {{kDesignSimulation, kButton, Text(kCommandDesignSimulation)},
            {kProfiler, kButton, Text(kCommandProfiler)}},
           {{kSimulationStartup, kButton, Text(kStartupSimulation)}}}}}}}};
  return result;
}

const DialogTemplate& SimulationStartupTemplate() {
  using namespace define_task;
  static const DialogTemplate result{25977,
                                     Text(kSimulationTitle),
                                     {OkAndCancel(kFitButtonOk)},
                                     {{Text(kFitTabQuick),
                                       {{"",
                                         {{{kRunSimulation, kButton, Text(kCommandRunSimulation)}},
                                          {{kDesignSimulation, kButton, Text(kCommandDesignSimulation)}},
                                          {{kProfiler, kButton, Text(kCommandProfiler)}}}}}}}};
  return result;
}

const DialogTemplate& FitDistributionTemplate() {
  using namespace fit_dialog;
  static const DialogTemplate result{
      25974,
      Text(kFitTitle),
      {OkAndCancel(kFitButtonOk),
       {{kOptions, kButton, Text(kFitButtonOptions)}, {kOpenData, kButton, Text(kFitButtonOpenData)}},
       {{kDeletionCaption, kLabel, Text(kFitGroupMissingData)},
        {kPairwise, kRadioButton, Text(kFitRadioPairwise)},
        {kCasewise, kRadioButton, Text(kFitRadioCasewise)}}},
      {{Text(kFitTabQuick),
        {{"",
          {{{kVariables, kButton, Text(kFitButtonVariables)}},
           {{kContinuousList, kLabel, Text(kFitListContinuous)}},
           {{kDiscreteList, kLabel, Text(kFitListDiscrete)}}}}}},
       DistributionTab(kFitTabContinuous, true),
       DistributionTab(kFitTabDiscrete, false)}};
  return result;
}

// Radio buttons exclude each other within a group, so the two lists of tests are two groups; the second has
// no caption and goes on under the first.
const DialogTemplate& FitOptionsTemplate() {
  using namespace fit_options;
  static const DialogTemplate result{
      25975,
      Text(kFitButtonOptions),
      {OkAndCancel(kFitButtonOk)},
      {{"",
        {{Text(kFitOptionsGroupRankBy),
          {{{kContinuousCaption, kLabel, Text(kFitOptionsContinuous)}},
           {{kContinuousKolmogorovSmirnov, kRadioButton, Text(kFitOptionsKolmogorovSmirnov)},
            {kContinuousChiSquare, kRadioButton, Text(kFitOptionsChiSquare)},
            {kContinuousAndersonDarling, kRadioButton, Text(kFitOptionsAndersonDarling)}}}},
         {"",
          {{{kDiscreteCaption, kLabel, Text(kFitOptionsDiscrete)}},
           {{kDiscreteKolmogorovSmirnov, kRadioButton, Text(kFitOptionsKolmogorovSmirnov)},
            {kDiscreteChiSquare, kRadioButton, Text(kFitOptionsChiSquare)}}}},
         {Text(kFitOptionsGroupBinning),
          {{{kEqualProbabilities, kRadioButton, Text(kFitOptionsEqualProbabilities)},
            {kEqualIntervals, kRadioButton, Text(kFitOptionsEqualIntervals)}}}}}}}};
  return result;
}

const DialogTemplate& FitResultsTemplate() {
  using namespace fit_results;
  static const DialogTemplate result{
      25983,
      Text(kFitResultsTitle),
      {OkAndCancel(kFitResultsSummary)},
      {{Text(kFitTabQuick),
        {{"",
          {{{kVariable, kComboBox, Text(kFitResultsVariable)},
            {kPrevious, kButton, Text(kFitButtonPrevious)},
            {kNext, kButton, Text(kFitButtonNext)}},
           {{kDistribution, kListBox, Text(kFitResultsDistribution)}},
           {{kSummaryStatistics, kButton, Text(kFitResultsSummary)},
            {kDistributionSummary, kButton, Text(kFitResultsDistributionSummary)},
            {kDetails, kButton, Text(kFitResultsDetails)},
            {kSummaryGraph, kButton, Text(kFitResultsSummaryGraph)}},
           {{kHistogram, kButton, Text(kFitResultsHistogram)},
            {kCumulativeHistogram, kButton, Text(kFitResultsCumulativeHistogram)},
            {kEmpiricalPlot, kButton, Text(kFitResultsEmpirical)}},
           {{kProbabilityPlot, kButton, Text(kFitResultsProbabilityPlot)},
            {kQuantilePlot, kButton, Text(kFitResultsQuantilePlot)},
            {kBoxPlot, kButton, Text(kFitResultsBoxPlot)}}}}}},
       {Text(kFitResultsTabSave),
        {{"",
          {{{kSaveVariable, kComboBox, Text(kFitResultsVariable)},
            {kSavePrevious, kButton, Text(kFitButtonPrevious)},
            {kSaveNext, kButton, Text(kFitButtonNext)}},
           {{kOrder, kListBox, Text(kFitResultsOrder)}},
           {{kMoveUp, kButton, Text(kFitResultsMoveUp)},
            {kMoveDown, kButton, Text(kFitResultsMoveDown)},
            {kLeaveOut, kButton, Text(kFitResultsLeaveOut)},
            {kDefaultOrder, kButton, Text(kFitResultsDefaultOrder)}}}},
         {Text(kFitResultsGroupTruncation),
          {{{kTruncateBelow, kCheckBox, Text(kFitResultsTruncateBelow)},
            {kTruncationMinimum, kRealField, ""}},
           {{kTruncateAbove, kCheckBox, Text(kFitResultsTruncateAbove)},
            {kTruncationMaximum, kRealField, ""}}}},
         {"",
          {{{kUserDefined, kCheckBox, Text(kFitResultsUserDefined)}},
           {{kSaveDistributionSummary, kButton, Text(kFitResultsDistributionSummary)},
            {kCorrelationMatrix, kButton, Text(kFitResultsCorrelations)},
            {kSaveFit, kButton, Text(kFitResultsSave)},
            {kSimulate, kButton, Text(kFitResultsSimulate)}}}}}}}};
  return result;
}

const DialogTemplate& DesignTemplate() {
  using namespace design_dialog;
  static const DialogTemplate result{15000,
                                     Text(kDesignTitle),
                                     {OkAndCancel(kFitButtonOk),
                                      {{kSaveToInput, kButton, Text(kDesignButtonSave)},
                                       {kCorrelationMatrix, kButton, Text(kFitResultsCorrelations)}}},
                                     {{Text(kFitTabQuick),
                                       {{"",
                                         {{{kVariables, kButton, Text(kFitButtonVariables)},
                                           {kEditCorrelations, kButton, Text(kDesignButtonCorrelations)}},
                                          {{kVariableList, kListBox, ""}},
                                          {{kEditDistribution, kButton, Text(kDesignButtonDistribution)},
                                           {kEditUserDefined, kButton, Text(kDesignButtonUserDefined)},
                                           {kEditDefaults, kButton, Text(kDesignButtonDefaults)}},
                                          {{kTakesPart, kCheckBox, Text(kDesignCheckTakesPart)}},
                                          {{kUseFitted, kCheckBox, Text(kDesignCheckUseFitted)}}}}}}}};
  return result;
}

const DialogTemplate& SimulationTemplate() {
  using namespace simulation_dialog;
  static const DialogTemplate result{
      25991,
      Text(kSimulationTitle),
      {OkAndCancel(kFitButtonOk)},
      {{Text(kFitTabQuick),
        {{"",
          {{{kVariables, kButton, Text(kFitButtonVariables)}, {kVariableList, kLabel, ""}},
           {{kNumberOfSamples, kIntegerField, Text(kSimulationSamples)}},
           {{kSeedSwitch, kCheckBox, Text(kSimulationSeedSwitch)},
            {kSeed, kIntegerField, Text(kSimulationSeed)}},
           {{kTruncate, kCheckBox, Text(kSimulationTruncate)}},
           {{kUseFitted, kCheckBox, Text(kDesignCheckUseFitted)}},
           {{kLeaveOut, kButton, Text(kSimulationLeaveOut)}, {kLeftOutList, kLabel, ""}},
           {{kMatrix, kComboBox, Text(kSimulationMatrix)}},
           {{kAutoUpdate, kCheckBox, Text(kSimulationAutoUpdate)},
            {kSimulate, kButton, Text(kProfilerButtonSimulate)}}}},
         {Text(kSimulationMethodGroup),
          {{{kMonteCarlo, kRadioButton, Text(kMethodMonteCarlo)}},
           {{kLatinHypercube, kRadioButton, Text(kMethodLatinHypercube)}},
           {{kImanConover, kRadioButton, Text(kMethodImanConover)}},
           {{kLatinHypercubeImanConover, kRadioButton, Text(kMethodLatinHypercubeImanConover)}},
           {{kNormalToAnything, kRadioButton, Text(kMethodNormalToAnything)}}}}}}}};
  return result;
}

const DialogTemplate& SimulationResultsTemplate() {
  static const DialogTemplate result{
      25988, Text(kSimulationResultsTitle), {OkAndCancel(kSimulationSummary)}, {}};
  return result;
}

const DialogTemplate& ProfilerTemplate() {
  using namespace profiler_dialog;
  const auto parameter = [](std::int32_t place) {
    return RowTemplate{{kParameterLabel + place, kLabel, ""}, {kParameter + place, kRealField, ""}};
  };
  static const DialogTemplate result{
      15033,
      Text(kProfilerTitle),
      {OkAndCancel(kProfilerButtonSimulate),
       {{kDefects, kButton, Text(kProfilerButtonDefects)},
        {kLoadModels, kButton, Text(kProfilerButtonLoadModels)},
        {kOptions, kButton, Text(kProfilerButtonOptions)}},
       {{kSeedSwitch, kCheckBox, Text(kProfilerCheckSeed)}, {kSeed, kIntegerField, ""}},
       {{kAutoUpdate, kCheckBox, Text(kProfilerCheckAutoUpdate)}},
       {{kInstructions, kLabel, ""}}},
      {{Text(kProfilerTabProfiler),
        {{"",
          {{{kPredictors, kListBox, Text(kProfilerListPredictors)},
            {kDistributions, kListBox, Text(kProfilerListDistributions)}},
           parameter(0),
           parameter(1),
           parameter(2),
           parameter(3),
           parameter(4),
           {{kMinimum, kRealField, Text(kProfilerLabelMin)}, {kMaximum, kRealField, Text(kProfilerLabelMax)}},
           {{kGroup, kComboBox, ""}}}},
         {Text(kProfilerGroupMixture), {{{kMixtures, kIntegerField, Text(kProfilerLabelMixtures)}}}},
         {Text(kProfilerGroupHistogram), {{{kLevels, kIntegerField, Text(kProfilerLabelLevels)}}}},
         {"",
          {{{kAddDistribution, kButton, Text(kProfilerButtonAdd)}},
           {{kSelected, kListBox, Text(kProfilerListSelected)}},
           {{kSimulateCorrelations, kCheckBox, Text(kProfilerCheckCorrelations)},
            {kEditCorrelation, kButton, Text(kProfilerButtonEditCorrelation)}},
           {{kFitBest, kButton, Text(kProfilerButtonFitBest)}}}}}},
       {Text(kProfilerTabOutput),
        {{"", {{{kRuns, kIntegerField, Text(kProfilerLabelRuns)}}}},
         {Text(kProfilerGroupSpecs),
          {{{kDependent, kComboBox, Text(kProfilerLabelEditSpec)}},
           {{kNoise, kComboBox, ""}, {kDeviation, kRealField, Text(kProfilerLabelStandardDeviation)}},
           {{kEditCorrelationY, kButton, Text(kProfilerButtonEditCorrelationY)}},
           {{kModel, kLabel, Text(kProfilerLabelModel)}},
           {{kFormula, kTextField, Text(kProfilerLabelFormula)}},
           {{kSetFormula, kButton, Text(kProfilerButtonSetFormula)},
            {kUndoFormula, kButton, Text(kProfilerButtonUndoFormula)}},
           {{kLsl, kRealField, Text(kProfilerLabelLsl)},
            {kUsl, kRealField, Text(kProfilerLabelUsl)},
            {kTarget, kRealField, Text(kProfilerLabelTarget)}},
           {{kSpecificationFault, kLabel, ""}},
           {{kCapability, kButton, Text(kProfilerButtonCapability)},
            {kSummaryStats, kButton, Text(kProfilerButtonSummaryStats)},
            {kSummaryGraph, kButton, Text(kProfilerButtonSummaryGraph)}}}}}}}};
  return result;
}

}  // namespace brenvolt::sra
