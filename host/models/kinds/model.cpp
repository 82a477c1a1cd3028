#include "host/models/kinds/model.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace brenvolt::pmml {
namespace {

struct Kind {
  std::string_view name;
  ModelResult (*read)(const Element&, ModelPlace&);
  bool takesSeveralTargets = false;
};
constexpr std::array<Kind, 11> kKinds{{
    {"RegressionModel", ReadRegressionModel},
    {"GeneralRegressionModel", ReadGeneralRegressionModel},
    {"TreeModel", ReadTreeModel},
    {"NeuralNetwork", ReadNeuralNetwork, true},
    {"SupportVectorMachineModel", ReadSupportVectorMachine},
    {"MiningModel", ReadMiningModel, true},
    {"NaiveBayesModel", ReadNaiveBayesModel},
    {"RuleSetModel", ReadRuleSetModel},
    {"Scorecard", ReadScorecard},
    {"ClusteringModel", ReadClusteringModel},
    {"NearestNeighborModel", ReadNearestNeighborModel, true},
}};

// What every kind of model may hold. The last three describe and take no part in scoring.
constexpr std::array<std::string_view, 7> kCommonChildren{
    "MiningSchema", "LocalTransformations", "Targets",          "Output",
    "ModelStats",   "ModelExplanation",     "ModelVerification"};

// Which of several targets a model predicts that can predict one alone, if it says so.
std::optional<std::string> NamedTarget(const Element& model) {
  for (const char* attribute : {"targetFieldName", "targetVariableName"}) {
    if (const auto name = model.Find(attribute)) return std::string(*name);
  }
  const auto bayesOutput = model.FindChild("BayesOutput");
  return bayesOutput ? std::optional(bayesOutput->Text("fieldName")) : std::nullopt;
}

std::string PredictedAlone(const Element& model, const std::vector<std::string>& targets) {
  const auto named = NamedTarget(model);
  if (named && std::ranges::find(targets, *named) != targets.end()) return *named;
  std::string list;
  for (const std::string& name : targets) list += (list.empty() ? "" : ", ") + name;
  model.Fail("the model has the targets " + list + " and does not say which of them it predicts");
}

// What is predicted of a target.
Function FunctionFor(const Field* field, Function ofModel) {
  if (ofModel != Function::kMixed) return ofModel;
  const bool isNumber = field == nullptr || field->opType == OpType::kContinuous;
  return isNumber ? Function::kRegression : Function::kClassification;
}

// The predicted fields of a model: its schema's targets, or what the model around it predicts.
void SettleTargets(const Element& model, const std::vector<std::string>& targets, const ReadOptions& options,
                   const Kind& kind, ModelPlace& place) {
  const bool isPart = options.outer != nullptr && options.outer->targets.empty();
  const bool givesEach = targets.size() > 1 && kind.takesSeveralTargets;
  for (const std::string& name : targets) {
    const Field* field = place.Build().FindDeclared(name);
    if (givesEach) place.targets.push_back({name, field, FunctionFor(field, place.function)});
  }
  if (!targets.empty()) {
    place.target = givesEach || targets.size() == 1 ? targets.front() : PredictedAlone(model, targets);
    place.field = place.Build().FindDeclared(place.target);
  } else if (isPart && options.outer->function == place.function) {
    place.target = options.outer->target;
    place.field = options.outer->field;
    place.classes = options.outer->classes;
  }
  if (place.function == Function::kMixed && !givesEach) {
    if (!kind.takesSeveralTargets) model.Fail("the function mixed needs a model of several targets");
    place.function = FunctionFor(place.field, place.function);
  }
  if (place.field != nullptr) place.classes = Classes(*place.field);
}

// Targets of the schema of which the model gives nothing.
void AddUnpredictedTargets(const Element& model, const std::vector<std::string>& targets,
                           const ModelResult& result, std::vector<OutputColumn>& outputs) {
  for (const std::string& name : targets) {
    if (result.Of(name) != nullptr) continue;
    outputs.push_back(
        {name, {}, true, Error("nothing in the model predicts this target", model.Where()), {}});
  }
}

}  // namespace

Classes::Classes(const Field& field) : type_(field.type), labels_(field.labels), values_(field.domain.valid) {
  for (std::size_t k = 0; k < values_.size(); ++k) places_.emplace(values_[k], k);
}

std::optional<std::size_t> Classes::Find(double value) const {
  const auto found = places_.find(value);
  return found == places_.end() ? std::nullopt : std::optional(found->second);
}

std::size_t Classes::Number(const std::string& label, Builder& builder, const Element& at) {
  const double value = builder.ValueOf(label, type_, at);
  if (const auto known = Find(value)) return *known;
  labels_.push_back(label);
  values_.push_back(value);
  places_.emplace(value, labels_.size() - 1);
  return labels_.size() - 1;
}

ModelResult* ModelResult::Of(std::string_view name) {
  if (target == name) return this;
  const auto found = std::ranges::find(others, name, &ModelResult::target);
  return found == others.end() ? nullptr : &*found;
}

void Complete(ModelResult& result, const Target& target) {
  result.function = target.function;
  result.target = target.name;
  result.field = target.field;
  if (target.field != nullptr) result.displayLabels = target.field->displayLabels;
}

ModelResult Together(std::vector<ModelResult> results) {
  ModelResult first = std::move(results.front());
  first.others.assign(std::move_iterator(results.begin() + 1), std::move_iterator(results.end()));
  return first;
}

Slot ModelPlace::NewResult(const Element& at) {
  if (reuse == nullptr) return Build().NewSlot(at);
  if (reused == reuse->size()) reuse->push_back(Build().NewSlot(at));
  return (*reuse)[reused++];
}

bool IsModel(const Element& element) {
  return std::ranges::any_of(kKinds, [&](const auto& kind) { return element.Is(kind.name); });
}

std::vector<Element> OwnChildren(const Element& model) {
  std::vector<Element> own;
  for (const Element& child : model.Children()) {
    if (std::ranges::find(kCommonChildren, child.Name()) == kCommonChildren.end()) own.push_back(child);
  }
  return own;
}

ModelResult ReadModel(const Element& model, Scope& outside, Program& program, const ReadOptions& options,
                      std::vector<OutputColumn>& outputs) {
  Builder& builder = outside.Build();
  const Builder::Depth depth(builder, model);
  ModelPlace place(builder.NewScope(&outside, program), program);
  model.PassOver({"modelName", "algorithmName"});
  if (!model.Flag("isScorable", true)) model.Fail("the model declares that it is not meant for scoring");
  place.function = model.Choice<Function>("functionName", {{"regression", Function::kRegression},
                                                           {"classification", Function::kClassification},
                                                           {"clustering", Function::kClustering},
                                                           {"mixed", Function::kMixed}});
  const std::vector<std::string> targets =
      ReadMiningSchema(model.Child("MiningSchema"), place.scope, outside, options.outer != nullptr);
  if (options.transformations) DeclareTransformations(*options.transformations, place.scope);
  if (const auto local = model.FindChild("LocalTransformations")) DeclareTransformations(*local, place.scope);
  const auto kind = std::ranges::find_if(kKinds, [&](const Kind& entry) { return model.Is(entry.name); });
  if (kind == kKinds.end()) model.Refuse();
  SettleTargets(model, targets, options, *kind, place);
  const auto output = model.FindChild("Output");
  place.wants = output ? Wants() : options.wants;
  place.reuse = options.reuse;
  ModelResult result = kind->read(model, place);
  model.RefuseOtherAttributes();
  if (place.targets.empty()) Complete(result, {place.target, place.field, place.function});
  if (const auto adjustments = model.FindChild("Targets")) ApplyTargets(*adjustments, targets, place, result);
  if (options.outer == nullptr) builder.EndPrediction();
  if (output) outputs = ReadOutput(*output, result, place);
  if (options.outer == nullptr) AddUnpredictedTargets(model, targets, result, outputs);
  return result;
}

Operand PredictedValue(const ModelResult& result, const Place& place, const Element& at) {
  Operand operand;
  operand.slot = result.value;
  if (result.function == Function::kRegression) {
    operand.field = result.field;
    return operand;
  }
  operand.type = result.classes.Type();
  operand.opType = OpType::kCategorical;
  operand.slot = place.Build().NewSlot(at);
  AddStep(place.program,
          [in = result.value, out = operand.slot, values = result.classes.Values()](Frame& frame) {
            const double* x = frame.In(in);
            double* y = frame.Out(out);
            for (std::size_t i = 0; i < frame.Rows(); ++i) {
              y[i] = std::isnan(x[i]) ? kMissing : values[static_cast<std::size_t>(x[i])];
            }
          });
  return operand;
}

Slot AddGreatest(const std::vector<Slot>& scores, Slot out, Program& program) {
  AddStep(program, [scores, out](Frame& frame) {
    std::array<double, kBlockRows> best;
    best.fill(kMissing);
    double* y = frame.Out(out);
    std::fill_n(y, frame.Rows(), kMissing);
    for (std::size_t k = 0; k < scores.size(); ++k) {
      const double* x = frame.In(scores[k]);
      for (std::size_t i = 0; i < frame.Rows(); ++i) {
        const bool isBetter = x[i] > best[i] || (std::isnan(best[i]) && !std::isnan(x[i]));
        best[i] = isBetter ? x[i] : best[i];
        y[i] = isBetter ? static_cast<double>(k) : y[i];
      }
    }
  });
  return out;
}

}  // namespace brenvolt::pmml
