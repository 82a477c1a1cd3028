// NearestNeighborModel: targets from the nearest records of the training data.
#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>

#include "host/models/document/arrays.h"
#include "host/models/kinds/comparison_measure.h"
#include "host/models/kinds/model.h"

namespace brenvolt::pmml {
namespace {

enum class Scoring : std::uint8_t { kMean, kWeightedMean, kMedian, kVote, kWeightedVote };

// What becomes of one target.
struct Answer {
  Scoring scoring = Scoring::kMean;
  std::vector<double> values;  // by record: a number, or the number of the class
  Slot value = kNoSlot;
  std::vector<Slot> probabilities;  // of classes
};

struct Neighbours {
  std::size_t count = 0;
  double threshold = 0.001;
  std::vector<ComparisonField> fields;
  std::size_t size = 0;         // records
  std::vector<double> records;  // record after record
  std::vector<Answer> answers;  // by target

  double WeightOf(double distance) const { return 1 / (distance + threshold); }
};

// The nearest records of a row, nearest first; of equal distances the earlier record.
using Ranking = std::vector<std::pair<double, std::size_t>>;

double NumberOf(const Neighbours& n, const Answer& answer, const Ranking& nearest) {
  double sum = 0;
  double total = 0;
  std::vector<double> values;
  for (const auto& [distance, record] : nearest) {
    const double weight = answer.scoring == Scoring::kWeightedMean ? n.WeightOf(distance) : 1;
    sum += weight * answer.values[record];
    total += weight;
    values.push_back(answer.values[record]);
  }
  if (answer.scoring != Scoring::kMedian) return sum / total;
  std::ranges::sort(values);
  const std::size_t middle = values.size() / 2;
  return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

class NeighbourStep final : public Step {
 public:
  NeighbourStep(std::unique_ptr<Neighbours> neighbours, ComparisonMeasure measure, std::vector<Slot> entities)
      : n_(std::move(neighbours)), measure_(measure), entities_(std::move(entities)) {}

  void Run(Frame& frame) const override {
    Ranking ranking(n_->size);
    std::vector<double> record(n_->fields.size());
    for (std::size_t i = 0; i < frame.Rows(); ++i) {
      const std::size_t found = Rank(frame, i, record, ranking);
      const Ranking nearest(ranking.begin(), ranking.begin() + static_cast<std::ptrdiff_t>(found));
      for (std::size_t k = 0; k < entities_.size(); ++k) {
        frame.Out(entities_[k])[i] = k < found ? static_cast<double>(nearest[k].second) : kMissing;
      }
      for (const Answer& answer : n_->answers) {
        if (answer.probabilities.empty()) {
          frame.Out(answer.value)[i] = found == 0 ? kMissing : NumberOf(*n_, answer, nearest);
        } else {
          Vote(answer, nearest, i, frame);
        }
      }
    }
  }

 private:
  // Sorts the nearest records to the front; returns how many there are: none if all fields are missing.
  std::size_t Rank(const Frame& frame, std::size_t row, std::vector<double>& record, Ranking& ranking) const {
    const std::size_t width = record.size();
    for (std::size_t k = 0; k < width; ++k) record[k] = frame.In(n_->fields[k].slot)[row];
    const double sign = measure_.IsSimilarity() ? -1 : 1;
    for (std::size_t r = 0; r < ranking.size(); ++r) {
      const double d = measure_.Between(n_->fields, record, std::span(n_->records).subspan(r * width, width));
      if (std::isnan(d)) return 0;
      ranking[r] = {sign * d, r};
    }
    const std::size_t count = std::min(n_->count, ranking.size());
    std::partial_sort(ranking.begin(), ranking.begin() + static_cast<std::ptrdiff_t>(count), ranking.end());
    for (std::size_t k = 0; k < count; ++k) ranking[k].first *= sign;
    return count;
  }

  void Vote(const Answer& answer, const Ranking& nearest, std::size_t row, Frame& frame) const {
    for (const Slot slot : answer.probabilities) frame.Out(slot)[row] = nearest.empty() ? kMissing : 0;
    double total = 0;
    for (const auto& [distance, record] : nearest) {
      const double weight = answer.scoring == Scoring::kWeightedVote ? n_->WeightOf(distance) : 1;
      frame.Out(answer.probabilities[static_cast<std::size_t>(answer.values[record])])[row] += weight;
      total += weight;
    }
    for (const Slot slot : answer.probabilities) frame.Out(slot)[row] /= total;
  }

  std::unique_ptr<Neighbours> n_;
  ComparisonMeasure measure_;
  std::vector<Slot> entities_;
};

class NeighbourReader {
 public:
  NeighbourReader(const Element& model, ModelPlace& place)
      : model_(model), place_(place), measure_(model.Child("ComparisonMeasure")) {}

  ModelResult Read() {
    ReadHead();
    std::optional<Element> training;
    std::optional<Element> inputs;
    for (const Element& child : OwnChildren(model_)) {
      if (child.Is("TrainingInstances") && !training) {
        training = child;
      } else if (child.Is("KNNInputs") && !inputs) {
        inputs = child;
      } else if (!child.Is("ComparisonMeasure")) {
        child.Refuse();
      }
    }
    if (!training || !inputs) model_.Fail("the model needs TrainingInstances and KNNInputs");
    ReadInputs(*inputs);
    ReadTraining(*training);
    return Finish();
  }

 private:
  void ReadHead() {
    const auto count = model_.FindInteger("numberOfNeighbors");
    if (!count || *count < 1) model_.Fail("numberOfNeighbors must be above 0");
    neighbours_->count = static_cast<std::size_t>(*count);
    neighbours_->threshold = model_.Real("threshold", neighbours_->threshold);
    const auto forNumbers = model_.Choice<Scoring>("continuousScoringMethod",
                                                   {{"average", Scoring::kMean},
                                                    {"weightedAverage", Scoring::kWeightedMean},
                                                    {"median", Scoring::kMedian}},
                                                   Scoring::kMean);
    const auto forClasses = model_.Choice<Scoring>(
        "categoricalScoringMethod",
        {{"majorityVote", Scoring::kVote}, {"weightedMajorityVote", Scoring::kWeightedVote}}, Scoring::kVote);
    if (place_.function == Function::kClustering)
      model_.Fail("neighbours without a target are not supported");
    if (place_.target.empty()) model_.Fail("the model has no target");
    const std::vector<Target> one{{place_.target, place_.field, place_.function}};
    for (const Target& target : place_.targets.empty() ? one : place_.targets) {
      ModelResult& result = results_.emplace_back();
      Complete(result, target);
      if (target.field != nullptr) result.classes = Classes(*target.field);
      neighbours_->answers.push_back(
          {target.function == Function::kRegression ? forNumbers : forClasses, {}, kNoSlot, {}});
    }
    idVariable_ = model_.Text("instanceIdVariable", "");
  }

  void ReadInputs(const Element& inputs) {
    inputs.RefuseOtherAttributes();
    for (const Element& input : inputs.Children()) {
      if (!input.Is("KNNInput")) input.Refuse();
      ComparisonField field = ReadComparisonField(input, measure_);
      const std::string name = input.Text("field");
      operands_.push_back(place_.scope.Resolve(name, input));
      field.slot = operands_.back().slot;
      const bool isText = operands_.back().type.IsText();
      if (isText && (field.compare == Compare::kAbsDiff || field.compare == Compare::kGaussSim)) {
        input.Fail("texts can only be compared by delta or equal");
      }
      input.RefuseAnythingElse();
      names_.push_back(name);
      neighbours_->fields.push_back(std::move(field));
    }
    if (names_.empty()) inputs.Fail("the model has no inputs");
  }

  void ReadTraining(const Element& element) {
    const bool isTransformed = element.Flag("isTransformed", false);
    element.PassOver({"recordCount", "fieldCount"});
    element.RefuseOtherAttributes();
    std::map<std::string, std::string> columnOf;
    std::optional<Element> table;
    for (const Element& child : element.Children()) {
      if (child.Is("InstanceFields")) {
        ReadFields(child, columnOf);
      } else if (child.Is("InlineTable") && !table) {
        table = child;
      } else {
        child.Refuse();
      }
    }
    if (!table) element.Fail("the training data are not in the file");
    std::vector<std::string> columns;
    for (const std::string& name : names_) {
      const bool isRaw = place_.Build().FindDeclared(name) != nullptr;
      if (!isRaw && !isTransformed)
        element.Fail("the training data of the derived field " + name + " are not transformed");
      columns.push_back(ColumnOf(name, columnOf, element));
    }
    for (const ModelResult& result : results_) columns.push_back(ColumnOf(result.target, columnOf, element));
    if (!idVariable_.empty()) columns.push_back(ColumnOf(idVariable_, columnOf, element));
    for (const auto& row : ReadInlineTable(*table, columns)) ReadRecord(row, *table);
    if (neighbours_->size == 0) element.Fail("the model has no training data");
  }

  static void ReadFields(const Element& element, std::map<std::string, std::string>& columnOf) {
    element.RefuseOtherAttributes();
    for (const Element& field : element.Children()) {
      if (!field.Is("InstanceField")) field.Refuse();
      const std::string name = field.Text("field");
      columnOf[name] = field.Text("column", name);
      field.RefuseAnythingElse();
    }
  }

  static std::string ColumnOf(const std::string& name, const std::map<std::string, std::string>& columnOf,
                              const Element& at) {
    const auto found = columnOf.find(name);
    if (found == columnOf.end()) at.Fail("the training data have no field " + name);
    return found->second;
  }

  void ReadRecord(const std::vector<std::optional<std::string>>& row, const Element& at) {
    const std::size_t width = names_.size();
    for (std::size_t k = 0; k < width; ++k) {
      if (!row[k]) at.Fail("a record has no field " + names_[k]);
      neighbours_->records.push_back(place_.Build().ValueOf(*row[k], operands_[k].type, at));
    }
    for (std::size_t t = 0; t < results_.size(); ++t) {
      if (!row[width + t]) at.Fail("a record has no target " + results_[t].target);
      neighbours_->answers[t].values.push_back(TargetValue(*row[width + t], results_[t], at));
    }
    const std::string number = std::to_string(++neighbours_->size);
    entityIds_.push_back(idVariable_.empty() ? number : row[width + results_.size()].value_or(number));
  }

  double TargetValue(const std::string& text, ModelResult& result, const Element& at) {
    if (result.function == Function::kRegression) return place_.Build().ValueOf(text, kDouble, at);
    return static_cast<double>(result.classes.Number(text, place_.Build(), at));
  }

  ModelResult Finish() {
    Neighbours& n = *neighbours_;
    for (std::size_t t = 0; t < results_.size(); ++t) {
      ModelResult& result = results_[t];
      const bool isClass = result.function != Function::kRegression;
      result.value = n.answers[t].value = place_.NewResult(model_);
      for (std::size_t k = 0; isClass && k < result.classes.Count(); ++k)
        result.probabilities.push_back(place_.NewResult(model_));
      result.confidences = n.answers[t].probabilities = result.probabilities;
    }
    std::vector<Slot> entities;
    const std::size_t ranks = place_.wants.entities ? std::min(n.count, n.size) : 0;
    for (std::size_t k = 0; k < ranks; ++k) entities.push_back(place_.NewResult(model_));
    place_.program.push_back(std::make_unique<NeighbourStep>(std::move(neighbours_), measure_, entities));
    for (ModelResult& result : results_) {
      if (!result.probabilities.empty()) AddGreatest(result.probabilities, result.value, place_.program);
      result.entities = entities;
      result.entityIds = entityIds_;
    }
    return Together(std::move(results_));
  }

  const Element& model_;
  ModelPlace& place_;
  ComparisonMeasure measure_;
  std::unique_ptr<Neighbours> neighbours_ = std::make_unique<Neighbours>();
  std::vector<std::string> names_;
  std::vector<Operand> operands_;
  std::string idVariable_;
  std::vector<std::string> entityIds_;
  std::vector<ModelResult> results_;  // by target
};

}  // namespace

ModelResult ReadNearestNeighborModel(const Element& model, ModelPlace& place) {
  return NeighbourReader(model, place).Read();
}

}  // namespace brenvolt::pmml
