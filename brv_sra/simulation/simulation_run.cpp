#include "brv_sra/simulation/simulation_run.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <new>
#include <utility>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/distributions/sheet_property_store.h"
#include "brv_sra/distributions/variable_properties.h"
#include "brv_sra/resources/computing_progress.h"
#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/strings.h"
#include "brv_sra/simulation/correlation_induction.h"
#include "brv_sra/simulation/sample_generation.h"
#include "brv_sra/simulation/simulation_output.h"
#include "brv_sra/simulation/variable_sampler.h"
#include "host/analysis/analysis_memory.h"
#include "host/automation/variable_list.h"
#include "host/base/error.h"

namespace brenvolt::sra {
namespace {

constexpr std::int64_t kSampleLimit = 2'000'000'000;  // bytes

// Which correlation that takes part is missing; empty where all are there.
std::string FaultyCorrelation(const SimulationDesign& design, std::span<const double> target) {
  const std::vector<std::size_t> active = design.ActiveVariables();
  for (std::size_t i = 0; i < active.size(); ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      if (std::isfinite(target[i * active.size() + j])) continue;
      return "the correlation of " + design.variables[active[j]].name + " and " +
             design.variables[active[i]].name + " is missing";
    }
  }
  return {};
}

// Fills the sample matrix; on failure `where` names what is at fault.
using Generate = void (*)(const SimulationDesign&, std::span<double>, ProgressPort&, SimulationRun&);

template <bool (*Generator)(const SimulationDesign&, std::span<double>, CKroProgressBar&)>
void GenerateIndependent(const SimulationDesign& design, std::span<double> matrix, ProgressPort& port,
                         SimulationRun& run) {
  const auto progress = Computing(port, matrix.size() + 1);
  if (!Generator(design, matrix, *progress)) run.status = SimulationStatus::kDistributionFailure;
}

void GenerateCorrelated(const SimulationDesign& design, std::span<double> matrix, ProgressPort& port,
                        SimulationRun& run) {
  SimulatedCorrelations correlations;
  correlations.asked = ActiveCorrelations(design);
  // A single sample is generated without a look at the matrix.
  if (design.numberOfSamples > 1) run.where = FaultyCorrelation(design, correlations.asked);
  if (!run.where.empty()) {
    run.status = SimulationStatus::kMatrixFailure;
    return;
  }
  CorrelationInduction induction;
  try {
    induction = InduceRankCorrelation(design, correlations.asked, matrix, port);
  } catch (const Error& error) {  // raised where progress is shown
    run.fault = error.what();
    induction.status = SimulationStatus::kDistributionFailure;
  }
  run.status = induction.status;
  correlations.scoreCorrection = induction.scoreCorrection;
  correlations.repair = std::move(induction.repair);
  run.correlations = std::move(correlations);
}

// By method code; null for the method that produces nothing.
constexpr std::array<Generate, 5> kGenerators{GenerateIndependent<GenerateMonteCarlo>,
                                              GenerateIndependent<GenerateLatinHypercube>, GenerateCorrelated,
                                              GenerateCorrelated, nullptr};

// The texts that the input shows for the levels of a user-defined discrete distribution.
std::map<double, std::string> LevelLabels(const Variable& input, const DistributionSpecification& levels) {
  std::map<double, std::string> labels;
  if (levels.code != DistributionCode::kHistogram) return labels;
  // Levels and their proportions in turn.
  for (std::size_t i = 0; i < levels.values.size(); i += 2) {
    if (const auto text = input.Label(levels.values[i])) labels.emplace(levels.values[i], *text);
  }
  return labels;
}

}  // namespace

std::string FaultyVariable(const SimulationDesign& design) {
  for (const std::size_t j : design.ActiveVariables()) {
    const SimulationVariable& variable = design.variables[j];
    const VariableSampler sampler(variable.specification, design.truncate, design.source);
    const std::string place =
        "variable " + variable.name + ", " +
        std::string(Description(variable.specification.code, variable.specification.values));
    if (!sampler.IsValid()) return place + " with its truncation";
    if (!std::isfinite(sampler.LargestMagnitude())) return place + " reaches beyond the largest number";
  }
  return {};
}

std::vector<std::int16_t> VariablesWithDistributions(Spreadsheet& sheet) {
  const SheetPropertyStore store(sheet);
  std::vector<std::int16_t> numbers;
  for (std::size_t i = 0; i < sheet.VariableCount(); ++i) {
    // An empty order marks a variable whose fits all failed.
    if (HasStoredOrder(store, static_cast<int>(i + 1))) numbers.push_back(VariableNumberOf(i));
  }
  return numbers;
}

SimulationDesign ReadDesign(Spreadsheet& sheet, const SimulationOptions& options) {
  const SheetPropertyStore store(sheet);
  const std::vector<int> numbers(options.variables.begin(), options.variables.end());
  SimulationDesign design;
  design.numberOfSamples = options.numberOfSamples;
  design.method = options.method;
  design.truncate = options.truncate;
  for (const VariableDistributions& variable : ReadDistributionProperties(store, numbers)) {
    if (variable.ranked.empty())
      throw CDispatchException(std::string(ResourceString(kMsgInvalidOrderProperty)));
    const DistributionSpecification& best = variable.ranked.front();
    const Variable& input = sheet.VariableAt(static_cast<std::size_t>(variable.variableNumber - 1));
    design.variables.push_back({variable.variableNumber, store.VariableName(variable.variableNumber), best,
                                LevelLabels(input, best)});
  }
  const auto isContinuous = [](const SimulationVariable& variable) {
    return IsContinuous(variable.specification.code);
  };
  std::stable_partition(design.variables.begin(), design.variables.end(), isContinuous);
  return design;
}

bool FitsSampleLimit(std::size_t variables, std::int64_t samples) {
  constexpr auto kCells = static_cast<std::int64_t>(kSampleLimit / sizeof(double));
  return variables == 0 || samples <= kCells / static_cast<std::int64_t>(variables);
}

SimulationRun RunSimulation(const SimulationDesign& design, bool seeded, double seed, ProgressPort& port,
                            bool updating) {
  SimulationRun run;
  const Generate generate = kGenerators[static_cast<std::size_t>(design.method)];
  if (generate == nullptr) return run;
  if (design.numberOfSamples < 1 || design.ActiveVariables().empty()) {
    run.status = SimulationStatus::kDistributionFailure;
    return run;
  }
  try {
    AnalysisArray<double> matrix(static_cast<std::size_t>(design.numberOfSamples) * design.variables.size());
    SeedRandomStream(seeded, seed);
    generate(design, matrix.Span(), port, run);
    if (run.status == SimulationStatus::kSuccess) {
      run.output = BuildOutput(design, matrix.Span(), port, updating);
    } else if (run.status == SimulationStatus::kDistributionFailure) {
      run.where = FaultyVariable(design);
    }
  } catch (const std::bad_alloc&) {
    run.status = SimulationStatus::kMemoryFailure;
  }
  return run;
}

}  // namespace brenvolt::sra
