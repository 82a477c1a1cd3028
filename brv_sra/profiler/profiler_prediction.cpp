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
// Rows that a function of the program takes at a time.
constexpr std::size_t kRowsPerCall = 65536;

// Makes what is not finite missing; returns how many values are missing.
std::size_t TakeOutInfinite(std::span<double> column) {
  std::size_t missing = 0;
  for (double& y : column) {
    if (std::isfinite(y)) continue;
    y = kMissing;
    ++missing;
  }
  return missing;
}

// Those missing predictions for which no value of the predictors is known to be the reason.
void AddUnexplained(std::size_t missing, UnpredictedCases& unpredicted) {
  const std::size_t explained = unpredicted.Total();
  if (missing <= explained) return;
  unpredicted.Add({NoPrediction::kNoResult, {}, {}, kMissing, kMissing, missing - explained});
}

}  // namespace

ProfilerPrediction::ProfilerPrediction(const ProfilerDesign& design) : design_(design) {
  std::vector<std::string_view> names;
  for (const ProfilerPredictor& predictor : design.predictors) names.emplace_back(predictor.name);
  for (const ProfilerDependent& dependent : design.dependents) names.emplace_back(dependent.name);
  for (std::size_t k = 0; k < design.dependents.size(); ++k) {
    const ProfilerDependent& dependent = design.dependents[k];
    if (!dependent.formula.empty()) {
      formulas_.emplace(k, Formula(dependent.formula, names, "formula for " + dependent.name));
    } else if (dependent.model != nullptr) {
      Use(*dependent.model, k);
    }
  }
  Order();
}

ProfilerPrediction::Input ProfilerPrediction::InputOf(const ModelField& field) const {
  if (!field.isUsed) return {};
  if (const auto place = design_.FindDependent(field.name))
    return {design_.predictors.size() + *place, field.isText ? &design_.dependents[*place].labels : nullptr};
  const std::size_t place = design_.FindPredictor(field.name).value();
  return {place, field.isText ? &design_.predictors[place].labels : nullptr};
}

void ProfilerPrediction::Use(const PredictionModel& model, std::size_t dependent) {
  auto use = std::ranges::find(models_, &model, &ModelUse::model);
  if (use == models_.end()) {
    ModelUse added{&model, {}, {}};
    for (const ModelField& field : model.Predictors()) added.inputs.push_back(InputOf(field));
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

std::vector<std::size_t> ProfilerPrediction::Predicted(const Step& step) const {
  if (!step.model) return {step.formula};
  std::vector<std::size_t> predicted;
  for (const auto& dependent : models_[*step.model].dependents) {
    if (dependent) predicted.push_back(*dependent);
  }
  return predicted;
}

// What a step reads, among the predictors followed by the dependents.
std::vector<std::size_t> ProfilerPrediction::Places(const Step& step) const {
  if (!step.model) {
    const auto used = formulas_.at(step.formula).Used();
    return {used.begin(), used.end()};
  }
  std::vector<std::size_t> places;
  for (const Input& input : models_[*step.model].inputs) {
    if (input.place) places.push_back(*input.place);
  }
  return places;
}

// Models before formulas, but each after those whose predictions it reads.
void ProfilerPrediction::Order() {
  std::vector<Step> waiting;
  for (std::size_t i = 0; i < models_.size(); ++i) waiting.push_back({i});
  for (const auto& [dependent, formula] : formulas_) waiting.push_back({std::nullopt, dependent});
  std::set<std::size_t> awaited;
  for (const Step& step : waiting) {
    for (const std::size_t dependent : Predicted(step)) awaited.insert(design_.predictors.size() + dependent);
  }
  while (!waiting.empty()) {
    const auto ready = std::ranges::find_if(waiting, [&](const Step& step) {
      return std::ranges::none_of(Places(step), [&](std::size_t place) { return awaited.contains(place); });
    });
    if (ready == waiting.end()) {
      circular_ = Predicted(waiting.front()).front();
      return;
    }
    for (const std::size_t dependent : Predicted(*ready))
      awaited.erase(design_.predictors.size() + dependent);
    steps_.push_back(*ready);
    waiting.erase(ready);
  }
}

std::vector<std::size_t> ProfilerPrediction::ReadBy(std::size_t dependent) const {
  std::vector<std::size_t> read;
  for (const Step& step : steps_) {
    const std::vector<std::size_t> predicted = Predicted(step);
    if (std::ranges::find(predicted, dependent) != predicted.end()) read = Places(step);
  }
  std::erase_if(read, [&](std::size_t place) { return place >= design_.predictors.size(); });
  return read;
}

std::vector<UnpredictedCases> ProfilerPrediction::PredictRows(
    const ModelUse& use, std::span<const std::span<const double>> columns,
    std::span<const std::span<double>> dependents, std::size_t begin, std::size_t rows) {
  std::vector<std::span<const double>> inputs;
  std::vector<const std::map<double, std::string>*> labels;
  for (const Input& input : use.inputs) {
    inputs.push_back(input.place ? columns[*input.place].subspan(begin, rows) : std::span<const double>());
    labels.push_back(input.labels);
  }
  std::vector<double> unwanted(rows);
  std::vector<std::span<double>> outputs;
  for (const auto& place : use.dependents)
    outputs.push_back(place ? dependents[*place].subspan(begin, rows) : std::span<double>(unwanted));
  std::vector<UnpredictedCases> unpredicted(outputs.size());
  use.model->Predict(inputs, outputs, {.labels = labels, .unpredicted = unpredicted, .firstCase = begin});
  std::vector<UnpredictedCases> wanted;
  for (std::size_t k = 0; k < outputs.size(); ++k) {
    if (use.dependents[k]) wanted.push_back(std::move(unpredicted[k]));
  }
  return wanted;
}

// The runs in which a formula has no number because another dependent that it reads has no prediction.
UnpredictedCases ProfilerPrediction::MissingInputs(const Step& step,
                                                   std::span<const std::span<const double>> columns,
                                                   std::span<const double> predicted) const {
  const std::size_t first = design_.predictors.size();
  std::vector<std::size_t> read = Places(step);
  std::erase_if(read, [&](std::size_t place) { return place < first || place >= columns.size(); });
  UnpredictedCases unpredicted;
  for (std::size_t i = 0; i < predicted.size(); ++i) {
    if (std::isfinite(predicted[i])) continue;
    const auto missing =
        std::ranges::find_if(read, [&](std::size_t place) { return std::isnan(columns[place][i]); });
    if (missing == read.end()) continue;
    const std::string& name = design_.dependents[*missing - first].name;
    unpredicted.Add({NoPrediction::kMissingValue, name, {}, kMissing, kMissing, 1});
  }
  return unpredicted;
}

std::vector<UnpredictedCases> ProfilerPrediction::Carry(const Step& step,
                                                        std::span<const std::span<const double>> columns,
                                                        std::span<const std::span<double>> dependents,
                                                        ProgressBar& progress) const {
  const std::size_t runs = dependents[0].size();
  if (!step.model) {
    std::vector<FormulaColumn> values;
    for (const auto& column : columns) values.push_back({.values = column});
    formulas_.at(step.formula).Evaluate(values, dependents[step.formula]);
    progress.Step(static_cast<std::int64_t>(runs));
    return {MissingInputs(step, columns, dependents[step.formula])};
  }
  const ModelUse& use = models_[*step.model];
  const std::size_t rows = use.model->IsFunction() ? kRowsPerCall : kRowsPerTask;
  const std::size_t tasks = (runs + rows - 1) / rows;
  std::vector<std::vector<UnpredictedCases>> counted(tasks);
  const auto predict = [&](std::size_t task) {
    const std::size_t begin = task * rows;
    counted[task] = PredictRows(use, columns, dependents, begin, std::min(rows, runs - begin));
  };
  if (use.model->IsFunction()) {
    for (std::size_t task = 0; task < tasks; ++task) {
      progress.Step(0);
      predict(task);
    }
  } else {
    PolledParallelFor(tasks, progress, [&](std::size_t task, const Cancellation& cancelled) {
      cancelled.Poll();
      predict(task);
    });
  }
  progress.Step(static_cast<std::int64_t>(runs * use.dependents.size()));
  std::vector<UnpredictedCases> unpredicted(Predicted(step).size());
  for (const std::vector<UnpredictedCases>& task : counted) {
    for (std::size_t k = 0; k < task.size(); ++k) unpredicted[k].Add(task[k]);
  }
  return unpredicted;
}

std::vector<UnpredictedCases> ProfilerPrediction::Predict(std::span<const std::span<const double>> predictors,
                                                          std::span<const std::span<double>> dependents,
                                                          ProgressBar& progress) const {
  std::vector<std::span<const double>> columns(predictors.begin(), predictors.end());
  columns.insert(columns.end(), dependents.begin(), dependents.end());
  std::vector<UnpredictedCases> unpredicted(dependents.size());
  for (const Step& step : steps_) {
    std::vector<UnpredictedCases> refused = Carry(step, columns, dependents, progress);
    const std::vector<std::size_t> predicted = Predicted(step);
    for (std::size_t k = 0; k < predicted.size(); ++k) {
      AddUnexplained(TakeOutInfinite(dependents[predicted[k]]), refused[k]);
      unpredicted[predicted[k]] = std::move(refused[k]);
    }
  }
  return unpredicted;
}

}  // namespace brenvolt::sra
