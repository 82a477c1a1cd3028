// Scoring of prediction models, on one thread: a forest of 500 trees in visits of tree nodes a second, a
// regression formula in rows a second. The counter "visits" counts the nodes that rows pass through, found by
// walking the same trees one row at a time.
#include <benchmark/benchmark.h>
#include <tbb/global_control.h>

#include <random>
#include <span>
#include <string>
#include <vector>

#include "bench/forest.h"
#include "host/models/prediction_model.h"

namespace brenvolt {
namespace {

constexpr std::size_t kForestRows = 20'000;
constexpr std::size_t kFormulaRows = 1'000'000;

using Columns = std::vector<std::vector<double>>;

Columns Uniforms(std::size_t rows) {
  std::mt19937_64 engine(11);
  std::uniform_real_distribution<double> uniform(0, 1);
  Columns columns(kFields, std::vector<double>(rows));
  for (auto& column : columns) {
    for (double& x : column) x = uniform(engine);
  }
  return columns;
}

double CountVisits(const Forest& forest, const Columns& columns) {
  double visits = 0;
  for (const auto& tree : forest.trees) {
    for (std::size_t i = 0; i < columns[0].size(); ++i) {
      for (const Node* at = tree.get(); at != nullptr; ++visits) {
        if (!at->left) break;
        at = columns[at->field][i] <= at->threshold ? at->left.get() : at->right.get();
      }
    }
  }
  return visits;
}

void Predict(const PredictionModel& model, const Columns& columns, std::vector<double>& answer) {
  const std::vector<std::span<const double>> predictors(columns.begin(), columns.end());
  const std::span<double> dependent(answer);
  model.Predict(predictors, std::span(&dependent, 1));
  benchmark::DoNotOptimize(answer.data());
}

void ForestOf500Trees(benchmark::State& state) {
  const tbb::global_control oneThread(tbb::global_control::max_allowed_parallelism, 1);
  const Forest forest = Planter().Plant(static_cast<int>(state.range(0)));
  const Columns columns = Uniforms(kForestRows);
  const double visits = CountVisits(forest, columns);
  const PredictionModel model = PredictionModel::Parse(forest.text, "forest.pmml");
  std::vector<double> answer(kForestRows);
  for (auto _ : state) Predict(model, columns, answer);
  state.counters["visits"] = benchmark::Counter(visits, benchmark::Counter::kIsIterationInvariantRate);
  state.counters["rows"] =
      benchmark::Counter(static_cast<double>(kForestRows), benchmark::Counter::kIsIterationInvariantRate);
}
BENCHMARK(ForestOf500Trees)->Arg(6)->Arg(8)->Arg(10)->Arg(12)->Unit(benchmark::kMillisecond);

std::string Call(const std::string& function, const std::string& a, const std::string& b) {
  return "<Apply function=\"" + function + "\">" + a + b + "</Apply>";
}
std::string Times(const std::string& factor, const std::string& field) {
  return Call("*", "<Constant>" + factor + "</Constant>", "<FieldRef field=\"" + field + "\"/>");
}

// 3.2 + 1.5*x0 - 0.7*x1 + 0.1*x2, the first formula of formula_bench.cpp, as a transformation.
void Transformation(benchmark::State& state) {
  const tbb::global_control oneThread(tbb::global_control::max_allowed_parallelism, 1);
  const std::string sum =
      Call("+", Call("-", Call("+", "<Constant>3.2</Constant>", Times("1.5", "x0")), Times("0.7", "x1")),
           Times("0.1", "x2"));
  const PredictionModel model = PredictionModel::Parse(
      Head() + "<RegressionModel functionName=\"regression\">" + Schema() +
          "<LocalTransformations><DerivedField name=\"sum\" optype=\"continuous\" dataType=\"double\">" +
          sum +
          "</DerivedField></LocalTransformations><RegressionTable intercept=\"0\">"
          "<NumericPredictor name=\"sum\" coefficient=\"1\"/></RegressionTable></RegressionModel></PMML>",
      "transformation.pmml");
  const Columns columns = Uniforms(kFormulaRows);
  std::vector<double> answer(kFormulaRows);
  for (auto _ : state) Predict(model, columns, answer);
  state.counters["rows"] =
      benchmark::Counter(static_cast<double>(kFormulaRows), benchmark::Counter::kIsIterationInvariantRate);
}
BENCHMARK(Transformation)->Unit(benchmark::kMillisecond);

void RegressionFormula(benchmark::State& state) {
  const tbb::global_control oneThread(tbb::global_control::max_allowed_parallelism, 1);
  std::string text = Head() + "<RegressionModel functionName=\"regression\">" + Schema() +
                     "<RegressionTable intercept=\"1\">";
  for (int k = 0; k < state.range(0); ++k) {
    text += "<NumericPredictor name=\"x" + std::to_string(k) + "\" coefficient=\"0." + std::to_string(k + 1) +
            "\"/>";
  }
  text += "</RegressionTable></RegressionModel></PMML>";
  const PredictionModel model = PredictionModel::Parse(text, "formula.pmml");
  const Columns columns = Uniforms(kFormulaRows);
  std::vector<double> answer(kFormulaRows);
  for (auto _ : state) Predict(model, columns, answer);
  state.counters["rows"] =
      benchmark::Counter(static_cast<double>(kFormulaRows), benchmark::Counter::kIsIterationInvariantRate);
}
BENCHMARK(RegressionFormula)->Arg(3)->Arg(10)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace brenvolt

BENCHMARK_MAIN();
