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
#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/strings.h"
#include "brv_sra/simulation/correlation_induction.h"
#include "brv_sra/simulation/sample_generation.h"
#include "brv_sra/simulation/variable_sampler.h"
#include "host/analysis/analysis_memory.h"
#include "host/automation/variable_list.h"
#include "host/base/error.h"

namespace brenvolt::sra {
namespace {

constexpr std::int64_t kSampleLimit = 2'000'000'000;  // bytes
constexpr std::size_t kTitleLength = 80;
constexpr std::size_t kHeaderLength = 12;
// How many cases are copied between two looks at the clock.
constexpr std::size_t kProgressStride = 4096;

// Which variable cannot be sampled, and why; empty where that showed only in its values.
std::string FaultyVariable(const SimulationDesign& design) {
  for (std::size_t j = 0; j < design.variables.size(); ++j) {
    const SimulationVariable& variable = design.variables[j];
    if (design.IsExcluded(j) ||
        VariableSampler(variable.specification, design.truncate, design.source).IsValid())
      continue;
    const std::string place = "variable " + variable.name + ", ";
    const auto code = variable.specification.code;
    return place + Description(code, variable.specification.values) + " with its truncation";
  }
  return {};
}

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
  const auto progress = CKroProgressBar::new_ProgressBar(port, ResourceString(kProgressComputing),
                                                         static_cast<std::int64_t>(matrix.size() + 1));
  if (!Generator(design, matrix, *progress)) run.status = SimulationStatus::kDistributionFailure;
}

void GenerateCorrelated(const SimulationDesign& design, std::span<double> matrix, ProgressPort& port,
                        SimulationRun& run) {
  SimulatedCorrelations correlations;
  correlations.asked = ActiveCorrelations(design);
  // Also for a single sample, which is generated without a look at the matrix.
  run.where = FaultyCorrelation(design, correlations.asked);
  if (!run.where.empty()) {
    run.status = SimulationStatus::kMatrixFailure;
    return;
  }
  CorrelationInduction induction = InduceRankCorrelation(design, correlations.asked, matrix, port);
  run.status = induction.status;
  correlations.scoreCorrection = induction.scoreCorrection;
  correlations.repair = std::move(induction.repair);
  run.correlations = std::move(correlations);
}

struct Method {
  SimulationMethod method;
  std::int32_t title;
  Generate generate;
};
constexpr std::array<Method, 4> kMethods{{
    {SimulationMethod::kMonteCarlo, kMethodMonteCarlo, GenerateIndependent<GenerateMonteCarlo>},
    {SimulationMethod::kLatinHypercube, kMethodLatinHypercube, GenerateIndependent<GenerateLatinHypercube>},
    {SimulationMethod::kImanConover, kMethodImanConover, GenerateCorrelated},
    {SimulationMethod::kLatinHypercubeImanConover, kMethodLatinHypercubeImanConover, GenerateCorrelated},
}};

// Null for the method that produces nothing.
const Method* FindMethod(SimulationMethod method) {
  for (const Method& candidate : kMethods) {
    if (candidate.method == method) return &candidate;
  }
  return nullptr;
}

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

std::unique_ptr<Spreadsheet> BuildOutput(const SimulationDesign& design, std::span<const double> matrix,
                                         std::int32_t title, ProgressPort& port, bool updating) {
  const auto samples = static_cast<std::size_t>(design.numberOfSamples);
  const std::size_t variables = design.variables.size();
  const std::string name(ResourceString(title).substr(0, kTitleLength));
  auto sheet = std::make_unique<Spreadsheet>(name, samples);
  sheet->SetTitle(name);
  sheet->SetHeader(std::string(ResourceString(kHeadingSample).substr(0, kHeaderLength)));
  const std::int32_t caption = updating ? kProgressAutoUpdating : kProgressPreparingResults;
  const auto progress = CKroProgressBar::new_ProgressBar(port, ResourceString(caption),
                                                         static_cast<std::int64_t>(samples * variables + 1));
  progress->ShowNow();
  for (std::size_t j = 0; j < variables; ++j) {
    if (design.IsExcluded(j)) continue;
    Variable column(design.variables[j].name, samples);
    const auto cells = column.MutableValues();
    for (std::size_t i = 0; i < samples; ++i) {
      if (i % kProgressStride == kProgressStride - 1) progress->Step(kProgressStride);
      cells[i] = matrix[i * variables + j];
    }
    for (const auto& [level, text] : design.variables[j].labels) column.SetLabel(level, text);
    sheet->AddVariable(std::move(column));
  }
  sheet->NumberCases();
  return sheet;
}

}  // namespace

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
  const Method* method = FindMethod(design.method);
  if (method == nullptr) return run;
  const auto samples = static_cast<std::size_t>(design.numberOfSamples);
  const std::size_t variables = design.variables.size();
  if (samples == 0 || variables == 0 || design.excluded.size() >= variables) {
    run.status = SimulationStatus::kDistributionFailure;
    return run;
  }
  try {
    AnalysisArray<double> matrix(samples * variables);
    SeedRandomStream(seeded, seed);
    method->generate(design, matrix.Span(), port, run);
    if (run.status == SimulationStatus::kSuccess) {
      run.output = BuildOutput(design, matrix.Span(), method->title, port, updating);
    } else if (run.status == SimulationStatus::kDistributionFailure) {
      run.where = FaultyVariable(design);
    }
  } catch (const std::bad_alloc&) {
    run.status = SimulationStatus::kMemoryFailure;
  }
  return run;
}

}  // namespace brenvolt::sra
