// NeuralNetwork: layers of neurons over derived inputs.
#include <algorithm>
#include <cmath>
#include <map>
#include <numbers>

#include "host/models/kinds/class_scores.h"
#include "host/models/kinds/link.h"
#include "host/models/kinds/model.h"

namespace brenvolt::pmml {
namespace {

enum class Activation : std::uint8_t {
  kThreshold,
  kLogistic,
  kTanh,
  kIdentity,
  kExponential,
  kReciprocal,
  kSquare,
  kGauss,
  kSine,
  kCosine,
  kElliott,
  kArctan,
  kRectifier,
  kRadialBasis
};
enum class Norm : std::uint8_t { kNone, kSimpleMax, kSoftmax };

double Activated(Activation activation, double z, double threshold) {
  switch (activation) {
    case Activation::kThreshold:
      return z > threshold ? 1 : 0;
    case Activation::kLogistic:
      return InverseLogit(z);
    case Activation::kTanh:
      return std::tanh(z);
    case Activation::kExponential:
      return std::exp(z);
    case Activation::kReciprocal:
      return 1 / z;
    case Activation::kSquare:
      return z * z;
    case Activation::kGauss:
      return std::exp(-z * z);
    case Activation::kSine:
      return std::sin(z);
    case Activation::kCosine:
      return std::cos(z);
    case Activation::kElliott:
      return z / (1 + std::fabs(z));
    case Activation::kArctan:
      return 2 * std::atan(z) / std::numbers::pi;
    case Activation::kRectifier:
      return std::fmax(0, z);
    default:
      return z;
  }
}

struct Connection {
  Slot from;
  double weight;
};

struct Neuron {
  Slot out = kNoSlot;
  double bias = 0;
  double width = 0;
  double altitude = 1;
  std::vector<Connection> connections;
};

struct Layer {
  Activation activation = Activation::kLogistic;
  double threshold = 0;
  Norm norm = Norm::kNone;
  std::vector<Neuron> neurons;
};

// exp(f ln(altitude) - sum (w - x)^2 / (2 width^2)), f the number of connections.
void FillRadial(const Neuron& neuron, Frame& frame) {
  double* y = frame.Out(neuron.out);
  std::fill_n(y, frame.Rows(), 0.0);
  for (const Connection& connection : neuron.connections) {
    const double* x = frame.In(connection.from);
    for (std::size_t i = 0; i < frame.Rows(); ++i) {
      y[i] += (connection.weight - x[i]) * (connection.weight - x[i]);
    }
  }
  const double shift = static_cast<double>(neuron.connections.size()) * std::log(neuron.altitude);
  for (std::size_t i = 0; i < frame.Rows(); ++i) {
    y[i] = std::exp(shift - y[i] / (2 * neuron.width * neuron.width));
  }
}

void FillNeuron(const Layer& layer, const Neuron& neuron, Frame& frame) {
  if (layer.activation == Activation::kRadialBasis) return FillRadial(neuron, frame);
  double* y = frame.Out(neuron.out);
  std::fill_n(y, frame.Rows(), neuron.bias);
  for (const Connection& connection : neuron.connections) {
    const double* x = frame.In(connection.from);
    for (std::size_t i = 0; i < frame.Rows(); ++i) y[i] += connection.weight * x[i];
  }
  for (std::size_t i = 0; i < frame.Rows(); ++i) {
    y[i] = std::isnan(y[i]) ? kMissing : Activated(layer.activation, y[i], layer.threshold);
  }
}

Norm ReadNorm(const Element& element, Norm otherwise) {
  return element.Choice<Norm>(
      "normalizationMethod",
      {{"none", Norm::kNone}, {"simplemax", Norm::kSimpleMax}, {"softmax", Norm::kSoftmax}}, otherwise);
}

Activation ReadActivation(const Element& element) {
  return element.Choice<Activation>("activationFunction", {{"threshold", Activation::kThreshold},
                                                           {"logistic", Activation::kLogistic},
                                                           {"tanh", Activation::kTanh},
                                                           {"identity", Activation::kIdentity},
                                                           {"exponential", Activation::kExponential},
                                                           {"reciprocal", Activation::kReciprocal},
                                                           {"square", Activation::kSquare},
                                                           {"Gauss", Activation::kGauss},
                                                           {"sine", Activation::kSine},
                                                           {"cosine", Activation::kCosine},
                                                           {"Elliott", Activation::kElliott},
                                                           {"arctan", Activation::kArctan},
                                                           {"rectifier", Activation::kRectifier},
                                                           {"radialBasis", Activation::kRadialBasis}});
}

// What becomes of one target.
struct Predicted {
  ModelResult result;
  std::map<std::size_t, std::pair<Slot, std::string>> neurons;  // by class, with their numbers
};

class NetworkReader {
 public:
  NetworkReader(const Element& model, ModelPlace& place) : model_(model), place_(place) {}

  ModelResult Read() {
    activation_ = ReadActivation(model_);
    norm_ = ReadNorm(model_, Norm::kNone);
    threshold_ = model_.Real("threshold", 0);
    width_ = model_.FindReal("width");
    altitude_ = model_.Real("altitude", 1);
    model_.PassOver({"numberOfLayers"});
    std::optional<Element> outputs;
    for (const Element& child : OwnChildren(model_)) {
      if (child.Is("NeuralInputs")) {
        ReadInputs(child);
      } else if (child.Is("NeuralLayer")) {
        ReadLayer(child);
      } else if (child.Is("NeuralOutputs") && !outputs) {
        outputs = child;
      } else {
        child.Refuse();
      }
    }
    if (!outputs) model_.Fail("the network has no outputs");
    return ReadOutputs(*outputs);
  }

 private:
  void Name(const Element& element, Slot slot) {
    const std::string id = element.Text("id");
    if (!neurons_.emplace(id, slot).second) element.Fail("two neurons have the number " + id);
  }

  void ReadInputs(const Element& inputs) {
    inputs.PassOver({"numberOfInputs"});
    inputs.RefuseOtherAttributes();
    for (const Element& input : inputs.Children()) {
      if (!input.Is("NeuralInput")) input.Refuse();
      const Element field = input.OnlyChild();
      if (!field.Is("DerivedField")) field.Refuse();
      Name(input, NumberSlot(CompileDerivedField(field, place_), place_, field));
      input.RefuseOtherAttributes();
    }
  }

  void ReadLayer(const Element& element) {
    Layer layer;
    layer.activation = element.Find("activationFunction") ? ReadActivation(element) : activation_;
    layer.norm = ReadNorm(element, norm_);
    layer.threshold = element.Real("threshold", threshold_);
    const auto width = element.Find("width") ? element.FindReal("width") : width_;
    const double altitude = element.Real("altitude", altitude_);
    element.PassOver({"numberOfNeurons"});
    element.RefuseOtherAttributes();
    for (const Element& child : element.Children()) {
      if (!child.Is("Neuron")) child.Refuse();
      layer.neurons.push_back(ReadNeuron(child, width, altitude));
      const bool isRadial = layer.activation == Activation::kRadialBasis;
      if (isRadial && !width && !child.Find("width")) child.Fail("the neuron has no width");
    }
    std::vector<Slot> slots;
    for (const Neuron& neuron : layer.neurons) slots.push_back(neuron.out);
    AddStep(place_.program, [layer = std::move(layer), slots](Frame& frame) {
      for (const Neuron& neuron : layer.neurons) FillNeuron(layer, neuron, frame);
      if (layer.norm == Norm::kSimpleMax) NormaliseSum(slots, frame);
      if (layer.norm == Norm::kSoftmax) NormaliseSoftmax(slots, frame);
    });
  }

  Neuron ReadNeuron(const Element& element, std::optional<double> width, double altitude) {
    Neuron neuron;
    neuron.bias = element.Real("bias", 0);
    neuron.width = element.Real("width", width.value_or(0));
    neuron.altitude = element.Real("altitude", altitude);
    neuron.out = place_.Build().NewSlot(element);
    for (const Element& child : element.Children()) {
      if (!child.Is("Con")) child.Refuse();
      const auto from = neurons_.find(child.Text("from"));
      if (from == neurons_.end())
        child.Fail("no neuron " + child.Text("from") + " is defined before this one");
      neuron.connections.push_back({from->second, child.Real("weight")});
      child.RefuseAnythingElse();
    }
    Name(element, neuron.out);
    element.RefuseOtherAttributes();
    return neuron;
  }

  // The inverse of the normalisation that the training applied to the target.
  static Slot Denormalised(const Element& expression, Slot slot, ModelPlace& place) {
    if (expression.Is("FieldRef")) {
      expression.PassOver({"field"});
      expression.RefuseAnythingElse();
      return slot;
    }
    if (!expression.Is("NormContinuous")) expression.Refuse();
    expression.PassOver({"field", "outliers"});
    expression.RefuseOtherAttributes();
    std::vector<std::pair<double, double>> points;
    for (const Element& point : expression.Children()) {
      if (!point.Is("LinearNorm")) point.Refuse();
      points.emplace_back(point.Real("norm"), point.Real("orig"));
      point.RefuseAnythingElse();
    }
    if (points.size() < 2) expression.Fail("NormContinuous needs at least two points");
    if (points.front().first > points.back().first) std::ranges::reverse(points);
    const bool ascends = std::ranges::adjacent_find(points, [](const auto& a, const auto& b) {
                           return a.first >= b.first;
                         }) == points.end();
    if (!ascends) expression.Fail("the points of the normalisation cannot be inverted");
    const Slot out = place.NewResult(expression);
    AddStep(place.program, [points, slot, out](Frame& frame) {
      const double* x = frame.In(slot);
      double* y = frame.Out(out);
      for (std::size_t i = 0; i < frame.Rows(); ++i) {
        std::size_t k = 1;
        while (k + 1 < points.size() && x[i] > points[k].first) ++k;
        const auto& [from, low] = points[k - 1];
        const auto& [to, high] = points[k];
        y[i] = low + (x[i] - from) / (to - from) * (high - low);
      }
    });
    return out;
  }

  // The expression of an output's field; a reference to a local field of the target means that field's.
  Element ExpressionOf(const Element& output) const {
    const Element field = output.OnlyChild();
    if (!field.Is("DerivedField")) field.Refuse();
    field.PassOver({"name", "displayName", "optype", "dataType"});
    field.RefuseOtherAttributes();
    Element expression = field.OnlyChild();
    const auto local = model_.FindChild("LocalTransformations");
    if (!expression.Is("FieldRef") || !local) return expression;
    for (const Element& derived : local->Children()) {
      if (derived.Is("DerivedField") && derived.Text("name") == expression.Text("field"))
        return derived.OnlyChild();
    }
    return expression;
  }

  ModelResult ReadOutputs(const Element& outputs) {
    outputs.PassOver({"numberOfOutputs"});
    outputs.RefuseOtherAttributes();
    const std::vector<Target> one{{place_.target, place_.field, place_.function}};
    for (const Target& target : place_.targets.empty() ? one : place_.targets) {
      Predicted& predicted = predicted_.emplace_back();
      predicted.result.classes =
          place_.targets.empty() || target.field == nullptr ? place_.classes : Classes(*target.field);
      Complete(predicted.result, target);
    }
    for (const Element& output : outputs.Children()) {
      if (!output.Is("NeuralOutput")) output.Refuse();
      ReadOutput(output);
    }
    std::vector<ModelResult> results;
    for (Predicted& predicted : predicted_) {
      if (predicted.result.value == kNoSlot && predicted.neurons.empty()) continue;
      if (!predicted.neurons.empty()) Classify(outputs, predicted);
      results.push_back(std::move(predicted.result));
    }
    if (results.empty()) outputs.Fail("the network has no outputs");
    return Together(std::move(results));
  }

  void ReadOutput(const Element& output) {
    const auto neuron = neurons_.find(output.Text("outputNeuron"));
    if (neuron == neurons_.end()) output.Fail("unknown neuron " + output.Text("outputNeuron"));
    output.RefuseOtherAttributes();
    const Element expression = ExpressionOf(output);
    Predicted& predicted = PredictedBy(expression);
    ModelResult& result = predicted.result;
    if (result.function == Function::kRegression) {
      if (result.value != kNoSlot) output.Fail("the network has several outputs for one target");
      result.value = Denormalised(expression, neuron->second, place_);
      result.entityIds = {neuron->first};
      AddOnlyEntity(output, result);
      return;
    }
    if (!expression.Is("NormDiscrete")) expression.Refuse();
    expression.PassOver({"field", "method", "mapMissingTo"});
    const std::size_t number = result.classes.Number(expression.Text("value"), place_.Build(), expression);
    predicted.neurons[number] = {neuron->second, neuron->first};
    expression.RefuseAnythingElse();
  }

  // The one target, or that of several which the expression of an output names.
  Predicted& PredictedBy(const Element& expression) {
    if (predicted_.size() == 1) return predicted_.front();
    const std::string field = expression.Text("field");
    const auto found = std::ranges::find_if(
        predicted_, [&](const Predicted& predicted) { return predicted.result.target == field; });
    if (found == predicted_.end()) expression.Fail("the field " + field + " is not a target of the model");
    return *found;
  }

  void Classify(const Element& at, Predicted& predicted) {
    ModelResult& result = predicted.result;
    result.probabilities.assign(result.classes.Count(), place_.Build().Constant(kMissing));
    result.entityIds.assign(result.classes.Count(), "");
    for (const auto& [number, neuron] : predicted.neurons) {
      result.probabilities[number] = neuron.first;
      result.entityIds[number] = neuron.second;
    }
    result.value = AddGreatest(result.probabilities, place_.NewResult(at), place_.program);
    result.confidences = result.probabilities;
    // The winning neuron is that of the class.
    result.entities = {result.value};
  }

  // The one neuron of a number's output wins wherever there is a prediction.
  void AddOnlyEntity(const Element& at, ModelResult& result) {
    if (!place_.wants.entities) return;
    result.entities = {place_.Build().NewSlot(at)};
    AddStep(place_.program, [in = result.value, out = result.entities.front()](Frame& frame) {
      const double* x = frame.In(in);
      for (std::size_t i = 0; i < frame.Rows(); ++i) frame.Out(out)[i] = std::isnan(x[i]) ? kMissing : 0;
    });
  }

  const Element& model_;
  ModelPlace& place_;
  std::vector<Predicted> predicted_;  // by target
  Activation activation_ = Activation::kLogistic;
  Norm norm_ = Norm::kNone;
  double threshold_ = 0;
  std::optional<double> width_;
  double altitude_ = 1;
  std::map<std::string, Slot> neurons_;
};

}  // namespace

ModelResult ReadNeuralNetwork(const Element& model, ModelPlace& place) {
  return NetworkReader(model, place).Read();
}

}  // namespace brenvolt::pmml
