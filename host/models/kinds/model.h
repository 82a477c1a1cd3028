// Models inside the service: what every kind of model is read from, and the columns in which it leaves its
// result.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/models/transformations/expression_element.h"
#include "host/models/transformations/predicate.h"

namespace brenvolt::pmml {

// kMixed: numbers for some targets and classes for others.
enum class Function : std::uint8_t { kRegression, kClassification, kClustering, kMixed };

// The categories of a classification, numbered from 0: those of the target's field in the order of the
// dictionary, and after them those that only the model names.
class Classes {
 public:
  Classes() = default;
  Classes(const Field& field);
  explicit Classes(TypeInfo type) : type_(type) {}

  std::size_t Count() const { return labels_.size(); }
  TypeInfo Type() const { return type_; }
  const std::vector<std::string>& Labels() const { return labels_; }
  // The categories as values of the field's type.
  const std::vector<double>& Values() const { return values_; }
  std::optional<std::size_t> Find(double value) const;
  // The number of a category, new if it was not met before.
  std::size_t Number(const std::string& label, Builder& builder, const Element& at);

 private:
  TypeInfo type_{DataType::kText};
  std::vector<std::string> labels_;
  std::vector<double> values_;
  std::unordered_map<double, std::size_t> places_;  // of the values
};

// A field that a model predicts.
struct Target {
  std::string name;
  const Field* field = nullptr;  // its declaration
  Function function = Function::kRegression;
};

// Which results besides the prediction the caller reads.
struct Wants {
  bool probabilities = true;
  bool confidences = true;
  bool entities = true;
};

struct ModelResult {
  Function function = Function::kRegression;
  std::string target;               // the predicted field; empty if the model names none
  const Field* field = nullptr;     // its declaration
  Slot value = kNoSlot;             // the number predicted; else the number of the class or cluster, from 0
  Classes classes;                  // also clusters
  std::vector<Slot> probabilities;  // by class; empty if the model has none
  std::vector<Slot> confidences;    // by class; empty if the model has none
  std::vector<Slot> affinities;     // by cluster; empty if the model has none
  std::vector<Slot> entities;       // winning rule, node or cluster; neighbours by rank: numbers from 0
  std::vector<std::string> entityIds;
  std::vector<Slot> reasons;  // by rank: numbers from 0
  std::vector<std::string> reasonCodes;
  std::map<std::string, std::shared_ptr<const ModelResult>> segments;
  std::vector<std::string> displayLabels;  // of the classes, where they have any
  std::vector<ModelResult> others;         // of the further targets, if the model has several

  // The result of a target; null if there is none.
  ModelResult* Of(std::string_view name);
  const ModelResult* Of(std::string_view name) const { return const_cast<ModelResult*>(this)->Of(name); }
};

// What a model's reader starts from.
struct ModelPlace {
  ModelPlace(Scope& scopeOf, Program& programOf) : scope(scopeOf), program(programOf) {}

  Scope& scope;
  Program& program;
  Function function = Function::kRegression;
  std::string target;  // the first of several
  const Field* field = nullptr;
  Classes classes;
  std::vector<Target> targets;  // of a model that gives several; else none
  Wants wants;
  std::vector<Slot>* reuse = nullptr;  // columns for the result that the models of an ensemble share
  std::size_t reused = 0;

  Builder& Build() const { return scope.Build(); }
  operator Place() const { return {scope, program}; }
  // A column for a part of the result.
  Slot NewResult(const Element& at);
};

// Reads a model element with everything in it. `outside` knows the fields around it; `outer` is the
// place of the model that this one is a part of, if any. `outputs` gets the columns of its Output element.
struct OutputColumn {
  std::string name;
  Operand operand;
  bool isFinal = true;
  std::optional<Error> fault;     // why the model cannot give it; it has no operand then
  std::set<const Field*> fields;  // that it reads
};
struct ReadOptions {
  const ModelPlace* outer = nullptr;
  std::optional<Element> transformations;  // the TransformationDictionary, for the outermost model
  Wants wants;
  std::vector<Slot>* reuse = nullptr;
};
ModelResult ReadModel(const Element& model, Scope& outside, Program& program, const ReadOptions& options,
                      std::vector<OutputColumn>& outputs);

bool IsModel(const Element& element);

// The children that are the model kind's own: those that every kind may have are left out.
std::vector<Element> OwnChildren(const Element& model);

// The declaration of the mining fields in `scope`, with their treatments of outliers, missing and invalid
// values; a nested model, whose fields were treated outside, has only those that it spells out. Returns the
// names of the targets.
std::vector<std::string> ReadMiningSchema(const Element& element, Scope& scope, Scope& outside,
                                          bool isNested);

// The Targets element: adjusts the result of the model. Of the schema's `targets`, those that the model does not
// predict have nothing to be adjusted.
void ApplyTargets(const Element& element, const std::vector<std::string>& targets, ModelPlace& place,
                  ModelResult& result);

// The Output element; its fields are defined in a scope inside. One that cannot be given has a fault, and
// everything else goes on.
std::vector<OutputColumn> ReadOutput(const Element& element, const ModelResult& result, const Place& place);

// Says of a result whose it is.
void Complete(ModelResult& result, const Target& target);

// The results of several targets as one: the first, and the others inside it.
ModelResult Together(std::vector<ModelResult> results);

// The prediction as a value of the target's type: a text for a class of texts.
Operand PredictedValue(const ModelResult& result, const Place& place, const Element& at);

// Sets the value of the result to the class of the greatest of `scores`, the first of equal ones; missing
// where all are missing. One column per class.
Slot AddGreatest(const std::vector<Slot>& scores, Slot out, Program& program);

// Readers of the kinds.
ModelResult ReadRegressionModel(const Element& model, ModelPlace& place);
ModelResult ReadGeneralRegressionModel(const Element& model, ModelPlace& place);
ModelResult ReadTreeModel(const Element& model, ModelPlace& place);
ModelResult ReadNeuralNetwork(const Element& model, ModelPlace& place);
ModelResult ReadSupportVectorMachine(const Element& model, ModelPlace& place);
ModelResult ReadMiningModel(const Element& model, ModelPlace& place);
ModelResult ReadNaiveBayesModel(const Element& model, ModelPlace& place);
ModelResult ReadRuleSetModel(const Element& model, ModelPlace& place);
ModelResult ReadScorecard(const Element& model, ModelPlace& place);
ModelResult ReadClusteringModel(const Element& model, ModelPlace& place);
ModelResult ReadNearestNeighborModel(const Element& model, ModelPlace& place);

}  // namespace brenvolt::pmml
