// A run of the profiler: 100,000 runs of a forest of 500 trees over ten predictors, on all cores.
#include <benchmark/benchmark.h>

#include <memory>
#include <utility>

#include "bench/forest.h"
#include "brv_sra/profiler/dialogs/profiler_graphs.h"
#include "brv_sra/profiler/profiler_models.h"
#include "brv_sra/profiler/profiler_run.h"
#include "host/analysis/ports/headless_user_interface.h"

namespace brenvolt::sra {
namespace {

ProfilerDesign ForestDesign(int depth) {
  ProfilerDesign design;
  const auto model =
      std::make_shared<const PredictionModel>(PredictionModel::Parse(Planter().Plant(depth).text, "forest"));
  (void)MergeModels(design, std::span(&model, 1), nullptr);
  for (ProfilerPredictor& predictor : design.predictors) {
    predictor.setting = PredictorSetting::kRandom;
    predictor.specification.values = {0.5, 0.2};
  }
  design.runs = kMostProfilerRuns;
  design.seeded = true;
  return design;
}

// Arguments: the depth of the trees; whether the predictors are correlated.
void RunForest(benchmark::State& state) {
  ProfilerDesign design = ForestDesign(static_cast<int>(state.range(0)));
  design.simulateCorrelations = state.range(1) != 0;
  HeadlessUserInterface port;
  for (auto _ : state) {
    const Result<ProfilerRun> run = RunProfiler(design, port);
    if (!run) return state.SkipWithError("failed");
    const Graph graph = ProfileGraph(ColumnsOf(*run->output, design.predictors.size(), design), port);
    benchmark::DoNotOptimize(graph.panels.data());
  }
}
BENCHMARK(RunForest)->Args({8, 0})->Args({8, 1})->Args({12, 0})->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
}  // namespace brenvolt::sra

BENCHMARK_MAIN();
