// Time per value of the numeric functions that stand in hot loops, and per call of the Kolmogorov-Smirnov
// p-value. The counter "perValue" is seconds for one value.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdint>
#include <vector>

#include "host/numeric/distributions.h"
#include "host/numeric/kolmogorov_smirnov.h"
#include "host/numeric/random_stream.h"

namespace brenvolt {
namespace {

constexpr std::size_t kValues = 10'000;
constexpr std::int32_t kSeed = 20;

std::vector<double> Uniforms() {
  std::vector<double> values(kValues);
  RandomStream(kSeed).FillUniform(0, values);
  return values;
}

void CountValues(benchmark::State& state) {
  state.counters["perValue"] =
      benchmark::Counter(static_cast<double>(kValues),
                         benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

// Runs `fill`(input, output) over arrays of kValues.
template <class Fill>
void OverArrays(benchmark::State& state, const std::vector<double>& in, const Fill& fill) {
  std::vector<double> out(kValues);
  for (auto _ : state) {
    fill(in, out);
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
  }
  CountValues(state);
}

void NormalCdf(benchmark::State& state) {
  std::vector<double> x(kValues);
  RandomStream(kSeed).FillNormal(0, 2.0, x);
  OverArrays(state, x, [](const auto& in, auto& out) { normal::Cdf(in, 0.0, 2.0, out); });
}
BENCHMARK(NormalCdf);

void NormalQuantile(benchmark::State& state) {
  OverArrays(state, Uniforms(), [](const auto& in, auto& out) { normal::Quantile(in, 0.0, 2.0, out); });
}
BENCHMARK(NormalQuantile);

void LognormalQuantile(benchmark::State& state) {
  OverArrays(state, Uniforms(),
             [](const auto& in, auto& out) { lognormal::Quantile(in, 1.0, 0.5, 0.0, out); });
}
BENCHMARK(LognormalQuantile);

void WeibullQuantile(benchmark::State& state) {
  OverArrays(state, Uniforms(), [](const auto& in, auto& out) { weibull::Quantile(in, 2.0, 1.5, 0.0, out); });
}
BENCHMARK(WeibullQuantile);

void PoissonQuantile(benchmark::State& state) {
  OverArrays(state, Uniforms(), [](const auto& in, auto& out) { poisson::Quantile(in, 12.5, out); });
}
BENCHMARK(PoissonQuantile);

void UniformsInBulk(benchmark::State& state) {
  OverArrays(state, Uniforms(), [](const auto&, auto& out) { RandomStream(kSeed).FillUniform(0, out); });
}
BENCHMARK(UniformsInBulk);

void UniformsOneByOne(benchmark::State& state) {
  OverArrays(state, Uniforms(), [](const auto&, auto& out) {
    for (double& value : out) value = rnd_(0);
  });
}
BENCHMARK(UniformsOneByOne);

void NormalsInBulk(benchmark::State& state) {
  OverArrays(state, Uniforms(), [](const auto&, auto& out) { RandomStream(kSeed).FillNormal(0, 2.0, out); });
}
BENCHMARK(NormalsInBulk);

void NormalsOneByOne(benchmark::State& state) {
  OverArrays(state, Uniforms(), [](const auto&, auto& out) {
    for (double& value : out) value = znormal_(2.0);
  });
}
BENCHMARK(NormalsOneByOne);

// The p-value at n d^2 = range(1) / 100, which decides the method.
void KolmogorovSmirnovPvalue(benchmark::State& state) {
  const std::int64_t n = state.range(0);
  const double d = std::sqrt(static_cast<double>(state.range(1)) / 100.0 / static_cast<double>(n));
  std::int32_t error = 0;
  for (auto _ : state) benchmark::DoNotOptimize(ComputeKolmogorovSmirnovPvalue(n, d, error));
}
BENCHMARK(KolmogorovSmirnovPvalue)->ArgsProduct({{10, 500, 10'000, 100'000}, {20, 90, 400, 800}});

}  // namespace
}  // namespace brenvolt

BENCHMARK_MAIN();
