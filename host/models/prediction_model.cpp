#include "host/models/prediction_model.h"

#include <algorithm>
#include <cmath>
#include <mutex>
#include <tuple>
#include <unordered_map>

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
  std::vector<UnavailableOutput> unavailable;
  std::shared_ptr<const ModelFunction> function;  // in place of a model of a file
};

namespace {

// Rows that one task takes at a time.
constexpr std::size_t kTaskRows = 16 * kBlockRows;

void DescribeValues(const Field& field, const ReadyModel& model, ModelField& description) {
  description.isText = field.type.IsText();
  description.labels = field.labels;
  description.isListed = !field.labels.empty() && field.domain.intervals.empty();
  for (std::size_t k = 0; k < field.labels.size(); ++k) {
    const bool hasCode = field.type.IsText() || !description.isPredictor;
    description.codes.push_back(hasCode ? static_cast<double>(k + 1) : field.domain.valid[k]);
  }
  const auto counts = model.counts.find(field.name);
  if (counts == model.counts.end()) return;
  double total = 0;
  description.frequencies.assign(field.labels.size(), 0);
  std::unordered_map<std::string_view, std::size_t> places;
  for (std::size_t k = 0; k < field.labels.size(); ++k) places.emplace(field.labels[k], k);
  for (const auto& [label, count] : counts->second) {
    const auto at = places.find(label);
    if (at == places.end()) continue;
    description.frequencies[at->second] = count;
    total += count;
  }
  for (double& frequency : description.frequencies) frequency = total > 0 ? frequency / total : 0;
  if (total <= 0) description.frequencies.clear();
}

// What the mining schema makes of the field's values.
void DescribeUse(const Field& field, const ReadyModel& model, ModelField& description) {
  const auto found = model.uses.find(&field);
  if (found == model.uses.end()) return;
  const pmml::FieldUse& use = found->second;
  if (std::isfinite(use.lowest)) description.lowest = use.lowest;
  if (std::isfinite(use.highest)) description.highest = use.highest;
  for (const pmml::Interval& part : use.parts) description.parts.push_back({part.low, part.high});
  description.predictsInvalid = use.predictsInvalid;
  if (std::isnan(use.replacement)) return;
  if (!field.type.IsText()) {
    description.replacement = use.replacement;
    return;
  }
  const auto at = std::ranges::find(field.domain.valid, use.replacement);
  if (at == field.domain.valid.end()) return;
  description.replacement = static_cast<double>(at - field.domain.valid.begin() + 1);
}

// Whether a prediction, and not only an output, reads the field.
bool IsUsed(const Field& field, const ReadyModel& model) {
  const auto read = std::span(model.inputs).first(model.predictionInputs);
  return std::ranges::find(read, &field, &pmml::InputColumn::field) != read.end();
}

ModelField DescribePredictor(const Field& field, const ReadyModel& model) {
  ModelField description;
  description.name = field.name;
  description.kind =
      field.opType == OpType::kContinuous ? ModelFieldKind::kContinuous : ModelFieldKind::kCategorical;
  description.isUsed = IsUsed(field, model);
  DescribeValues(field, model, description);
  DescribeUse(field, model, description);
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

// Whether the model goes on without the field: it replaces its missing values.
bool IsReplaced(const Field& field, const ReadyModel& model) {
  const auto use = model.uses.find(&field);
  return use != model.uses.end() && !std::isnan(use->second.replacement);
}

// Whether a value that is not valid is counted for itself: it is a category, and not just any number.
bool IsCategory(const Field& field) {
  return field.type.IsText() || field.opType != OpType::kContinuous;
}

std::string TextOf(const Field& field, double value, const TextPool& pool) {
  return field.type.IsText() ? std::string(pool.Text(value)) : pmml::FormatValue(field.type, value);
}

// Counts the cases of blocks that have no prediction, with their reasons.
class Tally {
 public:
  // Counts the cases that lack any of the predictions in `slots`.
  Tally(const ReadyModel& model, const std::vector<const double*>& inputs, std::vector<pmml::Slot> slots)
      : model_(model), inputs_(inputs), slots_(std::move(slots)) {}

  void CountBlock(const Frame& frame) {
    bool whole = !frame.HasReasons();
    for (const pmml::Slot slot : slots_) {
      const double* y = frame.In(slot);
      for (std::size_t i = 0; i < frame.Rows(); ++i) whole = whole & (y[i] == y[i]);
    }
    if (whole) return;
    for (std::size_t i = 0; i < frame.Rows(); ++i) {
      const Frame::RowReason& reason = frame.ReasonOf(i);
      const auto isMissing = [&](pmml::Slot slot) { return std::isnan(frame.In(slot)[i]); };
      if (!reason.isRefused && std::ranges::none_of(slots_, isMissing)) continue;
      if (reason.field != nullptr) {
        Count(*reason.field, reason.value);
      } else if (const Field* field = MissingAt(frame.FirstRow() + i)) {
        Count(*field, kMissing);
      } else {
        ++noResult_;
      }
    }
  }

  void AddTo(UnpredictedCases& unpredicted, const TextPool& pool) const {
    if (noResult_ > 0) unpredicted.Add({NoPrediction::kNoResult, {}, {}, kMissing, kMissing, noResult_});
    for (const auto& [key, counted] : counts_) {
      const auto& [field, value, isMissing] = key;
      UnpredictedReason reason{
          NoPrediction::kMissingValue, field->name, {}, kMissing, kMissing, counted.cases};
      if (!isMissing && IsCategory(*field)) {
        reason.reason = NoPrediction::kUnknownValue;
        reason.value = TextOf(*field, value, pool);
      } else if (!isMissing) {
        reason.reason = NoPrediction::kOutsideRange;
        reason.lowest = counted.lowest;
        reason.highest = counted.highest;
      }
      unpredicted.Add(reason);
    }
  }

 private:
  struct Counted {
    std::size_t cases = 0;
    double lowest = kMissing;
    double highest = kMissing;
  };

  void Count(const Field& field, double value) {
    const bool isMissing = std::isnan(value);
    const double category = isMissing || !IsCategory(field) ? 0 : value;
    Counted& counted = counts_[{&field, category, isMissing}];
    ++counted.cases;
    counted.lowest = std::fmin(counted.lowest, value);
    counted.highest = std::fmax(counted.highest, value);
  }

  // The first field that the prediction reads, does not replace, and misses in the row.
  const Field* MissingAt(std::size_t row) const {
    for (std::size_t k = 0; k < model_.predictionInputs; ++k) {
      if (!std::isnan(inputs_[k][row])) continue;
      if (!IsReplaced(*model_.inputs[k].field, model_)) return model_.inputs[k].field;
    }
    return nullptr;
  }

  const ReadyModel& model_;
  const std::vector<const double*>& inputs_;
  std::vector<pmml::Slot> slots_;
  std::map<std::tuple<const Field*, double, bool>, Counted> counts_;  // by field, category, missing
  std::size_t noResult_ = 0;
};

void TakeColumn(const Frame& frame, const Wanted& column) {
  const double* from = frame.In(column.slot);
  double* to = column.values + frame.FirstRow();
  for (std::size_t i = 0; i < frame.Rows(); ++i) to[i] = from[i] + column.shift;
  if (!frame.HasReasons()) return;
  for (std::size_t i = 0; i < frame.Rows(); ++i) {
    if (frame.ReasonOf(i).isRefused) to[i] = kMissing;
  }
}

// Where the reasons of cases are counted that lack any of some predictions.
struct Counting {
  std::vector<pmml::Slot> slots;
  UnpredictedCases* cases;
};

// Runs the program over all rows; `inputs` holds the columns of model.inputs. Returns the first refusal.
pmml::Refusal Run(const ReadyModel& model, TextPool& pool, const std::vector<const double*>& inputs,
                  std::size_t rows, const std::vector<Wanted>& wanted,
                  const std::vector<Counting>& countings) {
  pmml::Refusal first;
  std::mutex guard;
  std::vector<std::array<double, kBlockRows>> constants(model.constants.size());
  for (std::size_t k = 0; k < constants.size(); ++k) constants[k].fill(model.constants[k].second);
  ParallelBlocks(rows, kTaskRows, [&](std::size_t begin, std::size_t end) {
    Frame frame(model.slots, model.fixed, pool);
    std::vector<Tally> tallies;
    for (const Counting& counting : countings) tallies.emplace_back(model, inputs, counting.slots);
    for (std::size_t k = 0; k < constants.size(); ++k)
      frame.SetFixed(model.constants[k].first, constants[k].data());
    for (std::size_t at = begin; at < end; at += kBlockRows) {
      frame.SetRows(at, std::min(kBlockRows, end - at));
      for (std::size_t k = 0; k < inputs.size(); ++k) frame.SetFixed(model.inputs[k].slot, inputs[k] + at);
      pmml::RunProgram(model.program, frame);
      for (const Wanted& column : wanted) TakeColumn(frame, column);
      for (Tally& tally : tallies) tally.CountBlock(frame);
    }
    const std::lock_guard lock(guard);
    if (frame.FirstRefusal().row < first.row) first = frame.FirstRefusal();
    for (std::size_t k = 0; k < tallies.size(); ++k) tallies[k].AddTo(*countings[k].cases, pool);
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
  // A column that the data lack.
  explicit Converted(std::size_t rows) { std::fill_n(Own(rows), rows, kMissing); }
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

// The texts that the codes of a predictor stand for, as numbers of the pool: those of `labels`, or 1, 2, … for
// the field's own.
class CodedTexts {
 public:
  CodedTexts(const Field& field, const std::map<double, std::string>* labels, TextPool& pool)
      : unknown_(pool.Number("")) {
    if (labels != nullptr) {
      for (const auto& [code, text] : *labels) texts_.emplace(code, pool.Number(text));
      return;
    }
    for (const double text : field.domain.valid) texts_.emplace(static_cast<double>(texts_.size() + 1), text);
  }

  std::vector<double> Of(std::span<const double> codes) const {
    std::vector<double> texts(codes.begin(), codes.end());
    for (double& text : texts) {
      if (std::isnan(text)) continue;
      const auto found = texts_.find(text);
      text = found != texts_.end() ? found->second : unknown_;
    }
    return texts;
  }

 private:
  double unknown_;
  std::map<double, double> texts_;
};

bool IsLacking(const Field& field, const ReadyModel& model, const Spreadsheet& data) {
  return !IsReplaced(field, model) && !data.FindVariable(field.name);
}

// The fields that an output reads and the data lack, none of which a prediction needs: "a, b".
std::string LackingFor(const pmml::OutputColumn& output, const ReadyModel& model, const Spreadsheet& data) {
  std::string lacking;
  for (const auto& field : model.fields) {
    if (!output.fields.contains(field.get()) || !IsLacking(*field, model, data)) continue;
    lacking += (lacking.empty() ? "" : ", ") + field->name;
  }
  return lacking;
}

std::vector<Converted> Bind(const ReadyModel& model, const Spreadsheet& data, TextPool& pool) {
  std::string lacking;
  // In the order of the data dictionary.
  for (const auto& field : model.fields) {
    if (!IsUsed(*field, model) || !IsLacking(*field, model, data)) continue;
    lacking += (lacking.empty() ? "" : ", ") + field->name;
  }
  if (!lacking.empty()) throw Error("the data lack fields that the model needs: " + lacking, data.Name());
  std::vector<Converted> columns;
  for (const pmml::InputColumn& input : model.inputs) {
    if (const auto place = data.FindVariable(input.field->name)) {
      columns.emplace_back(data.VariableAt(*place), *input.field, pool);
    } else {
      columns.emplace_back(data.CaseCount());
    }
  }
  return columns;
}

[[noreturn]] void Refuse(const pmml::Refusal& refusal, const TextPool& pool, const std::string& where) {
  const std::string place =
      " of field " + refusal.field->name + " in case " + std::to_string(refusal.row + 1);
  if (std::isnan(refusal.value)) throw Error("the model refuses the missing value" + place, where);
  const std::string text = TextOf(*refusal.field, refusal.value, pool);
  const std::string value = refusal.field->type.IsText() ? "\"" + text + "\"" : text;
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
  if (auto function = FindProvidedModel(path.string())) return FromFunction(std::move(function));
  const MappedFile file(path);
  return file.Use([&](std::string_view text) { return Parse(text, path.string()); });
}

PredictionModel PredictionModel::Parse(std::string_view text, const std::string& name) {
  auto content = std::make_unique<Content>();
  content->model = pmml::ReadModelFile(text, name);
  const ReadyModel& model = *content->model;
  content->name = model.name.empty() ? std::filesystem::path(name).stem().string() : model.name;
  for (const Field* field : model.predictors) content->predictors.push_back(DescribePredictor(*field, model));
  for (std::size_t k = 0; k < model.results.size(); ++k)
    content->dependents.push_back(DescribeDependent(k, model));
  for (const pmml::OutputColumn& output : model.faultyOutputs) {
    content->unavailable.push_back(
        {output.name, std::string(output.fault->what()) + " (" + output.fault->Where() + ")"});
  }
  return PredictionModel(std::move(content));
}

PredictionModel PredictionModel::FromFunction(std::shared_ptr<const ModelFunction> function) {
  auto content = std::make_unique<Content>();
  content->model = std::make_unique<ReadyModel>();
  content->name = function->name;
  for (const std::string& name : function->predictors) content->predictors.emplace_back().name = name;
  for (const std::string& name : function->dependents) {
    ModelField& field = content->dependents.emplace_back();
    field.name = name;
    field.isPredictor = false;
  }
  content->model->meanSquaredErrors.resize(function->dependents.size());
  content->function = std::move(function);
  return PredictionModel(std::move(content));
}

bool PredictionModel::IsFunction() const {
  return content_->function != nullptr;
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
std::optional<double> PredictionModel::MeanSquaredError(std::size_t dependent) const {
  return content_->model->meanSquaredErrors[dependent];
}

std::vector<UnavailableOutput> PredictionModel::UnavailableOutputs(const Spreadsheet& data) const {
  const ReadyModel& model = *content_->model;
  std::vector<UnavailableOutput> unavailable = content_->unavailable;
  for (const pmml::OutputColumn& output : model.outputs) {
    const std::string lacking = LackingFor(output, model, data);
    if (!output.isFinal || lacking.empty()) continue;
    std::string reason = "it needs fields that the data lack: " + lacking;
    unavailable.push_back({output.name, std::move(reason)});
  }
  return unavailable;
}

std::optional<double> PredictionModel::ValueOf(std::size_t predictor, std::string_view text) const {
  if (IsFunction()) return ParseNumber(text);
  return pmml::ParseValue(content_->model->predictors[predictor]->type, text);
}

void PredictionModel::Predict(std::span<const std::span<const double>> predictors,
                              std::span<const std::span<double>> dependents,
                              const PredictOptions& options) const {
  const ReadyModel& model = *content_->model;
  const std::size_t rows = dependents.empty() ? 0 : dependents[0].size();
  bool fits = predictors.size() == content_->predictors.size() &&
              dependents.size() == content_->dependents.size() &&
              (options.labels.empty() || options.labels.size() == predictors.size()) &&
              (options.unpredicted.empty() || options.unpredicted.size() == dependents.size());
  for (const auto& column : dependents) fits = fits && column.size() == rows;
  for (std::size_t k = 0; fits && k < predictors.size(); ++k)
    fits = predictors[k].size() == rows || (predictors[k].empty() && !content_->predictors[k].isUsed);
  if (!fits) throw Error("the columns are not those of the model", content_->name);
  if (IsFunction()) return content_->function->predict(options.firstCase, predictors, dependents);
  TextPool pool(&model.pool);
  const std::vector<double> missing(rows, kMissing);
  std::vector<std::vector<double>> converted;
  converted.reserve(model.inputs.size());
  std::vector<const double*> inputs;
  for (const pmml::InputColumn& input : model.inputs) {
    const auto at = std::ranges::find(model.predictors, input.field);
    const auto place = static_cast<std::size_t>(at - model.predictors.begin());
    if (at == model.predictors.end() || predictors[place].empty()) {
      inputs.push_back(missing.data());
    } else if (!input.field->type.IsText()) {
      inputs.push_back(predictors[place].data());
    } else {
      const auto* labels = options.labels.empty() ? nullptr : options.labels[place];
      const CodedTexts texts(*input.field, labels, pool);
      inputs.push_back(converted.emplace_back(texts.Of(predictors[place])).data());
    }
  }
  std::vector<Wanted> wanted;
  for (std::size_t k = 0; k < dependents.size(); ++k) {
    const double shift = content_->dependents[k].isText ? 1 : 0;
    wanted.push_back({model.results[k].value, dependents[k].data(), shift});
  }
  std::vector<Counting> countings;
  for (std::size_t k = 0; k < options.unpredicted.size(); ++k)
    countings.push_back({{model.results[k].value}, &options.unpredicted[k]});
  Run(model, pool, inputs, rows, wanted, countings);
}

Spreadsheet PredictionModel::Score(const Spreadsheet& data, const std::string& name,
                                   const ScoreOptions& options, UnpredictedCases* unpredicted) const {
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
  std::vector<const pmml::OutputColumn*> outputs;
  for (const auto& output : model.outputs) {
    if (output.isFinal && LackingFor(output, model, data).empty()) outputs.push_back(&output);
  }
  for (const auto* output : outputs) add(output->name, output->operand.slot);
  for (const pmml::ModelResult& result : model.results) {
    const std::string of = model.results.size() > 1 ? result.target + "=" : "";
    for (std::size_t k = 0; options.classProbabilities && k < result.probabilities.size(); ++k)
      add("probability(" + of + result.classes.Labels()[k] + ")", result.probabilities[k]);
  }
  std::vector<Wanted> wanted;
  for (std::size_t k = 0; k < slots.size(); ++k) {
    const double shift = k < model.results.size() && content_->dependents[k].isText ? 1 : 0;
    wanted.push_back({slots[k], variables[k].MutableValues().data(), shift});
  }
  std::vector<Counting> countings;
  if (unpredicted != nullptr) countings.push_back({{}, unpredicted});
  for (Counting& counting : countings) {
    for (const pmml::ModelResult& result : model.results) counting.slots.push_back(result.value);
  }
  const pmml::Refusal refusal = Run(model, pool, inputs, rows, wanted, countings);
  if (refusal.field != nullptr && options.invalid == InvalidValues::kError)
    Refuse(refusal, pool, data.Name());
  for (std::size_t k = 0; k < model.results.size(); ++k) {
    if (content_->dependents[k].isText) LabelClasses(variables[k], content_->dependents[k].labels);
  }
  for (std::size_t k = 0; k < outputs.size(); ++k) {
    if (outputs[k]->operand.type.IsText()) LabelTexts(variables[model.results.size() + k], pool);
  }
  Spreadsheet sheet(name);
  for (Variable& variable : variables) sheet.AddVariable(std::move(variable));
  return sheet;
}

}  // namespace brenvolt
