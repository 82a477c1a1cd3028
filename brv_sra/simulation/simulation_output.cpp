#include "brv_sra/simulation/simulation_output.h"

#include <array>
#include <string>
#include <utility>

#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/strings.h"

namespace brenvolt::sra {
namespace {

constexpr std::size_t kTitleLength = 80;
constexpr std::size_t kHeaderLength = 12;
// How many cases are copied between two looks at the clock.
constexpr std::size_t kProgressStride = 4096;

// By method code.
constexpr std::array<std::int32_t, 5> kTitles{kMethodMonteCarlo, kMethodLatinHypercube, kMethodImanConover,
                                              kMethodLatinHypercubeImanConover, 0};

}  // namespace

std::int32_t MethodTitle(SimulationMethod method) {
  return kTitles[static_cast<std::size_t>(method)];
}

std::unique_ptr<Spreadsheet> MakeOutputSheet(const SimulationDesign& design, std::size_t rows) {
  const std::string name(ResourceString(MethodTitle(design.method)).substr(0, kTitleLength));
  auto sheet = std::make_unique<Spreadsheet>(name, rows);
  sheet->SetTitle(name);
  sheet->SetHeader(std::string(ResourceString(kHeadingSample).substr(0, kHeaderLength)));
  for (const std::size_t j : design.ActiveVariables()) {
    Variable column(design.variables[j].name, rows);
    for (const auto& [level, text] : design.variables[j].labels) column.SetLabel(level, text);
    sheet->AddVariable(std::move(column));
  }
  sheet->NumberCases();
  return sheet;
}

std::unique_ptr<Spreadsheet> BuildOutput(const SimulationDesign& design, std::span<const double> matrix,
                                         ProgressPort& port, bool updating) {
  const auto samples = static_cast<std::size_t>(design.numberOfSamples);
  const std::size_t stride = design.variables.size();
  auto sheet = MakeOutputSheet(design, samples);
  const std::int32_t caption = updating ? kProgressAutoUpdating : kProgressPreparingResults;
  const auto progress = CKroProgressBar::new_ProgressBar(port, ResourceString(caption),
                                                         static_cast<std::int64_t>(samples * stride + 1));
  progress->ShowNow();
  const std::vector<std::size_t> active = design.ActiveVariables();
  for (std::size_t c = 0; c < active.size(); ++c) {
    const std::span<double> cells = sheet->VariableAt(c).MutableValues();
    for (std::size_t i = 0; i < samples; ++i) {
      if (i % kProgressStride == kProgressStride - 1) progress->Step(kProgressStride);
      cells[i] = matrix[i * stride + active[c]];
    }
  }
  return sheet;
}

}  // namespace brenvolt::sra
