#include "brv_sra/simulation/simulation_run.h"

#include <algorithm>
#include <array>
#include <new>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/distributions/sheet_property_store.h"
#include "brv_sra/distributions/variable_properties.h"
#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/strings.h"
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

using Generate = bool (*)(const SimulationDesign&, std::span<double>, CKroProgressBar&);

struct Method {
  SimulationMethod method;
  std::int32_t title;
  Generate generate;
};
constexpr std::array<Method, 2> kMethods{{
    {SimulationMethod::kMonteCarlo, kMethodMonteCarlo, GenerateMonteCarlo},
    {SimulationMethod::kLatinHypercube, kMethodLatinHypercube, GenerateLatinHypercube},
}};

const Method* FindMethod(SimulationMethod method) {
  for (const Method& candidate : kMethods) {
    if (candidate.method == method) return &candidate;
  }
  return nullptr;
}

std::unique_ptr<Spreadsheet> BuildOutput(const SimulationDesign& design, std::span<const double> matrix,
                                         std::int32_t title, ProgressPort& port) {
  const auto samples = static_cast<std::size_t>(design.numberOfSamples);
  const std::size_t variables = design.variables.size();
  const std::string name(ResourceString(title).substr(0, kTitleLength));
  auto sheet = std::make_unique<Spreadsheet>(name, samples);
  sheet->SetTitle(name);
  sheet->SetHeader(std::string(ResourceString(kHeadingSample).substr(0, kHeaderLength)));
  const auto progress = CKroProgressBar::new_ProgressBar(port, ResourceString(kProgressPreparingResults),
                                                         static_cast<std::int64_t>(samples * variables + 1));
  for (std::size_t j = 0; j < variables; ++j) {
    if (design.IsExcluded(j)) continue;
    Variable column(design.variables[j].name, samples);
    const auto cells = column.MutableValues();
    for (std::size_t i = 0; i < samples; ++i) {
      if (i % kProgressStride == kProgressStride - 1) progress->Step(kProgressStride);
      cells[i] = matrix[i * variables + j];
    }
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
    design.variables.push_back(
        {variable.variableNumber, store.VariableName(variable.variableNumber), variable.ranked.front()});
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

SimulationRun RunSimulation(const SimulationDesign& design, bool seeded, double seed, ProgressPort& port) {
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
    const auto progress = CKroProgressBar::new_ProgressBar(
        port, ResourceString(kProgressComputing), static_cast<std::int64_t>(samples * variables + 1));
    if (method->generate(design, matrix.Span(), *progress)) {
      run.output = BuildOutput(design, matrix.Span(), method->title, port);
    } else {
      run.status = SimulationStatus::kDistributionFailure;
      run.where = FaultyVariable(design);
    }
  } catch (const std::bad_alloc&) {
    run.status = SimulationStatus::kMemoryFailure;
  }
  return run;
}

}  // namespace brenvolt::sra
