#include "brv_sra/simulation/simulation_run.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <utility>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/distributions/sheet_property_store.h"
#include "brv_sra/distributions/variable_properties.h"
#include "brv_sra/simulation/correlation_induction.h"
#include "brv_sra/simulation/sampling/sample_generation.h"
#include "brv_sra/simulation/sampling/variable_sampler.h"
#include "brv_sra/simulation/simulation_output.h"
#include "host/analysis/analysis_memory.h"
#include "host/automation/variable_list.h"
#include "host/base/error.h"

namespace brenvolt::sra {
namespace {

constexpr std::int64_t kSampleLimit = 2'000'000'000;  // bytes

// The correlations among the variables that take part; each must exist.
Result<void> CheckCorrelations(const SimulationDesign& design, std::span<const double> target) {
  const std::vector<std::size_t> active = design.ActiveVariables();
  for (std::size_t i = 0; i < active.size(); ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      if (std::isfinite(target[i * active.size() + j])) continue;
      return Fault{FaultIdentifier::kCorrelationMissing, design.variables[active[j]].name,
                   design.variables[active[i]].name};
    }
  }
  return {};
}

// Fills the sample matrix.
using Correlations = std::optional<SimulatedCorrelations>;
using Generate = Result<Correlations> (*)(const SimulationDesign&, std::span<double>, const RunProgress&);

template <bool (*Generator)(const SimulationDesign&, std::span<double>, ProgressBar&)>
Result<Correlations> GenerateIndependent(const SimulationDesign& design, std::span<double> matrix,
                                         const RunProgress& bars) {
  const auto progress = Computing(bars, matrix.size() + 1);
  if (!Generator(design, matrix, *progress)) return SamplingFault(design);
  return Correlations();
}

Result<Correlations> GenerateCorrelated(const SimulationDesign& design, std::span<double> matrix,
                                        const RunProgress& bars) {
  SimulatedCorrelations correlations;
  correlations.asked = ActiveCorrelations(design);
  // A single sample is generated without a look at the matrix.
  if (design.numberOfSamples > 1) {
    if (auto complete = CheckCorrelations(design, correlations.asked); !complete) return complete.Reason();
  }
  try {
    auto induction = InduceRankCorrelation(design, correlations.asked, matrix, bars);
    if (!induction) {
      const bool sampled = induction.Reason().identifier != FaultIdentifier::kNotSampled;
      return sampled ? induction.Reason() : SamplingFault(design);
    }
    correlations.scoreCorrection = induction->scoreCorrection;
    correlations.repair = std::move(induction->repair);
  } catch (const Error& error) {  // raised where progress is shown
    return Fault{FaultIdentifier::kReorderingEnded, error.what()};
  }
  return Correlations(std::move(correlations));
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

Result<void> CheckSampling(const SimulationDesign& design) {
  for (const std::size_t j : design.ActiveVariables()) {
    const auto& [number, name, specification, labels] = design.variables[j];
    const VariableSampler sampler(specification, design.truncate, design.source);
    if (sampler.IsValid() && std::isfinite(sampler.LargestMagnitude())) continue;
    return Fault{sampler.IsValid() ? FaultIdentifier::kSampleBeyondLargestNumber
                                   : FaultIdentifier::kTruncationNotSampled,
                 name, std::string(Description(specification.code, specification.values))};
  }
  return {};
}

Fault SamplingFault(const SimulationDesign& design) {
  const Result<void> checked = CheckSampling(design);
  return checked ? Fault{FaultIdentifier::kNotSampled} : checked.Reason();
}

std::vector<std::int16_t> VariablesWithDistributions(const SheetPropertyStore& input) {
  std::vector<std::int16_t> numbers;
  for (std::size_t i = 0; i < input.Sheet().VariableCount(); ++i) {
    // An empty order marks a variable whose fits all failed.
    if (HasStoredOrder(input, static_cast<int>(i + 1))) numbers.push_back(VariableNumberOf(i));
  }
  return numbers;
}

Result<SimulationDesign> ReadDesign(const SheetPropertyStore& input, const SimulationOptions& options) {
  const std::vector<int> numbers(options.variables.begin(), options.variables.end());
  SimulationDesign design;
  design.numberOfSamples = options.numberOfSamples;
  design.method = options.method;
  design.truncate = options.truncate;
  design.source = options.source;
  const auto read = ReadDistributionProperties(input, numbers);
  if (!read) return read.Reason();
  for (const VariableDistributions& variable : *read) {
    if (variable.ranked.empty()) return Fault{FaultIdentifier::kDistributionMissing};
    const DistributionSpecification& best = variable.ranked.front();
    const Variable& source = input.Sheet().VariableAt(static_cast<std::size_t>(variable.variableNumber - 1));
    design.variables.push_back({variable.variableNumber, source.Name(), best, LevelLabels(source, best)});
  }
  const auto isContinuous = [](const SimulationVariable& variable) {
    return IsContinuous(variable.specification.code);
  };
  std::stable_partition(design.variables.begin(), design.variables.end(), isContinuous);
  for (std::size_t j = 0; j < design.variables.size(); ++j) {
    const auto number = static_cast<std::int16_t>(design.variables[j].variableNumber);
    if (std::ranges::find(options.excluded, number) != options.excluded.end())
      design.excluded.push_back(static_cast<std::int32_t>(j));
  }
  return design;
}

bool FitsSampleLimit(std::size_t variables, std::int64_t samples) {
  constexpr auto kCells = static_cast<std::int64_t>(kSampleLimit / sizeof(double));
  return variables == 0 || samples <= kCells / static_cast<std::int64_t>(variables);
}

Result<SimulationRun> RunSimulation(const SimulationDesign& design, bool seeded, double seed,
                                    const RunProgress& bars, bool updating) {
  const Generate generate = kGenerators[static_cast<std::size_t>(design.method)];
  if (generate == nullptr) return SimulationRun();
  if (design.numberOfSamples < 1 || design.ActiveVariables().empty())
    return Fault{FaultIdentifier::kNotSampled};
  AnalysisArray<double> matrix(static_cast<std::size_t>(design.numberOfSamples) * design.variables.size());
  SeedRandomStream(seeded, seed);
  Result<Correlations> correlations = generate(design, matrix.Span(), bars);
  if (!correlations) return correlations.Reason();
  return SimulationRun{BuildOutput(design, matrix.Span(), bars, updating), *std::move(correlations)};
}

}  // namespace brenvolt::sra
