// Sorting against the standard library, and the linear algebra by its size. Times are of the wall clock; on a
// shared machine take the minima of repetitions (docs/evidence/benchmarks-algebra.md says how).
#include <benchmark/benchmark.h>

#include <algorithm>
#include <limits>
#include <numeric>
#include <vector>

#include "host/numeric/algebra/cholesky.h"
#include "host/numeric/algebra/correlation.h"
#include "host/numeric/algebra/matrix_product.h"
#include "host/numeric/algebra/symmetric_eigen.h"
#include "host/numeric/random/random_stream.h"
#include "host/numeric/vector/sorting.h"

namespace brenvolt {
namespace {

std::vector<double> Normals(std::size_t n) {
  std::vector<double> values(n);
  RandomStream(11).FillNormal(0, 1.0, values);
  return values;
}

std::size_t Size(const benchmark::State& state, int argument = 0) {
  return static_cast<std::size_t>(state.range(argument));
}

// Sorts a copy of other values in each iteration, so that no branch is learnt by heart; the copy is timed on
// both sides.
template <class Sort>
void OverCopies(benchmark::State& state, const Sort& sort) {
  constexpr std::size_t kOffsets = 100'000;
  const std::size_t n = Size(state);
  const std::vector<double> values = Normals(n + kOffsets);
  std::vector<double> work(n);
  std::size_t offset = 0;
  for (auto _ : state) {
    offset = (offset + 31) % kOffsets;
    std::copy_n(values.data() + offset, n, work.data());
    sort(work);
    benchmark::DoNotOptimize(work.data());
    benchmark::ClobberMemory();
  }
}

void SortStandard(benchmark::State& state) {
  OverCopies(state, [](std::vector<double>& values) { std::sort(values.begin(), values.end()); });
}
BENCHMARK(SortStandard)->Arg(10)->Arg(100)->Arg(1000)->Arg(1'000'000);

void SortOurs(benchmark::State& state) {
  OverCopies(state, [](std::vector<double>& values) { SortAscending(values); });
}
BENCHMARK(SortOurs)->Arg(10)->Arg(100)->Arg(1000)->Arg(1'000'000);

void OrderStandard(benchmark::State& state) {
  std::vector<std::size_t> order(Size(state));
  OverCopies(state, [&](std::vector<double>& values) {
    std::iota(order.begin(), order.end(), 0);
    std::ranges::stable_sort(order, [&](std::size_t a, std::size_t b) { return values[a] < values[b]; });
  });
}
BENCHMARK(OrderStandard)->Arg(1000)->Arg(1'000'000);

void OrderOurs(benchmark::State& state) {
  std::vector<std::size_t> order(Size(state));
  OverCopies(state, [&](std::vector<double>& values) { SortedOrder(values, order); });
}
BENCHMARK(OrderOurs)->Arg(1000)->Arg(1'000'000);

// A positive definite correlation matrix without structure.
std::vector<double> CorrelationOfNoise(std::size_t k) {
  std::vector<double> matrix(k * k);
  PearsonCorrelation(Normals(2 * k * k), 2 * k, k, matrix);
  return matrix;
}

void Eigen(benchmark::State& state) {
  const std::size_t k = Size(state);
  const std::vector<double> matrix = CorrelationOfNoise(k);
  std::vector<double> values(k);
  std::vector<double> vectors(k * k);
  for (auto _ : state) {
    if (!SymmetricEigen(matrix, k, values, vectors)) state.SkipWithError("failed");
  }
}
BENCHMARK(Eigen)->Arg(100)->Arg(500)->Arg(1000)->Unit(benchmark::kMillisecond)->UseRealTime();

void CholeskyFactor(benchmark::State& state) {
  const std::size_t k = Size(state);
  const std::vector<double> matrix = CorrelationOfNoise(k);
  for (auto _ : state) {
    std::vector<double> work = matrix;
    if (!Cholesky(work, k)) state.SkipWithError("failed");
  }
}
BENCHMARK(CholeskyFactor)->Arg(100)->Arg(500)->Arg(1000)->Unit(benchmark::kMillisecond)->UseRealTime();

void TriangularInverse(benchmark::State& state) {
  const std::size_t k = Size(state);
  std::vector<double> factor = CorrelationOfNoise(k);
  if (!Cholesky(factor, k)) state.SkipWithError("failed");
  std::vector<double> inverse(k * k);
  for (auto _ : state) {
    if (!InvertLowerTriangle(factor, k, inverse)) state.SkipWithError("failed");
  }
}
BENCHMARK(TriangularInverse)->Arg(100)->Arg(500)->Arg(1000)->Unit(benchmark::kMillisecond)->UseRealTime();

void Product(benchmark::State& state) {
  const std::size_t k = Size(state);
  const std::vector<double> a = Normals(k * k);
  std::vector<double> product(k * k);
  for (auto _ : state) Multiply(RowMajor(a, k, k), RowMajor(a, k, k), product);
}
BENCHMARK(Product)->Arg(100)->Arg(500)->Arg(1000)->Unit(benchmark::kMillisecond)->UseRealTime();

// range(2) values in a thousand are missing.
void Correlation(benchmark::State& state) {
  const std::size_t n = Size(state);
  const std::size_t k = Size(state, 1);
  std::vector<double> data = Normals(n * k);
  if (state.range(2) > 0) {
    std::vector<double> uniforms(data.size());
    RandomStream(12).FillUniform(0, uniforms);
    for (std::size_t i = 0; i < data.size(); ++i)
      if (uniforms[i] * 1000 < static_cast<double>(state.range(2)))
        data[i] = std::numeric_limits<double>::quiet_NaN();
  }
  std::vector<double> correlation(k * k);
  for (auto _ : state) PearsonCorrelation(data, n, k, correlation);
}
BENCHMARK(Correlation)
    ->Args({1000, 100, 0})
    ->Args({10'000, 100, 0})
    ->Args({100'000, 500, 0})
    ->Args({100'000, 500, 10})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

}  // namespace
}  // namespace brenvolt

BENCHMARK_MAIN();
