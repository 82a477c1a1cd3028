// What a profiler asks of its simulated columns, at its largest number of runs.
#include <benchmark/benchmark.h>

#include <span>
#include <vector>

#include "host/numeric/random/random_stream.h"
#include "host/statistics/capability.h"
#include "host/statistics/sensitivity.h"

namespace brenvolt {
namespace {

constexpr std::size_t kRuns = 100'000;

std::vector<double> Normals(std::int32_t seed) {
  std::vector<double> values(kRuns);
  RandomStream(seed).FillNormal(0, 1.0, values);
  return values;
}

void Sensitivity(benchmark::State& state) {
  std::vector<std::vector<double>> columns;
  for (std::int32_t i = 0; i < state.range(0); ++i) columns.push_back(Normals(i + 1));
  const std::vector<std::span<const double>> predictors(columns.begin(), columns.end());
  std::vector<double> response = Normals(1000);
  for (std::size_t i = 0; i < kRuns; ++i) response[i] += 2 * columns[0][i] + columns[1][i] * columns[1][i];
  for (auto _ : state) benchmark::DoNotOptimize(AnalyseSensitivity(response, predictors).rSquared);
}
BENCHMARK(Sensitivity)->Arg(5)->Arg(32)->Unit(benchmark::kMillisecond)->UseRealTime();

void Capability(benchmark::State& state) {
  const std::vector<double> values = Normals(1);
  for (auto _ : state) benchmark::DoNotOptimize(AnalyseCapability(values, {-3, 3, 0})->cpm);
}
BENCHMARK(Capability)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
}  // namespace brenvolt

BENCHMARK_MAIN();
