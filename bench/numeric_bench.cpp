// Time per value of the numeric functions that run in hot loops, and per call of the Kolmogorov-Smirnov
// p-value. The counter "perValue" is seconds for one value. Names with Boost are the plain scalar loop over
// Boost.Math that the array forms are measured against.
#include <benchmark/benchmark.h>
#include <tbb/global_control.h>

#include <boost/math/distributions/lognormal.hpp>
#include <boost/math/distributions/normal.hpp>
#include <boost/math/distributions/pareto.hpp>
#include <boost/math/distributions/rayleigh.hpp>
#include <boost/math/distributions/weibull.hpp>
#include <cmath>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "host/numeric/distributions/all_distributions.h"
#include "host/numeric/estimation/mixture/mixture_expectation.h"
#include "host/numeric/goodness_of_fit/kolmogorov_smirnov.h"
#include "host/numeric/random/random_stream.h"

namespace brenvolt {
namespace {

constexpr std::size_t kValues = 1'000'000;
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

// Draws of a distribution, the arguments of its distribution function.
template <class Quantile>
std::vector<double> Draws(const Quantile& quantile) {
  std::vector<double> values = Uniforms();
  quantile(values);
  return values;
}

// The four loops of a distribution: ours and Boost's, distribution function and quantile.
#define DISTRIBUTION_BENCHMARKS(Name, distribution, boostDistribution, ...)                               \
  std::vector<double> Name##Draws() {                                                                     \
    return Draws([](auto& values) { Distribution<distribution>(__VA_ARGS__).Quantile(values, values); }); \
  }                                                                                                       \
  void Name##Cdf(benchmark::State& state) {                                                               \
    OverArrays(state, Name##Draws(),                                                                      \
               [](const auto& in, auto& out) { Distribution<distribution>(__VA_ARGS__).Cdf(in, out); });  \
  }                                                                                                       \
  BENCHMARK(Name##Cdf);                                                                                   \
  void Name##CdfBoost(benchmark::State& state) {                                                          \
    OverArrays(state, Name##Draws(), [](const auto& in, auto& out) {                                      \
      const auto boosted = boostDistribution;                                                             \
      for (std::size_t i = 0; i < in.size(); ++i) out[i] = cdf(boosted, in[i]);                           \
    });                                                                                                   \
  }                                                                                                       \
  BENCHMARK(Name##CdfBoost);                                                                              \
  void Name##Quantile(benchmark::State& state) {                                                          \
    OverArrays(state, Uniforms(), [](const auto& in, auto& out) {                                         \
      Distribution<distribution>(__VA_ARGS__).Quantile(in, out);                                          \
    });                                                                                                   \
  }                                                                                                       \
  BENCHMARK(Name##Quantile);                                                                              \
  void Name##QuantileBoost(benchmark::State& state) {                                                     \
    OverArrays(state, Uniforms(), [](const auto& in, auto& out) {                                         \
      const auto boosted = boostDistribution;                                                             \
      for (std::size_t i = 0; i < in.size(); ++i) out[i] = quantile(boosted, in[i]);                      \
    });                                                                                                   \
  }                                                                                                       \
  BENCHMARK(Name##QuantileBoost)

DISTRIBUTION_BENCHMARKS(Normal, Normal, boost::math::normal(1.0, 2.0), 1.0, 2.0);
DISTRIBUTION_BENCHMARKS(Lognormal, LogNormal, boost::math::lognormal(1.0, 0.5), 1.0, 0.5, 0.0);
DISTRIBUTION_BENCHMARKS(Weibull, Weibull, boost::math::weibull(1.5, 2.0), 2.0, 1.5, 0.0);
DISTRIBUTION_BENCHMARKS(Rayleigh, Rayleigh, boost::math::rayleigh(2.0), 2.0, 0.0);

// Boost has neither generalized distribution: the textbook formulas, as one would write them in a scalar loop.
struct PlainGev {
  double location;
  double scale;
  double shape;
};
double cdf(const PlainGev& distribution, double x) {
  return std::exp(
      -std::exp(-std::log1p(distribution.shape * (x - distribution.location) / distribution.scale) /
                distribution.shape));
}
double quantile(const PlainGev& distribution, double p) {
  return distribution.location +
         distribution.scale * std::expm1(-distribution.shape * std::log(-std::log(p))) / distribution.shape;
}
DISTRIBUTION_BENCHMARKS(Gev, GeneralExtremeValue, (PlainGev{1.0, 2.0, 0.2}), 1.0, 2.0, 0.2);

struct PlainGpd {
  double scale;
  double shape;
  double threshold;
};
double cdf(const PlainGpd& distribution, double x) {
  return -std::expm1(-std::log1p(distribution.shape * (x - distribution.threshold) / distribution.scale) /
                     distribution.shape);
}
double quantile(const PlainGpd& distribution, double p) {
  return distribution.threshold +
         distribution.scale * std::expm1(-distribution.shape * std::log1p(-p)) / distribution.shape;
}
DISTRIBUTION_BENCHMARKS(Gpd, GeneralPareto, (PlainGpd{2.0, 0.2, 1.0}), 2.0, 0.2, 1.0);
// The Pareto distribution of Boost is the same distribution, moved: shape 1/5, scale 10.
DISTRIBUTION_BENCHMARKS(GpdAsPareto, GeneralPareto, boost::math::pareto(10.0, 5.0), 2.0, 0.2, 10.0);

void PoissonQuantile(benchmark::State& state) {
  OverArrays(state, Uniforms(),
             [](const auto& in, auto& out) { Distribution<Poisson>(12.5).Quantile(in, out); });
}
BENCHMARK(PoissonQuantile);

void UniformsInBulk(benchmark::State& state) {
  OverArrays(state, Uniforms(), [](const auto&, auto& out) { RandomStream(kSeed).FillUniform(0, out); });
}
BENCHMARK(UniformsInBulk);

void UniformsOneByOne(benchmark::State& state) {
  OverArrays(state, Uniforms(), [](const auto&, auto& out) {
    for (double& value : out) value = NextUniform();
  });
}
BENCHMARK(UniformsOneByOne);

void NormalsInBulk(benchmark::State& state) {
  OverArrays(state, Uniforms(), [](const auto&, auto& out) { RandomStream(kSeed).FillNormal(0, 2.0, out); });
}
BENCHMARK(NormalsInBulk);

void NormalsOneByOne(benchmark::State& state) {
  OverArrays(state, Uniforms(), [](const auto&, auto& out) {
    for (double& value : out) value = NextNormal(2.0);
  });
}
BENCHMARK(NormalsOneByOne);

// The expectation step of a mixture of range(0) components, and its plain loop.
std::vector<MixtureComponent> MixtureOf(std::int64_t components) {
  std::vector<MixtureComponent> mixture;
  for (std::int64_t c = 0; c < components; ++c) {
    mixture.push_back({1.0 / static_cast<double>(components), 3.0 * static_cast<double>(c), 1.0});
  }
  return mixture;
}

std::vector<double> MixtureDraws(std::int64_t components) {
  std::vector<double> values(kValues);
  RandomStream(kSeed).FillNormal(0, 1.0, values);
  for (std::size_t i = 0; i < kValues; ++i) {
    values[i] += 3.0 * static_cast<double>(i % static_cast<std::size_t>(components));
  }
  return values;
}

void MixtureStep(benchmark::State& state) {
  const std::vector<MixtureComponent> mixture = MixtureOf(state.range(0));
  const std::vector<double> values = MixtureDraws(state.range(0));
  MixtureExpectation expectation(mixture.size());
  std::vector<ResponsibilitySums> sums(mixture.size());
  for (auto _ : state) benchmark::DoNotOptimize(expectation.Run(values, mixture, sums));
  CountValues(state);
}
BENCHMARK(MixtureStep)->Arg(2)->Arg(3)->Arg(6);

double PlainExpectation(const std::vector<double>& values, const std::vector<MixtureComponent>& mixture,
                        std::vector<ResponsibilitySums>& sums) {
  std::vector<double> factors(mixture.size());
  for (std::size_t c = 0; c < mixture.size(); ++c) {
    factors[c] = mixture[c].proportion / mixture[c].deviation / std::sqrt(2.0 * M_PI);
  }
  std::vector<double> densities(mixture.size());
  std::fill(sums.begin(), sums.end(), ResponsibilitySums{});
  double logLikelihood = 0.0;
  for (const double x : values) {
    double total = 0.0;
    for (std::size_t c = 0; c < mixture.size(); ++c) {
      const double z = (x - mixture[c].mean) / mixture[c].deviation;
      densities[c] = factors[c] * std::exp(-0.5 * z * z);
      total += densities[c];
    }
    logLikelihood += std::log(total);
    for (std::size_t c = 0; c < mixture.size(); ++c) {
      const double weight = densities[c] / total;
      const double d = x - mixture[c].mean;
      sums[c].weight += weight;
      sums[c].first += weight * d;
      sums[c].second += weight * d * d;
    }
  }
  return logLikelihood;
}

void MixtureStepPlain(benchmark::State& state) {
  const std::vector<MixtureComponent> mixture = MixtureOf(state.range(0));
  const std::vector<double> values = MixtureDraws(state.range(0));
  std::vector<ResponsibilitySums> sums(mixture.size());
  for (auto _ : state) benchmark::DoNotOptimize(PlainExpectation(values, mixture, sums));
  CountValues(state);
}
BENCHMARK(MixtureStepPlain)->Arg(2)->Arg(3)->Arg(6);

// The p-value at n d^2 = range(1) / 100, which decides the method.
void KolmogorovSmirnovPvalue(benchmark::State& state) {
  const std::int64_t n = state.range(0);
  const double d = std::sqrt(static_cast<double>(state.range(1)) / 100.0 / static_cast<double>(n));
  for (auto _ : state) benchmark::DoNotOptimize(*KolmogorovSmirnovPValue(n, d));
}
BENCHMARK(KolmogorovSmirnovPvalue)->ArgsProduct({{10, 500, 10'000, 100'000}, {20, 90, 400, 800}});

}  // namespace
}  // namespace brenvolt

// One thread, unless the first argument says otherwise: --threads=N.
int main(int argc, char** argv) {
  constexpr std::string_view kOption = "--threads=";
  std::size_t threads = 1;
  if (argc > 1 && std::string_view(argv[1]).starts_with(kOption)) {
    threads = std::stoul(argv[1] + kOption.size());
    argv[1] = argv[0];
    ++argv;
    --argc;
  }
  const tbb::global_control limit(tbb::global_control::max_allowed_parallelism, threads);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
