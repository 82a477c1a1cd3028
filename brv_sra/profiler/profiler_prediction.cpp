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

// The model's codes by those of the design, where any differs; a text that the model does not know has a code
// that represents none of its texts.
std::map<double, double> CodesBetween(const std::map<double, std::string>& labels, const ModelField& field) {
  if (!field.isText) return {};
  std::map<double, double> codes;
  bool differ = false;
  for (const auto& [code, text] : labels) {
    const auto found = std::ranges::find(field.labels, text);
    const double its =
        found != field.labels.end() ? field.codes[static_cast<std::size_t>(found - field.labels.begin())] : 0;
    differ = differ || its != code;
    codes.emplace(code, its);
  }
  return differ ? codes : std::map<double, double>();
}

std::vector<double> Translated(std::span<const double> column, const std::map<double, double>& codes) {
  std::vector<double> translated(column.begin(), column.end());
  for (double& value : translated) {
    const auto found = codes.find(value);
    if (!std::isnan(value)) value = found != codes.end() ? found->second : 0;
  }
  return translated;
}

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
      const std::size_t place = design_.FindPredictor(field.name).value();
      added.inputs.push_back({place, CodesBetween(design_.predictors[place].labels, field)});
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
    for (std::size_t i = 0; i < use.inputs.size(); ++i) {
      if (use.model->Predictors()[i].isUsed) read.push_back(use.inputs[i].place);
    }
  }
  return read;
}

void ProfilerPrediction::PredictRows(const ModelUse& use, std::span<const std::span<const double>> predictors,
                                     std::span<const std::span<double>> dependents, std::size_t begin,
                                     std::size_t rows) {
  std::vector<std::vector<double>> translated;
  translated.reserve(use.inputs.size());  // the views below stay
  std::vector<std::span<const double>> inputs;
  for (const Input& input : use.inputs) {
    const auto column = predictors[input.place].subspan(begin, rows);
    if (input.codes.empty()) {
      inputs.push_back(column);
    } else {
      inputs.emplace_back(translated.emplace_back(Translated(column, input.codes)));
    }
  }
  std::vector<double> unwanted(rows);
  std::vector<std::span<double>> outputs;
  for (const auto& place : use.dependents)
    outputs.push_back(place ? dependents[*place].subspan(begin, rows) : std::span<double>(unwanted));
  use.model->Predict(inputs, outputs);
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
