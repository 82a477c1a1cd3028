#include "brv_sra/profiler/profiler_prediction.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>
#include <string_view>

#include "host/controls/polled_loop.h"

namespace brenvolt::sra {
namespace {

constexpr double kMissing = std::numeric_limits<double>::quiet_NaN();
// Rows that one task predicts: a few blocks of the models, so that every core has some.
constexpr std::size_t kRowsPerTask = 4096;

}  // namespace

ProfilerPrediction::ProfilerPrediction(const ProfilerDesign& design) : design_(design) {
  std::vector<std::string_view> names;
  for (const ProfilerPredictor& predictor : design.predictors) names.emplace_back(predictor.name);
  for (std::size_t k = 0; k < design.dependents.size(); ++k) {
    const ProfilerDependent& dependent = design.dependents[k];
    if (!dependent.formula.empty()) {
      formulas_.emplace(k, Formula(dependent.formula, names, "formula for " + dependent.name));
    } else if (dependent.model != nullptr) {
      Use(*dependent.model, k);
    }
  }
}

void ProfilerPrediction::Use(const PredictionModel& model, std::size_t dependent) {
  auto use = std::ranges::find(models_, &model, &ModelUse::model);
  if (use == models_.end()) {
    ModelUse added{&model, {}, {}};
    for (const ModelField& field : model.Predictors()) {
      if (!field.isUsed) {
        added.inputs.emplace_back();
        continue;
      }
      const std::size_t place = design_.FindPredictor(field.name).value();
      added.inputs.push_back({place, field.isText ? &design_.predictors[place].labels : nullptr});
    }
    added.dependents.resize(model.Dependents().size());
    use = models_.insert(models_.end(), std::move(added));
  }
  const auto& fields = model.Dependents();
  const auto field = std::ranges::find(fields, design_.dependents[dependent].name, &ModelField::name);
  use->dependents[static_cast<std::size_t>(field - fields.begin())] = dependent;
}

bool ProfilerPrediction::IsPredicted(std::size_t dependent) const {
  return formulas_.contains(dependent) || design_.dependents[dependent].model != nullptr;
}

std::vector<std::size_t> ProfilerPrediction::ReadBy(std::size_t dependent) const {
  if (const auto formula = formulas_.find(dependent); formula != formulas_.end()) {
    const auto used = formula->second.Used();
    return {used.begin(), used.end()};
  }
  std::vector<std::size_t> read;
  for (const ModelUse& use : models_) {
    if (std::ranges::find(use.dependents, dependent) == use.dependents.end()) continue;
    for (const Input& input : use.inputs) {
      if (input.place) read.push_back(*input.place);
    }
  }
  return read;
}

void ProfilerPrediction::PredictRows(const ModelUse& use, std::span<const std::span<const double>> predictors,
                                     std::span<const std::span<double>> dependents, std::size_t begin,
                                     std::size_t rows) {
  std::vector<std::span<const double>> inputs;
  std::vector<const std::map<double, std::string>*> labels;
  for (const Input& input : use.inputs) {
    inputs.push_back(input.place ? predictors[*input.place].subspan(begin, rows) : std::span<const double>());
    labels.push_back(input.labels);
  }
  std::vector<double> unwanted(rows);
  std::vector<std::span<double>> outputs;
  for (const auto& place : use.dependents)
    outputs.push_back(place ? dependents[*place].subspan(begin, rows) : std::span<double>(unwanted));
  use.model->Predict(inputs, outputs, {.labels = labels});
}

void ProfilerPrediction::Predict(std::span<const std::span<const double>> predictors,
                                 std::span<const std::span<double>> dependents, ProgressBar& progress) const {
  const std::size_t runs = dependents.empty() ? 0 : dependents[0].size();
  const std::size_t tasks = (runs + kRowsPerTask - 1) / kRowsPerTask;
  for (const ModelUse& use : models_) {
    PolledParallelFor(tasks, progress, [&](std::size_t task, const Cancellation& cancelled) {
      cancelled.Poll();
      const std::size_t begin = task * kRowsPerTask;
      PredictRows(use, predictors, dependents, begin, std::min(kRowsPerTask, runs - begin));
    });
    progress.Step(static_cast<std::int64_t>(runs * use.dependents.size()));
  }
  std::vector<FormulaColumn> columns;
  for (const auto& predictor : predictors) columns.push_back({.values = predictor});
  for (const auto& [dependent, formula] : formulas_) {
    formula.Evaluate(columns, dependents[dependent]);
    progress.Step(static_cast<std::int64_t>(runs));
  }
  for (const auto& dependent : dependents)
    std::ranges::replace_if(
        dependent, [](double y) { return !std::isfinite(y); }, kMissing);
}

}  // namespace brenvolt::sra
