// Estimation and tests of the eleven continuous distributions: each alone, and all of them as a run has them
// (sorted values in, fits out), over n values.
//   fit_bench --benchmark_filter=FitAll
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <random>
#include <utility>
#include <vector>

#include "brv_sra/fitting/estimation.h"
#include "brv_sra/fitting/goodness_of_fit.h"
#include "host/numeric/vector/sorting.h"

namespace brenvolt::sra {
namespace {

enum Shape : std::int64_t { kLogNormalLike = 0, kNormalLike = 1 };

struct Data {
  std::vector<double> values;
  Moments moments;
};

// Sorted, the same in every run. The normal-like values have a small second hump, as measurements often do.
const Data& SortedData(std::int64_t shape, std::size_t count) {
  static std::map<std::pair<std::int64_t, std::size_t>, Data> known;
  Data& data = known[{shape, count}];
  if (!data.values.empty()) return data;
  std::mt19937_64 engine(20240229);
  std::normal_distribution<double> normal;
  MomentAccumulator moments;
  for (std::size_t i = 0; i < count; ++i) {
    const double z = normal(engine);
    const double x = shape == kLogNormalLike ? std::exp(1 + 0.6 * z) : (i % 5 == 0 ? 23 : 20) + 1.5 * z;
    data.values.push_back(x);
    moments.Add(x, 1);
  }
  SortAscending(data.values);
  data.moments = moments.Finish();
  return data;
}

ContinuousSpecification AllDistributionsOf(const Data& data) {
  ContinuousSpecification specification;
  specification.fit.fill(true);
  const double offset = data.values.front() - 0.01 * (data.values.back() - data.values.front());
  specification.offsets.fill(offset);
  specification.mixtures = 2;
  return specification;
}

void FitAll(benchmark::State& state) {
  const Data& data = SortedData(state.range(0), static_cast<std::size_t>(state.range(1)));
  const ContinuousSpecification specification = AllDistributionsOf(data);
  for (auto _ : state) {
    benchmark::DoNotOptimize(FitContinuousDistributions({data.values, data.moments}, specification,
                                                        ChiSquareBinning::kEqualProbabilities, [] {}));
  }
  state.SetItemsProcessed(state.iterations() * state.range(1));
}
BENCHMARK(FitAll)
    ->ArgsProduct({{kLogNormalLike, kNormalLike}, {100, 1'000, 10'000, 100'000, 1'000'000}})
    ->ArgNames({"shape", "n"})
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();

// range(0): the distribution code.
void EstimateOne(benchmark::State& state) {
  const auto code = static_cast<DistributionCode>(state.range(0));
  const Data& data = SortedData(state.range(1), static_cast<std::size_t>(state.range(2)));
  const ContinuousSpecification specification = AllDistributionsOf(data);
  for (auto _ : state) {
    benchmark::DoNotOptimize(EstimateContinuous(code, {data.values, data.moments}, specification, [] {}));
  }
}
BENCHMARK(EstimateOne)
    ->ArgsProduct({benchmark::CreateDenseRange(0, kContinuousCount - 1, 1),
                   {kLogNormalLike, kNormalLike},
                   {100, 1'000, 10'000, 100'000, 1'000'000}})
    ->ArgNames({"code", "shape", "n"})
    ->Unit(benchmark::kMillisecond);

void TestOne(benchmark::State& state) {
  const auto code = static_cast<DistributionCode>(state.range(0));
  const Data& data = SortedData(kLogNormalLike, static_cast<std::size_t>(state.range(1)));
  DistributionFit fit =
      EstimateContinuous(code, {data.values, data.moments}, AllDistributionsOf(data), [] {});
  for (auto _ : state) TestFit(fit, data.values, ChiSquareBinning::kEqualProbabilities);
  benchmark::DoNotOptimize(fit);
}
BENCHMARK(TestOne)
    ->ArgsProduct({benchmark::CreateDenseRange(0, kContinuousCount - 1, 1), {1'000'000}})
    ->ArgNames({"code", "n"})
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace brenvolt::sra

BENCHMARK_MAIN();
