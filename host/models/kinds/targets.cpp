// The Targets element: what becomes of a prediction before it leaves the model.
#include <algorithm>
#include <cmath>

#include "host/models/kinds/model.h"

namespace brenvolt::pmml {
namespace {

enum class Cast : std::uint8_t { kNone, kRound, kCeiling, kFloor };

// Bounds, scaling and rounding of a number, in this order.
struct Adjustment {
  double low = -std::numeric_limits<double>::infinity();
  double high = std::numeric_limits<double>::infinity();
  double factor = 1;
  double constant = 0;
  Cast cast = Cast::kNone;
  double otherwise = kMissing;

  double At(double x) const {
    if (std::isnan(x)) return otherwise;
    const double scaled = std::fmin(std::fmax(x, low), high) * factor + constant;
    switch (cast) {
      case Cast::kNone:
        return scaled;
      case Cast::kRound:
        return std::floor(scaled + 0.5);
      case Cast::kCeiling:
        return std::ceil(scaled);
      case Cast::kFloor:
        return std::floor(scaled);
    }
    return scaled;
  }
};

struct TargetValue {
  std::optional<std::string> value;
  std::string displayValue;
  std::optional<double> prior;
};

void AdjustNumber(const Element& at, const Adjustment& adjustment, ModelPlace& place, ModelResult& result) {
  const Slot in = result.value;
  result.value = place.Build().NewSlot(at);
  AddStep(place.program, [in, out = result.value, adjustment](Frame& frame) {
    const double* x = frame.In(in);
    double* y = frame.Out(out);
    for (std::size_t i = 0; i < frame.Rows(); ++i) y[i] = adjustment.At(x[i]);
  });
}

// Rows without a prediction get the class of the greatest prior probability.
void UsePriors(const Element& at, const std::vector<double>& priors, ModelPlace& place, ModelResult& result) {
  std::size_t best = 0;
  for (std::size_t k = 1; k < priors.size(); ++k) best = priors[k] > priors[best] ? k : best;
  const Slot in = result.value;
  result.value = place.Build().NewSlot(at);
  AddStep(place.program, [in, out = result.value, best](Frame& frame) {
    const double* x = frame.In(in);
    double* y = frame.Out(out);
    for (std::size_t i = 0; i < frame.Rows(); ++i) y[i] = std::isnan(x[i]) ? static_cast<double>(best) : x[i];
  });
  // Columns of its own: the model's may be constants, and lack classes that only the priors know.
  if (result.probabilities.empty()) return;
  result.probabilities.resize(priors.size(), place.Build().Constant(0));
  for (std::size_t k = 0; k < priors.size(); ++k) {
    const Slot own = result.probabilities[k];
    result.probabilities[k] = place.Build().NewSlot(at);
    AddStep(place.program, [in, own, out = result.probabilities[k], prior = priors[k]](Frame& frame) {
      const double* x = frame.In(in);
      const double* p = frame.In(own);
      double* y = frame.Out(out);
      for (std::size_t i = 0; i < frame.Rows(); ++i) y[i] = std::isnan(x[i]) ? prior : p[i];
    });
  }
}

TargetValue ReadTargetValue(const Element& element, Adjustment& adjustment) {
  TargetValue value;
  if (const auto text = element.Find("value")) value.value = std::string(*text);
  value.displayValue = element.Text("displayValue", "");
  value.prior = element.FindReal("priorProbability");
  adjustment.otherwise = element.Real("defaultValue", adjustment.otherwise);
  element.PassOver({"rawDataValue"});
  for (const Element& child : element.Children()) {
    if (!child.Is("Partition")) child.Refuse();  // a Partition describes the data of training
  }
  element.RefuseOtherAttributes();
  return value;
}

void ApplyTarget(const Element& element, ModelPlace& place, ModelResult& result) {
  Adjustment adjustment;
  adjustment.low = element.Real("min", adjustment.low);
  adjustment.high = element.Real("max", adjustment.high);
  adjustment.factor = element.Real("rescaleFactor", 1);
  adjustment.constant = element.Real("rescaleConstant", 0);
  adjustment.cast = element.Choice<Cast>(
      "castInteger", {{"round", Cast::kRound}, {"ceiling", Cast::kCeiling}, {"floor", Cast::kFloor}},
      Cast::kNone);
  ReadOpType(element, OpType::kContinuous);
  element.RefuseOtherAttributes();
  std::vector<TargetValue> values;
  for (const Element& child : element.Children()) {
    if (!child.Is("TargetValue")) child.Refuse();
    values.push_back(ReadTargetValue(child, adjustment));
  }
  if (result.function == Function::kRegression) {
    AdjustNumber(element, adjustment, place, result);
    return;
  }
  std::vector<double> priors(result.classes.Count());
  bool anyPrior = false;
  for (const TargetValue& value : values) {
    if (!value.value) continue;
    const std::size_t number = result.classes.Number(*value.value, place.Build(), element);
    if (!value.displayValue.empty()) {
      result.displayLabels.resize(std::max(result.displayLabels.size(), number + 1));
      result.displayLabels[number] = value.displayValue;
    }
    priors.resize(result.classes.Count());
    priors[number] = value.prior.value_or(0);
    anyPrior = anyPrior || value.prior;
  }
  if (anyPrior) UsePriors(element, priors, place, result);
}

}  // namespace

void ApplyTargets(const Element& element, const std::vector<std::string>& targets, ModelPlace& place,
                  ModelResult& result) {
  element.RefuseOtherAttributes();
  for (const Element& target : element.Children()) {
    if (!target.Is("Target")) target.Refuse();
    const std::string field = target.Text("field", place.target);
    ModelResult* adjusted = result.Of(field);
    if (adjusted == nullptr && result.target.empty()) adjusted = &result;
    if (adjusted == nullptr && std::ranges::find(targets, field) != targets.end()) continue;
    if (adjusted == nullptr) target.Fail("the field " + field + " is not a target of the model");
    ApplyTarget(target, place, *adjusted);
  }
}

}  // namespace brenvolt::pmml
