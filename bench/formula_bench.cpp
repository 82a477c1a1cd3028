// Formulas over columns: rows a second, by what the formula holds. `expression` is the one-call form, which
// parses each time.
#include <benchmark/benchmark.h>

#include <string_view>
#include <vector>

#include "host/base/parallel.h"
#include "host/formula/expression.h"
#include "host/formula/formula.h"
#include "host/numeric/random/random_stream.h"

namespace brenvolt {
namespace {

constexpr std::size_t kRows = 1'000'000;

struct Subject {
  const char* name;
  const char* text;
};
constexpr Subject kSubjects[] = {
    {"linear", "3.2 + 1.5*x - 0.7*y + 0.1*z"},
    {"quadratic", "3.2 + 1.5*x - 0.7*y + 0.2*x^2 - 0.3*x*y + 0.1*z^2"},
    {"conditional", "if(x > 0 and y < 1, x*z, y/(1 + z^2))"},
    {"exponential", "exp(-x^2/2) + ln(1 + y^2)"},
    {"powers", "10*(1 + x^2)^0.3*(1 + y^2)^-0.2"},
    {"distribution", "NormalCdf(x, 0.5, 2)"},
};

struct Columns {
  std::vector<double> x = Normals(1);
  std::vector<double> y = Normals(2);
  std::vector<double> z = Normals(3);

  static std::vector<double> Normals(std::int32_t seed) {
    std::vector<double> values(kRows);
    RandomStream(seed).FillNormal(0, 1.0, values);
    return values;
  }
};

const Columns& Data() {
  static const Columns columns;
  return columns;
}

void Count(benchmark::State& state) {
  state.SetItemsProcessed(static_cast<std::int64_t>(kRows) * state.iterations());
}

void Parsed(benchmark::State& state, const Subject& subject) {
  const std::vector<std::string_view> names{"x", "y", "z"};
  const Columns& data = Data();
  const std::vector<FormulaColumn> columns{{data.x}, {data.y}, {data.z}};
  const Formula formula(subject.text, names);
  std::vector<double> out(kRows);
  const ThreadLimit limit(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    formula.Evaluate(columns, out);
    benchmark::ClobberMemory();
  }
  Count(state);
}

void Expression(benchmark::State& state, const Subject& subject) {
  const Columns& data = Data();
  const double missing = -9999;
  const std::vector<FormulaVariable> variables{
      {"x", data.x, missing}, {"y", data.y, missing}, {"z", data.z, missing}};
  const ThreadLimit limit(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    benchmark::DoNotOptimize(EvaluateOverCases(subject.text, variables, kRows, "formula").data());
  }
  Count(state);
}

const bool kRegistered = [] {
  for (const Subject& subject : kSubjects) {
    const std::string name = subject.name;
    for (const int threads : {1, 2}) {
      benchmark::RegisterBenchmark(("formula/" + name).c_str(), Parsed, subject)->Arg(threads)->UseRealTime();
    }
    benchmark::RegisterBenchmark(("expression/" + name).c_str(), Expression, subject)->Arg(1)->UseRealTime();
  }
  return true;
}();

}  // namespace
}  // namespace brenvolt

BENCHMARK_MAIN();
