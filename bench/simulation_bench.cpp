// Sampling and correlation induction over n samples of k variables; what is timed is the filling of a matrix
// that is there already.
//   simulation_bench --benchmark_filter=MonteCarlo
// docs/evidence/benchmarks-simulation.md compares it with other tools.
#include <benchmark/benchmark.h>

#include <vector>

#include "brv_sra/simulation/correlation_induction.h"
#include "brv_sra/simulation/sampling/sample_generation.h"
#include "host/analysis/ports/headless_user_interface.h"

namespace brenvolt::sra {
namespace {

struct Job {
  HeadlessUserInterface port;
  SimulationDesign design;
  std::vector<double> matrix;
  std::vector<double> target;

  Job(const benchmark::State& state, DistributionCode code, std::vector<double> values,
      SimulationMethod method) {
    const auto n = static_cast<std::size_t>(state.range(0));
    const auto k = static_cast<std::size_t>(state.range(1));
    SimulationVariable variable;
    variable.specification.code = code;
    variable.specification.values = std::move(values);
    design.variables.assign(k, variable);
    design.numberOfSamples = static_cast<std::int32_t>(n);
    design.method = method;
    matrix.resize(n * k);
    target.assign(k * k, 0.5);
  }

  bool Run() {
    SeedRandomStream(true, 1);
    if (design.method >= SimulationMethod::kImanConover)
      return static_cast<bool>(InduceRankCorrelation(design, target, matrix, port));
    const auto progress = std::make_unique<ProgressBar>(port, "", static_cast<std::int64_t>(matrix.size()));
    return design.method == SimulationMethod::kLatinHypercube
               ? GenerateLatinHypercube(design, matrix, *progress)
               : GenerateMonteCarlo(design, matrix, *progress);
  }
};

void Measure(benchmark::State& state, Job& job) {
  for (auto _ : state)
    if (!job.Run()) state.SkipWithError("failed");
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(job.matrix.size()));
}

void MonteCarloNormal(benchmark::State& state) {
  Job job(state, DistributionCode::kNormal, {0, 1}, SimulationMethod::kMonteCarlo);
  Measure(state, job);
}
void MonteCarloNormalTruncated(benchmark::State& state) {
  Job job(state, DistributionCode::kNormal, {0, 1}, SimulationMethod::kMonteCarlo);
  job.design.truncate = true;
  Measure(state, job);
}
void MonteCarloWeibull(benchmark::State& state) {
  Job job(state, DistributionCode::kWeibull, {1, 1.7}, SimulationMethod::kMonteCarlo);
  Measure(state, job);
}
void MonteCarloPoisson(benchmark::State& state) {
  Job job(state, DistributionCode::kPoisson, {4.5}, SimulationMethod::kMonteCarlo);
  Measure(state, job);
}
void LatinHypercubeNormal(benchmark::State& state) {
  Job job(state, DistributionCode::kNormal, {0, 1}, SimulationMethod::kLatinHypercube);
  Measure(state, job);
}
void ImanConoverWeibull(benchmark::State& state) {
  Job job(state, DistributionCode::kWeibull, {1, 1.7}, SimulationMethod::kImanConover);
  Measure(state, job);
}

void Configure(benchmark::internal::Benchmark* benchmark) {
  benchmark->Args({1'000'000, 10})->Unit(benchmark::kMillisecond)->UseRealTime()->MeasureProcessCPUTime();
}
BENCHMARK(MonteCarloNormal)->Apply(Configure);
BENCHMARK(MonteCarloNormalTruncated)->Apply(Configure);
BENCHMARK(MonteCarloWeibull)->Apply(Configure);
BENCHMARK(MonteCarloPoisson)->Apply(Configure);
BENCHMARK(LatinHypercubeNormal)->Apply(Configure);
BENCHMARK(ImanConoverWeibull)->Apply(Configure);
BENCHMARK(ImanConoverWeibull)
    ->Name("ImanConoverLarge")
    ->Args({100'000, 500})
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->MeasureProcessCPUTime();

}  // namespace
}  // namespace brenvolt::sra

BENCHMARK_MAIN();
