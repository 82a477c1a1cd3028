#include "host/jobs/dialogs/dialog_jobs.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <set>
#include <utility>

#include "host/automation/variable_list.h"
#include "host/base/almost_equal.h"
#include "host/base/error.h"
#include "host/base/number_text.h"
#include "host/formula/formula.h"
#include "host/formula/formula_name.h"

namespace brenvolt {
namespace {

using Names = std::vector<std::string>;

constexpr std::int32_t kUsualMixtures = 2;
// The choices for more variables take too long to be asked for.
constexpr std::size_t kMostRead = 2000;

Variant GetAt(AutomationObject& dialog, std::string_view member, std::size_t place) {
  const Variant index(static_cast<std::int32_t>(place + 1));
  return dialog.Get(member, {&index, 1});
}

Names NamesOf(const Variant& list, const Spreadsheet& sheet) {
  Names names;
  if (list.IsText() && Trim(list.ToText()).empty()) return names;
  for (const std::int16_t number : VariableNumbers(list, sheet.VariableCount()))
    names.push_back(sheet.VariableAt(static_cast<std::size_t>(number - 1)).Name());
  return names;
}

Names TextsOf(const Variant& array) {
  Names texts;
  for (const Variant& text : array.ToArray()) texts.push_back(text.ToText());
  return texts;
}

// The word whose member is chosen; empty if that is the usual one.
std::optional<std::string> ChosenWord(AutomationObject& dialog, const Choices& choices,
                                      std::string_view usual) {
  for (const auto& [word, member] : choices) {
    if (word != usual && dialog.Get(member).ToBoolean()) return word;
  }
  return std::nullopt;
}

// The fit specification, read variable by variable.
class FitReader {
 public:
  FitReader(AutomationObject& dialog, const Spreadsheet& sheet) : dialog_(dialog) {
    FitJob& job = read_.job;
    job.variables.continuous = NamesOf(dialog.Get("ContinuousVariable"), sheet);
    job.variables.discrete = NamesOf(dialog.Get("DiscreteVariable"), sheet);
    if (dialog.Get("IsCasewise").ToBoolean()) job.missing = "casewise";
    if (!job.variables.continuous.empty()) {
      job.rankBy = ChosenWord(dialog, kCriteria, "ks");
      job.binning = ChosenWord(dialog, kBinnings, "equal-probability");
    }
    if (!job.variables.discrete.empty()) job.discreteRankBy = ChosenWord(dialog, kDiscreteCriteria, "ks");
    ReadBootstrap();
    read_.isWhole = dialog.Get("ContradictedFitsLast").ToBoolean();
    ReadVariables(true);
    ReadVariables(false);
    TakeDistributions();
  }

  FitInDialog Read() && { return std::move(read_); }

 private:
  void ReadBootstrap() {
    const std::int32_t samples = dialog_.Get("BootstrapSamples").ToInteger();
    if (samples == 0) return;
    read_.job.bootstrap = samples;
    const std::int32_t seed = dialog_.Get("BootstrapSeed").ToInteger();
    if (seed != 1) read_.job.bootstrapSeed = seed;
  }

  void ReadVariables(bool continuous) {
    const FitJob::Variables& variables = read_.job.variables;
    const Names& names = continuous ? variables.continuous : variables.discrete;
    for (std::size_t i = 0; i < names.size(); ++i) {
      std::set<std::string> tried;
      for (const NamedDistribution& type : kNamedDistributions) {
        if (type.continuous != continuous || !GetAt(dialog_, type.check, i).ToBoolean()) continue;
        tried.insert(type.name);
        ReadOffset(type, names[i], i);
      }
      continuous ? ReadContinuous(names[i], i, tried) : ReadTrials(names[i], i, tried);
      std::set<std::string>& all = continuous ? continuous_ : discrete_;
      if (i > 0 && tried != all) read_.isWhole = false;
      all.insert(tried.begin(), tried.end());
    }
  }

  void ReadOffset(const NamedDistribution& type, const std::string& name, std::size_t place) {
    if (type.offset.empty()) return;
    const double offset = GetAt(dialog_, type.offset, place).ToReal();
    if (offset != 0 && !IsNotSet(offset)) read_.job.offsets.push_back({name, type.name, offset});
  }

  void ReadContinuous(const std::string& name, std::size_t place, const std::set<std::string>& tried) {
    const std::int32_t mixtures = GetAt(dialog_, "NumberOfMixtures", place).ToInteger();
    if (tried.contains("gaussianmixture") && mixtures != kUsualMixtures)
      read_.job.mixtures.push_back({name, static_cast<double>(mixtures)});
    const bool percentiles = GetAt(dialog_, "FitJohnsonByPercentile", place).ToBoolean();
    if (place > 0 && percentiles != read_.job.johnsonPercentiles) read_.isWhole = false;
    read_.job.johnsonPercentiles = percentiles;
  }

  void ReadTrials(const std::string& name, std::size_t place, const std::set<std::string>& tried) {
    if (!tried.contains("binomial") || !GetAt(dialog_, "IsNumberOfTrials", place).ToBoolean()) return;
    const std::int32_t trials = GetAt(dialog_, "NumberOfTrials", place).ToInteger();
    read_.job.trials.push_back({name, static_cast<double>(trials)});
  }

  // All that apply go without names.
  void TakeDistributions() {
    bool areAll = true;
    for (const NamedDistribution& type : kNamedDistributions) {
      const auto& variables = read_.job.variables;
      const bool applies = !(type.continuous ? variables.continuous : variables.discrete).empty();
      const bool isTried = (type.continuous ? continuous_ : discrete_).contains(type.name);
      if (isTried) read_.job.distributions.push_back(type.name);
      areAll = areAll && isTried == applies;
    }
    if (areAll) read_.job.distributions.clear();
  }

  AutomationObject& dialog_;
  FitInDialog read_;
  std::set<std::string> continuous_;  // distributions that are tried
  std::set<std::string> discrete_;
};

// Numbers that a field of a dialog has as text; NaN where it is empty.
double LimitIn(const Variant& text) {
  if (Trim(text.ToText()).empty()) return std::numeric_limits<double>::quiet_NaN();
  return text.ToReal();
}

void ReadPredictors(AutomationObject& dialog, ProfileJob& job) {
  const Names names = TextsOf(dialog.Get("Predictors"));
  for (std::size_t i = 0; i < names.size(); ++i) {
    const Variant::Array given = GetAt(dialog, "VariableDistributionParams", i).ToArray();
    if (given.empty()) throw Error("the predictor has no distribution", names[i]);
    if (given.front().ToText() != "Fixed") {
      job.inputs.named.emplace_back(names[i], NotationOf(DistributionFrom(given)));
    } else if (given.at(1).IsText()) {
      job.fixed.push_back({names[i], given.at(1).ToText()});
    } else {
      job.fixed.push_back({names[i], given.at(1).ToReal()});
    }
  }
  if (!dialog.Get("IsEditCorrelation").ToBoolean()) return;
  const Variant::Array rows = dialog.Get("UserDefinedDesignMatrixValues").ToArray();
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const Variant::Array row = rows[i].ToArray();
    for (std::size_t j = 0; j < i; ++j) {
      if (row.at(j).ToReal() != 0) job.inputs.pairs.push_back({names.at(j), names.at(i), row.at(j).ToReal()});
    }
  }
}

void ReadResponse(AutomationObject& dialog, const std::string& name, ProfileJob& job) {
  if (const std::string formula = dialog.Get("PredictionFormula").ToText(); !Trim(formula).empty()) {
    job.formulas.push_back(SplitAssignment(formula).name ? formula : QuotedInFormula(name) + " = " + formula);
  }
  if (dialog.Get("DependentNoise").ToBoolean()) job.noise.push_back({name, dialog.Get("StdDevY").ToReal()});
  const SpecificationLimits limits{LimitIn(dialog.Get("LSL")), LimitIn(dialog.Get("USL")),
                                   LimitIn(dialog.Get("Target"))};
  if (!std::isnan(limits.lower) || !std::isnan(limits.upper) || !std::isnan(limits.target))
    job.specifications.push_back({name, limits});
}

void ReadNoiseCorrelations(AutomationObject& dialog, const Names& names, ProfileJob& job) {
  if (job.noise.size() < 2) return;
  const Variant::Array rows = dialog.Get("UserDefinedDesignMatrixValuesY").ToArray();
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const Variant::Array row = rows[i].ToArray();
    for (std::size_t j = 0; j < i; ++j) {
      const double value = row.at(j).ToReal();
      if (value != 0)
        job.noiseCorrelations.push_back(names.at(j) + "," + names.at(i) + "=" + ShortestNumber(value));
    }
  }
}

}  // namespace

FitInDialog ReadFitJob(AutomationObject& dialog, const Spreadsheet& sheet) {
  if (sheet.VariableCount() > kMostRead)
    throw Error("the choices for more than " + std::to_string(kMostRead) +
                " variables are not read from the dialog; the command fit takes them as options");
  return FitReader(dialog, sheet).Read();
}

void PrepareFit(AutomationObject& dialog) {
  dialog.Put("ContradictedFitsLast", true);
}

void PrepareSeed(AutomationObject& dialog) {
  if (dialog.Get("IsSeedRandomNumber").ToBoolean()) return;
  dialog.Put("IsSeedRandomNumber", std::int32_t{1});
  dialog.Put("RandomSeedNumber", DrawSeed());
}

void PrepareMethod(AutomationObject& dialog, const JobInput& input) {
  dialog.Put(kSimulationMethods.at(SimulateJob().ChosenMethod(input)), true);
}

SimulateJob ReadSimulateJob(AutomationObject& dialog, const Spreadsheet& sheet) {
  if (!dialog.Get("IsSeedRandomNumber").ToBoolean())
    throw Error("these samples cannot be drawn again; give a seed, and simulate once more");
  if (dialog.Get("UseFittedDistributions").ToBoolean())
    throw Error("a simulation without the bounds of its distributions has no report");
  SimulateJob job;
  const Names left = NamesOf(dialog.Get("ExcludedVariables"), sheet);
  job.variables = NamesOf(dialog.Get("Variables"), sheet);
  std::erase_if(job.variables,
                [&](const std::string& name) { return std::ranges::find(left, name) != left.end(); });
  Names all;
  for (std::size_t i = 0; i < sheet.VariableCount(); ++i) {
    if (sheet.VariableAt(i).Property(kOrderProperty)) all.push_back(sheet.VariableAt(i).Name());
  }
  if (job.variables == all) job.variables.clear();
  job.method = ChosenWord(dialog, kSimulationMethods, {});
  job.samples = dialog.Get("NumberOfSamples").ToInteger();
  job.seed = dialog.Get("RandomSeedNumber").ToInteger();
  job.truncate = dialog.Get("TruncateSimulationData").ToBoolean();
  job.matrix = dialog.Get("CorrelationMatrixName").ToText();
  return job;
}

ProfileJob ReadProfileJob(AutomationObject& dialog, int selected) {
  if (!dialog.Get("IsSeedRandomNumber").ToBoolean())
    throw Error("these runs cannot be simulated again; give a seed, and simulate once more");
  ProfileJob job;
  const std::string models = dialog.Get("LoadModels").ToText();
  for (std::size_t begin = 0; begin < models.size();) {
    const std::size_t end = std::min(models.find('|', begin), models.size());
    if (end > begin) job.models.emplace_back(models.substr(begin, end - begin));
    begin = end + 1;
  }
  job.samples = dialog.Get("NumberOfRuns").ToInteger();
  job.seed = dialog.Get("RandomSeedNumber").ToInteger();
  ReadPredictors(dialog, job);
  const Names responses = TextsOf(dialog.Get("Dependents"));
  for (std::size_t i = 0; i < responses.size(); ++i) {
    dialog.Put("DependentforResult", static_cast<std::int32_t>(i + 1));
    ReadResponse(dialog, responses[i], job);
  }
  if (selected > 0) dialog.Put("DependentforResult", std::int32_t{selected});
  ReadNoiseCorrelations(dialog, responses, job);
  return job;
}

}  // namespace brenvolt
