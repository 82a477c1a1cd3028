#include "brv_sra/simulation/sample_generation.h"

#include <cmath>
#include <ctime>
#include <vector>

#include "brv_sra/simulation/variable_sampler.h"
#include "host/numeric/random_stream.h"

namespace brenvolt::sra {
namespace {

constexpr int kDiscardedDraws = 100;
constexpr double kTwoTo32 = 4294967296.0;
// How many values are drawn between two looks at the clock.
constexpr std::size_t kProgressStride = 4096;

// One column of the matrix, filled from row to row.
struct Column {
  std::span<double> matrix;
  std::size_t variables;
  std::size_t index;
  std::size_t samples;
};

// False when a value is not finite: the distribution reaches beyond what a double holds.
template <class Draw>
bool FillColumn(const Column& column, CKroProgressBar& progress, const Draw& draw) {
  for (std::size_t i = 0; i < column.samples; ++i) {
    if (i % kProgressStride == kProgressStride - 1) progress.Step(kProgressStride);
    const double x = draw(i);
    if (!std::isfinite(x)) return false;
    column.matrix[i * column.variables + column.index] = x;
  }
  progress.Step(static_cast<std::int64_t>(column.samples % kProgressStride));
  return true;
}

using DrawColumn = bool (*)(const VariableSampler& sampler, const Column& column, CKroProgressBar& progress);

bool DrawMonteCarloColumn(const VariableSampler& sampler, const Column& column, CKroProgressBar& progress) {
  return FillColumn(column, progress, [&](std::size_t) { return sampler.DrawMonteCarlo(); });
}

bool DrawLatinHypercubeColumn(const VariableSampler& sampler, const Column& column,
                              CKroProgressBar& progress) {
  std::vector<double> strata(column.samples);
  RandomPermutation(strata);
  const double width =
      (sampler.UpperProbability() - sampler.LowerProbability()) / static_cast<double>(column.samples);
  return FillColumn(column, progress, [&](std::size_t i) {
    const double uniform = rnd_(0);
    return sampler.Inverse(sampler.LowerProbability() + (strata[i] - 1) * width + uniform * width);
  });
}

bool GenerateColumns(const SimulationDesign& design, std::span<double> matrix, CKroProgressBar& progress,
                     DrawColumn draw) {
  const auto samples = static_cast<std::size_t>(design.numberOfSamples);
  const std::size_t variables = design.variables.size();
  for (std::size_t j = 0; j < variables; ++j) {
    if (design.IsExcluded(j)) continue;
    const VariableSampler sampler(design.variables[j].specification, design.truncate);
    if (!sampler.IsValid() || !draw(sampler, {matrix, variables, j, samples}, progress)) return false;
  }
  return true;
}

}  // namespace

void SeedRandomStream(bool seeded, double seed) {
  const double negated = seeded ? -std::fmod(std::trunc(seed), kTwoTo32)
                                : std::fmod(static_cast<double>(std::time(nullptr)), kTwoTo32);
  const auto start =
      static_cast<std::int32_t>(static_cast<std::uint32_t>(static_cast<std::int64_t>(negated)));
  if (start == 0) {
    inirnd_(0, 0);
  } else {
    rnd_(start);
  }
  for (int i = 0; i < kDiscardedDraws; ++i) rnd_(0);
}

bool GenerateMonteCarlo(const SimulationDesign& design, std::span<double> matrix, CKroProgressBar& progress) {
  return GenerateColumns(design, matrix, progress, DrawMonteCarloColumn);
}

bool GenerateLatinHypercube(const SimulationDesign& design, std::span<double> matrix,
                            CKroProgressBar& progress) {
  return GenerateColumns(design, matrix, progress, DrawLatinHypercubeColumn);
}

void RandomPermutation(std::span<double> values) {
  const std::size_t n = values.size();
  for (std::size_t i = 0; i < n; ++i) values[i] = static_cast<double>(i + 1);
  if (n <= 1) return;
  for (std::size_t t = 1; t <= n; ++t) {
    auto r = static_cast<std::size_t>(std::floor(rnd_(0) * static_cast<double>(n - t + 1)));
    if (r == n) r = n - 1;
    std::swap(values[r], values[n - t]);
  }
}

}  // namespace brenvolt::sra
