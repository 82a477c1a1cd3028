// Time per value of the numeric functions that stand in hot loops, and per call of the Kolmogorov-Smirnov
// p-value. The counter "perValue" is seconds for one value. Names with Boost are the plain scalar loop over
// Boost.Math that the array forms are measured against.
#include <benchmark/benchmark.h>

#include <boost/math/distributions/lognormal.hpp>
#include <boost/math/distributions/normal.hpp>
#include <boost/math/distributions/pareto.hpp>
#include <boost/math/distributions/rayleigh.hpp>
#include <boost/math/distributions/weibull.hpp>
#include <cmath>
#include <cstdint>
#include <vector>

#include "host/numeric/distributions.h"
#include "host/numeric/kolmogorov_smirnov.h"
#include "host/numeric/random_stream.h"

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

// Draws of a type, the arguments of its distribution function.
template <class Quantile>
std::vector<double> Draws(const Quantile& quantile) {
  std::vector<double> values = Uniforms();
  quantile(values);
  return values;
}

// The four loops of a type: ours and Boost's, distribution function and quantile.
#define LAW_BENCHMARKS(Name, law, boostLaw, ...)                                                           \
  std::vector<double> Name##Draws() {                                                                      \
    return Draws([](auto& values) { law::Quantile(values, __VA_ARGS__, values); });                        \
  }                                                                                                        \
  void Name##Cdf(benchmark::State& state) {                                                                \
    OverArrays(state, Name##Draws(), [](const auto& in, auto& out) { law::Cdf(in, __VA_ARGS__, out); });   \
  }                                                                                                        \
  BENCHMARK(Name##Cdf);                                                                                    \
  void Name##CdfBoost(benchmark::State& state) {                                                           \
    OverArrays(state, Name##Draws(), [](const auto& in, auto& out) {                                       \
      const auto boosted = boostLaw;                                                                       \
      for (std::size_t i = 0; i < in.size(); ++i) out[i] = cdf(boosted, in[i]);                            \
    });                                                                                                    \
  }                                                                                                        \
  BENCHMARK(Name##CdfBoost);                                                                               \
  void Name##Quantile(benchmark::State& state) {                                                           \
    OverArrays(state, Uniforms(), [](const auto& in, auto& out) { law::Quantile(in, __VA_ARGS__, out); }); \
  }                                                                                                        \
  BENCHMARK(Name##Quantile);                                                                               \
  void Name##QuantileBoost(benchmark::State& state) {                                                      \
    OverArrays(state, Uniforms(), [](const auto& in, auto& out) {                                          \
      const auto boosted = boostLaw;                                                                       \
      for (std::size_t i = 0; i < in.size(); ++i) out[i] = quantile(boosted, in[i]);                       \
    });                                                                                                    \
  }                                                                                                        \
  BENCHMARK(Name##QuantileBoost)

LAW_BENCHMARKS(Normal, normal, boost::math::normal(1.0, 2.0), 1.0, 2.0);
LAW_BENCHMARKS(Lognormal, lognormal, boost::math::lognormal(1.0, 0.5), 1.0, 0.5, 0.0);
LAW_BENCHMARKS(Weibull, weibull, boost::math::weibull(1.5, 2.0), 2.0, 1.5, 0.0);
LAW_BENCHMARKS(Rayleigh, rayleigh, boost::math::rayleigh(2.0), 2.0, 0.0);

// Boost has neither generalized type: the textbook formulas, as one would write them in a scalar loop.
struct PlainGev {
  double location;
  double scale;
  double shape;
};
double cdf(const PlainGev& law, double x) {
  return std::exp(-std::exp(-std::log1p(law.shape * (x - law.location) / law.scale) / law.shape));
}
double quantile(const PlainGev& law, double p) {
  return law.location + law.scale * std::expm1(-law.shape * std::log(-std::log(p))) / law.shape;
}
LAW_BENCHMARKS(Gev, gev, (PlainGev{1.0, 2.0, 0.2}), 1.0, 2.0, 0.2);

struct PlainGpd {
  double scale;
  double shape;
  double threshold;
};
double cdf(const PlainGpd& law, double x) {
  return -std::expm1(-std::log1p(law.shape * (x - law.threshold) / law.scale) / law.shape);
}
double quantile(const PlainGpd& law, double p) {
  return law.threshold + law.scale * std::expm1(-law.shape * std::log1p(-p)) / law.shape;
}
LAW_BENCHMARKS(Gpd, gpd, (PlainGpd{2.0, 0.2, 1.0}), 2.0, 0.2, 1.0);
// The Pareto distribution of Boost is the same law, moved: shape 1/5, scale 10.
LAW_BENCHMARKS(GpdAsPareto, gpd, boost::math::pareto(10.0, 5.0), 2.0, 0.2, 10.0);

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
