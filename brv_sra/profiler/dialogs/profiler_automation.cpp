// The automation interface of the profiler: what its members do.
//
// iID counts the predictors from 1, DependentforResult the dependents. LSL, USL, Target, StdDevY and
// PredictionFormula are those of the selected dependent; an array puts those of all dependents, in their
// order. A number is put as a number or a text, empty takes it away; it is read as a text, empty if it is
// not given. VariableDistributionParams takes and gives the array of profiler_specification.h. A member that
// names an output makes, shows and returns it.
#include <array>
#include <cmath>
#include <limits>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "brv_sra/frame/control_members.h"
#include "brv_sra/frame/fault_message.h"
#include "brv_sra/matrix/dialogs/correlation_entries.h"
#include "brv_sra/profiler/dialogs/profiler_dialog.h"
#include "brv_sra/profiler/dialogs/profiler_specification.h"
#include "brv_sra/resources/dialog_templates.h"
#include "brv_sra/resources/profiler_interface.h"
#include "brv_sra/resources/resource_numbers.h"
#include "host/base/error.h"
#include "host/base/number_text.h"

namespace brenvolt::sra {
namespace {

using namespace profiler_dialog;
using Dialog = CSimulationProfiler;
using Indexes = std::span<const Variant>;
using Member = AutomationMember<Dialog>;

constexpr double kLargestLimit = 1e30;

Variant GetModels(Dialog& dialog, Indexes) {
  std::string text;
  for (const std::string& file : dialog.State().modelFiles) text += (text.empty() ? "" : "|") + file;
  return text;
}
// One text of file names separated by "|", or an array of names.
void PutModels(Dialog& dialog, Indexes, const Variant& value) {
  std::vector<std::filesystem::path> files;
  for (const Variant& name : value.ToArray()) {
    for (auto& file : ValueOrThrow(SplitFileNames(name.ToText()))) files.push_back(std::move(file));
  }
  if (files.empty()) throw Error(dialog.szLoadResString(kMsgProfilerFileNames));
  dialog.LoadModels(files);
}

Variant GetCorrelations(Dialog& dialog, Indexes) {
  return CorrelationArray(dialog.Design().correlations, dialog.Design().predictors.size());
}
void PutCorrelations(Dialog& dialog, Indexes, const Variant& value) {
  dialog.Design().correlations = CorrelationsFrom(value, NamesOf(dialog.Design().predictors));
}
Variant GetCorrelationsY(Dialog& dialog, Indexes) {
  return CorrelationArray(dialog.Design().correlationsY, dialog.Design().dependents.size());
}
void PutCorrelationsY(Dialog& dialog, Indexes, const Variant& value) {
  dialog.Design().correlationsY = CorrelationsFrom(value, NamesOf(dialog.Design().dependents));
}

ProfilerPredictor& IndexedPredictor(Dialog& dialog, Indexes indexes) {
  auto& predictors = dialog.Design().predictors;
  const std::int32_t place = indexes[0].ToInteger();
  if (place < 1 || static_cast<std::size_t>(place) > predictors.size())
    throw Error("no predictor " + std::to_string(place) + "; there are " + std::to_string(predictors.size()));
  return predictors[static_cast<std::size_t>(place - 1)];
}
Variant GetSpecification(Dialog& dialog, Indexes indexes) {
  return SpecificationArray(IndexedPredictor(dialog, indexes));
}
void PutSpecification(Dialog& dialog, Indexes indexes, const Variant& value) {
  SetSpecification(IndexedPredictor(dialog, indexes), value);
  dialog.Refresh();
}

// A number of a dependent that may be missing: as a design holds it, and its range.
double& LowerOf(ProfilerDependent& dependent) {
  return dependent.limits.lower;
}
double& UpperOf(ProfilerDependent& dependent) {
  return dependent.limits.upper;
}
double& TargetOf(ProfilerDependent& dependent) {
  return dependent.limits.target;
}
double& DeviationOf(ProfilerDependent& dependent) {
  return dependent.standardDeviation;
}
using NumberOf = double& (*)(ProfilerDependent&);

double NumberFrom(const Variant& value, NumberOf number) {
  const bool deviation = number == DeviationOf;
  if (value.IsEmpty() || (value.IsText() && Trim(value.ToText()).empty()))
    return deviation ? kNotSet : std::numeric_limits<double>::quiet_NaN();
  const double x = value.ToReal();
  if (!std::isfinite(x) || std::abs(x) > kLargestLimit || (deviation && x < 0))
    throw Error("out of range: " + value.ToText());
  return x;
}

template <NumberOf Number>
Variant GetReal(Dialog& dialog, Indexes) {
  const double value = Number(dialog.Selected());
  return std::isnan(value) || IsNotSet(value) ? std::string() : ShortestNumber(value);
}
template <NumberOf Number>
void PutReal(Dialog& dialog, Indexes, const Variant& value) {
  if (!value.IsArray()) {
    Number(dialog.Selected()) = NumberFrom(value, Number);
  } else {
    auto& dependents = dialog.Design().dependents;
    std::vector<double> numbers;
    for (const Variant& item : value.ToArray()) numbers.push_back(NumberFrom(item, Number));
    if (numbers.size() != dependents.size())
      throw Error(std::to_string(numbers.size()) + " values for " + std::to_string(dependents.size()) +
                  " dependents");
    for (std::size_t k = 0; k < numbers.size(); ++k) Number(dependents[k]) = numbers[k];
  }
  dialog.Refresh();
}

Variant GetFormula(Dialog& dialog, Indexes) {
  const auto& dependents = dialog.Design().dependents;
  return dialog.State().selected < dependents.size() ? dependents[dialog.State().selected].formula
                                                     : std::string();
}
void PutFormula(Dialog& dialog, Indexes, const Variant& value) {
  if (!value.IsArray()) return dialog.PutFormula(value.ToText(), dialog.State().selected);
  const Variant::Array texts = value.ToArray();
  for (std::size_t k = 0; k < texts.size(); ++k) dialog.PutFormula(texts[k].ToText(), k);
}

void PutRuns(Dialog& dialog, Indexes, const Variant& value) {
  RequireTaken(dialog.Enter(kRuns, value.ToText()));
}
Variant GetRuns(Dialog& dialog, Indexes) {
  return dialog.Design().runs;
}
// The field takes no fewer than its least.
void PutFewRuns(Dialog& dialog, Indexes, const Variant& value) {
  const std::int32_t runs = value.ToInteger();
  if (runs < 1 || runs > kMostProfilerRuns)
    throw Error("expected 1 to " + std::to_string(kMostProfilerRuns) + " runs, got " + value.ToText());
  dialog.Design().runs = runs;
  dialog.Refresh();
}
void PutSeed(Dialog& dialog, Indexes, const Variant& value) {
  if (value.ToInteger() < 1) ThrowControlRefused(dialog.szLoadResString(kMsgProfilerInvalidSeed));
  RequireTaken(dialog.Enter(kSeed, value.ToText()));
}

Variant GetFitBest(Dialog& dialog, Indexes) {
  dialog.FitBest();
  return std::int32_t{1};
}

Variant NameArray(const std::vector<std::string>& names) {
  Variant::Array array;
  for (const std::string& name : names) array.emplace_back(name);
  return array;
}
Variant GetPredictors(Dialog& dialog, Indexes) {
  return NameArray(NamesOf(dialog.Design().predictors));
}
Variant GetDependents(Dialog& dialog, Indexes) {
  return NameArray(NamesOf(dialog.Design().dependents));
}

Variant GetDistributions(Dialog& dialog, Indexes) {
  std::vector<std::string> texts;
  for (const ProfilerPredictor& predictor : dialog.Design().predictors)
    texts.push_back(SpecificationText(predictor));
  return NameArray(texts);
}

Variant GetGaps(Dialog& dialog, Indexes) {
  Variant::Array predictors;
  for (const ProfilerPredictor& predictor : dialog.Design().predictors) {
    Variant::Array ends;
    for (const NumberRange& gap : predictor.Gaps()) {
      ends.emplace_back(gap.low);
      ends.emplace_back(gap.high);
    }
    predictors.emplace_back(std::move(ends));
  }
  return predictors;
}

template <auto Make>
Variant GetOutput(Dialog& dialog, Indexes) {
  return Variant::Object((dialog.*Make)());
}

// The predictor that is highlighted, whose specification the fields make.
std::int32_t ShownPredictor(Dialog& dialog) {
  return dialog.Controls().Selection(kPredictors) + 1;
}

constexpr std::array<Member, 28> kMembers{{
    {"InputCorrMatrix", nullptr, PutCorrelations},
    {"LoadModels", GetModels, PutModels},
    {"UserDefinedDesignMatrixValues", GetCorrelations, PutCorrelations},
    {"UserDefinedDesignMatrixValuesY", GetCorrelationsY, PutCorrelationsY},
    Member{"VariableDistributionParams", GetSpecification, PutSpecification}.ShownAt(ShownPredictor),
    {"NumberOfSamples", GetNumber<Dialog, kRuns>, PutRuns},
    {"DependentforResult", GetSelection<Dialog, kDependent, 1>, PutSelection<Dialog, kDependent, 1>},
    {"LSL", GetReal<LowerOf>, PutReal<LowerOf>},
    {"USL", GetReal<UpperOf>, PutReal<UpperOf>},
    {"Target", GetReal<TargetOf>, PutReal<TargetOf>},
    Member{"CapabilityStats", GetOutput<&Dialog::CapabilityStats>, nullptr}.ByButton(kCapability),
    Member{"SummaryStats", GetOutput<&Dialog::SummaryStats>, nullptr}.ByButton(kSummaryStats),
    Member{"SummaryGraph", GetOutput<&Dialog::SummaryGraph>, nullptr}.ByButton(kSummaryGraph),
    {"IsAutoUpdateSameSheet", GetChecked<Dialog, kAutoUpdate>, PutChecked<Dialog, kAutoUpdate>},
    {"SimulationResults", GetOutput<&Dialog::SimulationResults>, nullptr},
    Member{"DefectProfile", GetOutput<&Dialog::DefectProfile>, nullptr}.ByButton(kDefects),
    {"IsEditCorrelation", GetChecked<Dialog, kSimulateCorrelations>,
     PutChecked<Dialog, kSimulateCorrelations>},
    {"DependentNoise", GetSelection<Dialog, kNoise, 0>, PutSelection<Dialog, kNoise, 0>},
    Member{"FitBestDistributions", GetFitBest, nullptr}.ByButton(kFitBest),
    {"PredictionFormula", GetFormula, PutFormula},
    {"IsSeedRandomNumber", GetChecked<Dialog, kSeedSwitch>, PutChecked<Dialog, kSeedSwitch>},
    {"RandomSeedNumber", GetNumber<Dialog, kSeed>, PutSeed},
    {"StdDevY", GetReal<DeviationOf>, PutReal<DeviationOf>},
    {"Predictors", GetPredictors, nullptr},
    {"Dependents", GetDependents, nullptr},
    {"PredictorDistributions", GetDistributions, nullptr},
    {"NumberOfRuns", GetRuns, PutFewRuns},
    {"PredictorGaps", GetGaps, nullptr},
}};
static_assert(Binds(kSimulationProfilerInterface, kMembers));

}  // namespace

CSimulationProfiler::CSimulationProfiler(AnalysisServices& analysis)
    : CSimulationAndRiskModelessDialog(analysis, ProfilerTemplate()), predictors_(*this, Design()) {
  EnableAutomation<CSimulationProfiler>(kSimulationProfilerInterface, "CSimulationProfiler", kMembers);
}

}  // namespace brenvolt::sra
