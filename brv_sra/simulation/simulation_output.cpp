#include "brv_sra/simulation/simulation_output.h"

#include <utility>

namespace brenvolt::sra {
namespace {

// How many cases are copied between two looks at the clock.
constexpr std::size_t kProgressStride = 4096;

}  // namespace

std::unique_ptr<Spreadsheet> MakeOutputSheet(const SimulationDesign& design, std::size_t rows) {
  auto sheet = std::make_unique<Spreadsheet>("", rows);
  for (const std::size_t j : design.ActiveVariables()) {
    Variable column(design.variables[j].name, rows);
    for (const auto& [level, text] : design.variables[j].labels) column.SetLabel(level, text);
    sheet->AddVariable(std::move(column));
  }
  sheet->NumberCases();
  return sheet;
}

std::unique_ptr<Spreadsheet> BuildOutput(const SimulationDesign& design, std::span<const double> matrix,
                                         const RunProgress& bars, bool updating) {
  const auto samples = static_cast<std::size_t>(design.numberOfSamples);
  const std::size_t stride = design.variables.size();
  auto sheet = MakeOutputSheet(design, samples);
  const auto progress = bars.Bar(
      updating ? ProgressStage::kUpdatingResults : ProgressStage::kPreparingResults, samples * stride + 1);
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
