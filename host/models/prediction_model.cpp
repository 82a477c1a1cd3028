#include "host/models/prediction_model.h"

#include <algorithm>
#include <cmath>
#include <mutex>

#include "host/base/error.h"
#include "host/base/files/mapped_file.h"
#include "host/base/number_text.h"
#include "host/base/parallel.h"
#include "host/models/model_file.h"

namespace brenvolt {

using pmml::Field;
using pmml::Frame;
using pmml::kBlockRows;
using pmml::kMissing;
using pmml::OpType;
using pmml::ReadyModel;
using pmml::TextPool;

struct PredictionModel::Content {
  std::unique_ptr<ReadyModel> model;
  std::string name;
  std::vector<ModelField> predictors;
  std::vector<ModelField> dependents;
};

namespace {

// Rows that one task takes at a time.
constexpr std::size_t kTaskRows = 16 * kBlockRows;

void DescribeValues(const Field& field, const ReadyModel& model, ModelField& description) {
  description.isText = field.type.IsText();
  description.labels = field.labels;
  for (std::size_t k = 0; k < field.labels.size(); ++k) {
    const bool hasCode = field.type.IsText() || !description.isPredictor;
    description.codes.push_back(hasCode ? static_cast<double>(k + 1) : field.domain.valid[k]);
  }
  for (const pmml::Interval& interval : field.domain.intervals) {
    if (std::isfinite(interval.low))
      description.lowest = std::fmin(description.lowest.value_or(interval.low), interval.low);
    if (std::isfinite(interval.high)) {
      description.highest = std::fmax(description.highest.value_or(interval.high), interval.high);
    }
  }
  const auto counts = model.counts.find(field.name);
  if (counts == model.counts.end()) return;
  double total = 0;
  description.frequencies.assign(field.labels.size(), 0);
  for (const auto& [label, count] : counts->second) {
    const auto at = std::ranges::find(field.labels, label);
    if (at == field.labels.end()) continue;
    description.frequencies[static_cast<std::size_t>(at - field.labels.begin())] = count;
    total += count;
  }
  for (double& frequency : description.frequencies) frequency = total > 0 ? frequency / total : 0;
  if (total <= 0) description.frequencies.clear();
}

ModelField DescribePredictor(const Field& field, const ReadyModel& model) {
  ModelField description;
  description.name = field.name;
  description.kind =
      field.opType == OpType::kContinuous ? ModelFieldKind::kContinuous : ModelFieldKind::kCategorical;
  description.isUsed =
      std::ranges::any_of(model.inputs, [&](const auto& input) { return input.field == &field; });
  DescribeValues(field, model, description);
  return description;
}

ModelField DescribeDependent(std::size_t number, const ReadyModel& model) {
  const pmml::ModelResult& result = model.results[number];
  ModelField description;
  description.isPredictor = false;
  if (result.field != nullptr) DescribeValues(*result.field, model, description);
  description.name = model.dependents[number];
  description.isText = result.function != pmml::Function::kRegression;
  if (!description.isText) return description;
  description.kind = ModelFieldKind::kCategorical;
  description.labels = result.classes.Labels();
  description.codes.clear();
  for (std::size_t k = 0; k < description.labels.size(); ++k)
    description.codes.push_back(static_cast<double>(k + 1));
  return description;
}

// A column to be filled from a slot of every block.
struct Wanted {
  pmml::Slot slot;
  double* values;
  double shift;  // added: class numbers from 0 become codes from 1
};

// Runs the program over all rows; `inputs` holds the columns of model.inputs. Returns the first refusal.
pmml::Refusal Run(const ReadyModel& model, TextPool& pool, const std::vector<const double*>& inputs,
                  std::size_t rows, const std::vector<Wanted>& wanted) {
  pmml::Refusal first;
  std::mutex guard;
  std::vector<std::array<double, kBlockRows>> constants(model.constants.size());
  for (std::size_t k = 0; k < constants.size(); ++k) constants[k].fill(model.constants[k].second);
  ParallelBlocks(rows, kTaskRows, [&](std::size_t begin, std::size_t end) {
    Frame frame(model.slots, model.fixed, pool);
    for (std::size_t k = 0; k < constants.size(); ++k)
      frame.SetFixed(model.constants[k].first, constants[k].data());
    for (std::size_t at = begin; at < end; at += kBlockRows) {
      const std::size_t count = std::min(kBlockRows, end - at);
      frame.SetRows(at, count);
      for (std::size_t k = 0; k < inputs.size(); ++k) frame.SetFixed(model.inputs[k].slot, inputs[k] + at);
      pmml::RunProgram(model.program, frame);
      for (const Wanted& column : wanted) {
        const double* from = frame.In(column.slot);
        for (std::size_t i = 0; i < count; ++i) {
          column.values[at + i] = frame.IsRefused(i) ? kMissing : from[i] + column.shift;
        }
      }
    }
    const std::lock_guard lock(guard);
    if (frame.FirstRefusal().row < first.row) first = frame.FirstRefusal();
  });
  return first;
}

// The values of a sheet's variable in the form of a field; refers to the variable where that has this form.
class Converted {
 public:
  Converted(const Variable& variable, const Field& field, TextPool& pool) {
    if (variable.Type() == VariableType::kText) {
      FromTexts(variable, field, pool);
    } else if (field.type.IsText()) {
      FromNumbersAsTexts(variable, field, pool);
    } else if (!std::isnan(variable.MissingCode()) || field.type.type == pmml::DataType::kFloat) {
      FromNumbers(variable, field);
    } else {
      values_ = variable.Values().data();
    }
  }
  const double* Values() const { return values_; }

 private:
  double* Own(std::size_t size) {
    own_.resize(size);
    values_ = own_.data();
    return own_.data();
  }

  void FromTexts(const Variable& variable, const Field& field, TextPool& pool) {
    std::map<double, double> values;
    double* out = Own(variable.Size());
    for (std::size_t i = 0; i < variable.Size(); ++i) {
      out[i] = kMissing;
      if (variable.IsMissing(i)) continue;
      const double code = variable.Values()[i];
      const auto known = values.find(code);
      out[i] = known != values.end() ? known->second : (values[code] = OfText(variable, i, field, pool));
    }
  }

  static double OfText(const Variable& variable, std::size_t row, const Field& field, TextPool& pool) {
    const std::string text(variable.Label(variable.Values()[row]).value_or(""));
    if (field.type.IsText()) return pool.Number(text);
    if (const auto value = pmml::ParseValue(field.type, text)) return *value;
    throw Error("the model needs numbers in the field " + field.name + ", which has the text \"" + text +
                    "\" in case " + std::to_string(row + 1),
                variable.Name());
  }

  // A number in a field of texts is the text that spells it, as the model writes it where it knows it.
  void FromNumbersAsTexts(const Variable& variable, const Field& field, TextPool& pool) {
    std::map<double, double> values;
    for (std::size_t k = 0; k < field.labels.size(); ++k) {
      if (const auto number = pmml::ReadReal(field.labels[k])) values.emplace(*number, field.domain.valid[k]);
    }
    double* out = Own(variable.Size());
    for (std::size_t i = 0; i < variable.Size(); ++i) {
      out[i] = kMissing;
      if (variable.IsMissing(i)) continue;
      const double number = variable.Values()[i];
      const auto known = values.find(number);
      out[i] = known != values.end() ? known->second : (values[number] = pool.Number(ShortestNumber(number)));
    }
  }

  void FromNumbers(const Variable& variable, const Field& field) {
    const bool isFloat = field.type.type == pmml::DataType::kFloat;
    double* out = Own(variable.Size());
    for (std::size_t i = 0; i < variable.Size(); ++i) {
      const double x = variable.Values()[i];
      out[i] = variable.IsMissing(i) ? kMissing : isFloat ? static_cast<double>(static_cast<float>(x)) : x;
    }
  }

  std::vector<double> own_;
  const double* values_ = nullptr;
};

std::vector<Converted> Bind(const ReadyModel& model, const Spreadsheet& data, TextPool& pool) {
  std::string lacking;
  // In the order of the data dictionary.
  for (const auto& field : model.fields) {
    const bool isRead =
        std::ranges::any_of(model.inputs, [&](const auto& input) { return input.field == field.get(); });
    if (isRead && !data.FindVariable(field->name)) lacking += (lacking.empty() ? "" : ", ") + field->name;
  }
  if (!lacking.empty()) throw Error("the data lack fields that the model needs: " + lacking, data.Name());
  std::vector<Converted> columns;
  for (const pmml::InputColumn& input : model.inputs) {
    columns.emplace_back(data.VariableAt(*data.FindVariable(input.field->name)), *input.field, pool);
  }
  return columns;
}

[[noreturn]] void Refuse(const pmml::Refusal& refusal, const TextPool& pool, const std::string& where) {
  const std::string place =
      " of field " + refusal.field->name + " in case " + std::to_string(refusal.row + 1);
  if (std::isnan(refusal.value)) throw Error("the model refuses the missing value" + place, where);
  const std::string value = refusal.field->type.IsText()
                                ? "\"" + std::string(pool.Text(refusal.value)) + "\""
                                : pmml::FormatValue(refusal.field->type, refusal.value);
  throw Error("the model refuses the value " + value + place + ", which it does not know as valid", where);
}

// Texts by their numbers in the pool become codes 1, 2, … in the order in which they are met.
void LabelTexts(Variable& variable, const TextPool& pool) {
  std::map<double, double> codes;
  std::span<double> values = variable.MutableValues();
  for (double& value : values) {
    if (std::isnan(value)) continue;
    const auto [at, isNew] = codes.try_emplace(value, static_cast<double>(codes.size() + 1));
    value = at->second;
  }
  variable.SetType(VariableType::kText);
  for (const auto& [number, code] : codes) variable.SetLabel(code, std::string(pool.Text(number)));
}

void LabelClasses(Variable& variable, const std::vector<std::string>& labels) {
  variable.SetType(VariableType::kText);
  for (std::size_t k = 0; k < labels.size(); ++k) variable.SetLabel(static_cast<double>(k + 1), labels[k]);
}

}  // namespace

std::string ModelField::Type() const {
  return std::string(isPredictor ? "In;" : "Out;") + (kind == ModelFieldKind::kContinuous ? "Cont" : "Cat");
}

PredictionModel::PredictionModel(std::unique_ptr<const Content> content) : content_(std::move(content)) {}
PredictionModel::~PredictionModel() = default;
PredictionModel::PredictionModel(PredictionModel&&) noexcept = default;
PredictionModel& PredictionModel::operator=(PredictionModel&&) noexcept = default;

PredictionModel PredictionModel::Load(const std::filesystem::path& path) {
  const MappedFile file(path);
  return Parse(file.Text(), path.string());
}

PredictionModel PredictionModel::Parse(std::string_view text, const std::string& name) {
  auto content = std::make_unique<Content>();
  content->model = pmml::ReadModelFile(text, name);
  const ReadyModel& model = *content->model;
  content->name = model.name.empty() ? std::filesystem::path(name).stem().string() : model.name;
  for (const Field* field : model.predictors) content->predictors.push_back(DescribePredictor(*field, model));
  for (std::size_t k = 0; k < model.results.size(); ++k)
    content->dependents.push_back(DescribeDependent(k, model));
  return PredictionModel(std::move(content));
}

const std::string& PredictionModel::Name() const {
  return content_->name;
}
const std::vector<ModelField>& PredictionModel::Predictors() const {
  return content_->predictors;
}
const std::vector<ModelField>& PredictionModel::Dependents() const {
  return content_->dependents;
}
std::optional<double> PredictionModel::MeanSquaredError() const {
  return content_->model->meanSquaredError;
}

void PredictionModel::Predict(std::span<const std::span<const double>> predictors,
                              std::span<const std::span<double>> dependents) const {
  const ReadyModel& model = *content_->model;
  const std::size_t rows = dependents.empty() ? 0 : dependents[0].size();
  const auto hasRows = [rows](const auto& column) { return column.size() == rows; };
  const bool fits = predictors.size() == content_->predictors.size() &&
                    dependents.size() == content_->dependents.size() &&
                    std::ranges::all_of(predictors, hasRows) && std::ranges::all_of(dependents, hasRows);
  if (!fits) throw Error("the columns are not those of the model", content_->name);
  TextPool pool(&model.pool);
  const std::vector<double> missing(rows, kMissing);
  std::vector<std::vector<double>> converted;
  std::vector<const double*> inputs;
  for (const pmml::InputColumn& input : model.inputs) {
    const auto at = std::ranges::find(model.predictors, input.field);
    if (at == model.predictors.end()) {
      inputs.push_back(missing.data());
      continue;
    }
    const std::span<const double> column =
        predictors[static_cast<std::size_t>(at - model.predictors.begin())];
    if (!input.field->type.IsText()) {
      inputs.push_back(column.data());
      continue;
    }
    auto& texts = converted.emplace_back(rows, kMissing);
    const std::vector<double>& valid = input.field->domain.valid;
    const double unknown = pool.Number("");
    for (std::size_t i = 0; i < rows; ++i) {
      const double code = column[i];
      if (std::isnan(code)) continue;
      const bool isKnown = code >= 1 && code <= static_cast<double>(valid.size()) && code == std::floor(code);
      texts[i] = isKnown ? valid[static_cast<std::size_t>(code) - 1] : unknown;
    }
    inputs.push_back(texts.data());
  }
  std::vector<Wanted> wanted;
  for (std::size_t k = 0; k < dependents.size(); ++k) {
    const double shift = content_->dependents[k].isText ? 1 : 0;
    wanted.push_back({model.results[k].value, dependents[k].data(), shift});
  }
  Run(model, pool, inputs, rows, wanted);
}

Spreadsheet PredictionModel::Score(const Spreadsheet& data, const std::string& name,
                                   const ScoreOptions& options) const {
  const ReadyModel& model = *content_->model;
  const std::size_t rows = data.CaseCount();
  TextPool pool(&model.pool);
  const std::vector<Converted> columns = Bind(model, data, pool);
  std::vector<const double*> inputs;
  for (const Converted& column : columns) inputs.push_back(column.Values());
  std::vector<Variable> variables;
  std::vector<pmml::Slot> slots;
  const auto add = [&](const std::string& title, pmml::Slot slot) {
    variables.emplace_back(title, rows);
    slots.push_back(slot);
  };
  for (std::size_t k = 0; k < model.results.size(); ++k) add(model.dependents[k], model.results[k].value);
  for (const auto& output : model.outputs) {
    if (output.isFinal) add(output.name, output.operand.slot);
  }
  for (const pmml::ModelResult& result : model.results) {
    for (std::size_t k = 0; options.classProbabilities && k < result.probabilities.size(); ++k) {
      add("probability(" + result.classes.Labels()[k] + ")", result.probabilities[k]);
    }
  }
  std::vector<Wanted> wanted;
  for (std::size_t k = 0; k < slots.size(); ++k) {
    const double shift = k < model.results.size() && content_->dependents[k].isText ? 1 : 0;
    wanted.push_back({slots[k], variables[k].MutableValues().data(), shift});
  }
  const pmml::Refusal refusal = Run(model, pool, inputs, rows, wanted);
  if (refusal.field != nullptr && options.invalid == InvalidValues::kError)
    Refuse(refusal, pool, data.Name());
  for (std::size_t k = 0; k < model.results.size(); ++k) {
    if (content_->dependents[k].isText) LabelClasses(variables[k], content_->dependents[k].labels);
  }
  std::size_t at = model.results.size();
  for (const auto& output : model.outputs) {
    if (!output.isFinal) continue;
    if (output.operand.type.IsText()) LabelTexts(variables[at], pool);
    ++at;
  }
  Spreadsheet sheet(name);
  for (Variable& variable : variables) sheet.AddVariable(std::move(variable));
  return sheet;
}

}  // namespace brenvolt
