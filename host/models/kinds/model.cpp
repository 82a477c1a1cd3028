#include "host/models/kinds/model.h"

#include <algorithm>
#include <cmath>

namespace brenvolt::pmml {
namespace {

using Reader = ModelResult (*)(const Element&, ModelPlace&);
constexpr std::array<std::pair<std::string_view, Reader>, 11> kKinds{{
    {"RegressionModel", ReadRegressionModel},
    {"GeneralRegressionModel", ReadGeneralRegressionModel},
    {"TreeModel", ReadTreeModel},
    {"NeuralNetwork", ReadNeuralNetwork},
    {"SupportVectorMachineModel", ReadSupportVectorMachine},
    {"MiningModel", ReadMiningModel},
    {"NaiveBayesModel", ReadNaiveBayesModel},
    {"RuleSetModel", ReadRuleSetModel},
    {"Scorecard", ReadScorecard},
    {"ClusteringModel", ReadClusteringModel},
    {"NearestNeighborModel", ReadNearestNeighborModel},
}};

// What every kind of model may hold. The last three describe and take no part in scoring.
constexpr std::array<std::string_view, 7> kCommonChildren{
    "MiningSchema", "LocalTransformations", "Targets",          "Output",
    "ModelStats",   "ModelExplanation",     "ModelVerification"};

// The predicted field of a model: its schema's target, or what the model around it predicts.
void SettleTarget(const Element& model, const std::vector<std::string>& targets, const ReadOptions& options,
                  ModelPlace& place) {
  if (targets.size() > 1) model.Fail("the model has several targets; one is supported");
  if (!targets.empty()) {
    place.target = targets.front();
    place.field = place.Build().FindDeclared(place.target);
  } else if (options.outer != nullptr && options.outer->function == place.function) {
    place.target = options.outer->target;
    place.field = options.outer->field;
    place.classes = options.outer->classes;
  }
  if (place.field != nullptr) place.classes = Classes(*place.field);
}

}  // namespace

std::optional<std::size_t> Classes::Find(double value) const {
  const auto found = std::ranges::find(values_, value);
  return found == values_.end() ? std::nullopt
                                : std::optional(static_cast<std::size_t>(found - values_.begin()));
}

std::size_t Classes::Number(const std::string& label, Builder& builder, const Element& at) {
  const double value = builder.ValueOf(label, type_, at);
  if (const auto known = Find(value)) return *known;
  labels_.push_back(label);
  values_.push_back(value);
  return labels_.size() - 1;
}

Slot ModelPlace::NewResult(const Element& at) {
  if (reuse == nullptr) return Build().NewSlot(at);
  if (reused == reuse->size()) reuse->push_back(Build().NewSlot(at));
  return (*reuse)[reused++];
}

bool IsModel(const Element& element) {
  return std::ranges::any_of(kKinds, [&](const auto& kind) { return element.Is(kind.first); });
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
                                                           {"clustering", Function::kClustering}});
  const std::vector<std::string> targets =
      ReadMiningSchema(model.Child("MiningSchema"), place.scope, outside, options.outer != nullptr);
  if (options.transformations) DeclareTransformations(*options.transformations, place.scope);
  if (const auto local = model.FindChild("LocalTransformations")) DeclareTransformations(*local, place.scope);
  SettleTarget(model, targets, options, place);
  const auto output = model.FindChild("Output");
  place.wants = output ? Wants() : options.wants;
  place.reuse = options.reuse;
  const auto kind = std::ranges::find_if(kKinds, [&](const auto& entry) { return model.Is(entry.first); });
  if (kind == kKinds.end()) model.Refuse();
  ModelResult result = kind->second(model, place);
  model.RefuseOtherAttributes();
  result.function = place.function;
  result.target = place.target;
  result.field = place.field;
  if (place.field != nullptr) result.displayLabels = place.field->displayLabels;
  if (const auto targets = model.FindChild("Targets")) ApplyTargets(*targets, place, result);
  if (options.outer == nullptr) builder.EndPrediction();
  if (output) outputs = ReadOutput(*output, result, place);
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
