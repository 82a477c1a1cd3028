// The three tests of one fit of every continuous distribution on a million values, with p-values.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <vector>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/fitting/anderson_darling.h"
#include "brv_sra/fitting/goodness_of_fit.h"
#include "host/numeric/random/random_stream.h"

namespace {

using namespace brenvolt;
using namespace brenvolt::sra;

// Values in (0, 10), inside every support below.
std::vector<double> SortedValues() {
  std::vector<double> values(1'000'000);
  brenvolt::RandomStream(5).FillUniform(0, values);
  for (double& x : values) x *= 10.0;
  std::ranges::sort(values);
  return values;
}

const std::vector<std::vector<double>> kValues{{5, 3},
                                               {1.5, 0.75},
                                               {3, 2},
                                               {4},
                                               {3},
                                               {4, 1.5},
                                               {0.25, 2, 1, 0.75, 6, 2},
                                               {3, 0.25, 1, 11, -0.5},
                                               {3, 2, 0.1},
                                               {4, -0.2},
                                               {-1, 11, 4}};

void TestOneType(benchmark::State& state) {
  static const std::vector<double> kSorted = SortedValues();
  DistributionFit fit;
  fit.specification.code = static_cast<DistributionCode>(state.range(0));
  fit.specification.values = kValues[static_cast<std::size_t>(state.range(0))];
  fit.specification.offset = HasOffset(fit.specification.code) ? -0.5 : brenvolt::kNotSet;
  for (auto _ : state) {
    TestFit(fit, kSorted, ChiSquareBinning::kEqualProbabilities);
    benchmark::DoNotOptimize(fit.andersonDarling.pValue);
  }
  state.SetLabel(std::string(SpacedKey(fit.specification.code)));
}
BENCHMARK(TestOneType)->DenseRange(0, 10)->Unit(benchmark::kMillisecond);

void AndersonDarlingStatistic(benchmark::State& state) {
  std::vector<double> z = SortedValues();
  for (double& x : z) x /= 10.0;
  for (auto _ : state) benchmark::DoNotOptimize(andersonDarling(z));
}
BENCHMARK(AndersonDarlingStatistic)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
