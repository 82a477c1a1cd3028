// The Output element: what a model gives besides its prediction.
#include <algorithm>
#include <cmath>

#include "host/models/kinds/model.h"

namespace brenvolt::pmml {
namespace {

enum class Feature : std::uint8_t {
  kPredictedValue,
  kPredictedDisplayValue,
  kTransformed,
  kProbability,
  kConfidence,
  kResidual,
  kEntity,
  kAffinity,
  kReasonCode,
  kNone  // one that no model here gives
};

// Whether the feature is about a target, which one of several has to be named for.
bool IsOfTarget(Feature feature) {
  return feature != Feature::kTransformed && feature != Feature::kEntity && feature != Feature::kReasonCode;
}

class OutputReader {
 public:
  OutputReader(const ModelResult& result, const Place& place) : result_(result), place_(place) {}

  OutputColumn Read(const Element& field) {
    field_ = &field;
    OutputColumn column;
    column.name = field.Text("name");
    column.isFinal = field.Flag("isFinalResult", true);
    field.PassOver({"displayName", "optype"});
    if (field.Flag("isMultiValued", false)) field.Fail("an output of several values is not supported");
    const Feature feature = ReadFeature();
    const Builder::Reading reading(place_.Build());
    column.operand = Column(feature, ResultOf(feature));
    if (field.Find("dataType"))
      column.operand = Cast(column.operand, ReadDataType(field, kText), place_, field);
    field.RefuseOtherAttributes();
    RefuseChildren(feature);
    column.fields = reading.Fields();
    return column;
  }

 private:
  Feature ReadFeature() const {
    const auto otherwise = Body() ? Feature::kTransformed : Feature::kPredictedValue;
    return field_->Choice<Feature>("feature",
                                   {{"predictedValue", Feature::kPredictedValue},
                                    {"predictedDisplayValue", Feature::kPredictedDisplayValue},
                                    {"transformedValue", Feature::kTransformed},
                                    {"decision", Feature::kTransformed},
                                    {"probability", Feature::kProbability},
                                    {"confidence", Feature::kConfidence},
                                    {"residual", Feature::kResidual},
                                    {"clusterId", Feature::kEntity},
                                    {"entityId", Feature::kEntity},
                                    {"affinity", Feature::kAffinity},
                                    {"clusterAffinity", Feature::kAffinity},
                                    {"entityAffinity", Feature::kAffinity},
                                    {"reasonCode", Feature::kReasonCode},
                                    {"standardError", Feature::kNone},
                                    {"standardDeviation", Feature::kNone},
                                    {"confidenceIntervalLower", Feature::kNone},
                                    {"confidenceIntervalUpper", Feature::kNone},
                                    {"ruleValue", Feature::kNone},
                                    {"ruleId", Feature::kNone},
                                    {"antecedent", Feature::kNone},
                                    {"consequent", Feature::kNone},
                                    {"rule", Feature::kNone},
                                    {"support", Feature::kNone},
                                    {"lift", Feature::kNone},
                                    {"leverage", Feature::kNone},
                                    {"warning", Feature::kNone},
                                    {"report", Feature::kNone}},
                                   otherwise);
  }

  std::optional<Element> Body() const {
    for (const Element& child : field_->Children()) {
      if (IsExpression(child)) return child;
    }
    return std::nullopt;
  }

  void RefuseChildren(Feature feature) const {
    for (const Element& child : field_->Children()) {
      // Decisions and values describe what the expression gives.
      const bool describes = child.Is("Decisions") || child.Is("Value");
      if (!describes && !(feature == Feature::kTransformed && IsExpression(child))) child.Refuse();
    }
  }

  const ModelResult& ResultOf(Feature feature) const {
    const ModelResult& whole = WholeOrSegment();
    const auto target = field_->Find("targetField");
    if (!target && IsOfTarget(feature) && !whole.others.empty())
      field_->Fail("the model has several targets: targetField must name one of " + TargetsOf(whole));
    if (!target || whole.target.empty()) return whole;
    const ModelResult* result = whole.Of(*target);
    if (result == nullptr)
      field_->Fail("the field " + std::string(*target) + " is not a target of the model");
    return *result;
  }

  const ModelResult& WholeOrSegment() const {
    const auto segment = field_->Find("segmentId");
    if (!segment) return result_;
    const auto found = result_.segments.find(std::string(*segment));
    if (found == result_.segments.end()) field_->Fail("unknown segment " + std::string(*segment));
    return *found->second;
  }

  static std::string TargetsOf(const ModelResult& result) {
    std::string names = result.target;
    for (const ModelResult& other : result.others) names += ", " + other.target;
    return names;
  }

  Operand Column(Feature feature, const ModelResult& result) const {
    switch (feature) {
      case Feature::kPredictedValue:
        return PredictedValue(result, place_, *field_);
      case Feature::kPredictedDisplayValue:
        return DisplayValue(result);
      case Feature::kTransformed: {
        const auto body = Body();
        if (!body) field_->Fail("the output has no expression");
        return Copied(CompileExpression(*body, place_));
      }
      case Feature::kProbability:
        return OfClass(result, result.probabilities, "probabilities");
      case Feature::kConfidence:
        return OfClass(result, result.confidences, "confidences");
      case Feature::kAffinity:
        return OfClass(result, result.affinities, "affinities");
      case Feature::kResidual:
        return Residual(result);
      case Feature::kEntity:
        if (result.entities.empty())
          field_->Fail("the model has no winning rule, node, segment, cluster or neighbour");
        return Ranked(result.entities, result.entityIds);
      case Feature::kReasonCode:
        if (result.reasons.empty()) field_->Fail("the model has no reason codes");
        return Ranked(result.reasons, result.reasonCodes);
      case Feature::kNone:
        break;
    }
    field_->Fail("the feature " + field_->Text("feature") + " is not supported");
  }

  // A column of its own: an output that is not given for a row is made missing in place.
  Operand Copied(Operand operand) const {
    const Slot in = operand.slot;
    operand.slot = place_.Build().NewSlot(*field_);
    operand.literal.reset();
    AddStep(place_.program, [in, out = operand.slot](Frame& frame) {
      std::copy_n(frame.In(in), frame.Rows(), frame.Out(out));
    });
    return operand;
  }

  Operand DisplayValue(const ModelResult& result) const {
    if (result.function == Function::kRegression) return PredictedValue(result, place_, *field_);
    std::vector<std::string> labels = result.classes.Labels();
    for (std::size_t k = 0; k < labels.size() && k < result.displayLabels.size(); ++k) {
      if (!result.displayLabels[k].empty()) labels[k] = result.displayLabels[k];
    }
    return Named(result.value, labels);
  }

  // A column of one class, named by the attribute value, or of the predicted class.
  Operand OfClass(const ModelResult& result, const std::vector<Slot>& columns, const char* what) const {
    if (columns.empty()) field_->Fail(std::string("the model has no ") + what);
    Operand operand;
    if (const auto value = field_->Find("value")) {
      Classes classes = result.classes;
      const std::size_t number = classes.Number(std::string(*value), place_.Build(), *field_);
      if (number >= columns.size()) field_->Fail("the model has no class " + std::string(*value));
      operand.slot = columns[number];
      return operand;
    }
    operand.slot = place_.Build().NewSlot(*field_);
    AddStep(place_.program, [columns, winner = result.value, out = operand.slot](Frame& frame) {
      const double* x = frame.In(winner);
      double* y = frame.Out(out);
      for (std::size_t i = 0; i < frame.Rows(); ++i) {
        const bool hasColumn = x[i] < static_cast<double>(columns.size());
        y[i] = hasColumn ? frame.In(columns[static_cast<std::size_t>(x[i])])[i] : kMissing;
      }
    });
    return operand;
  }

  // What was observed less what is predicted.
  Operand Residual(const ModelResult& result) const {
    if (result.function != Function::kRegression || result.target.empty()) {
      field_->Fail("only a number that is predicted of a target has a residual");
    }
    const Operand observed = place_.scope.Resolve(result.target, *field_);
    Operand operand;
    operand.slot = place_.Build().NewSlot(*field_);
    AddStep(place_.program,
            [a = NumberSlot(observed, place_, *field_), b = result.value, out = operand.slot](Frame& frame) {
              for (std::size_t i = 0; i < frame.Rows(); ++i)
                frame.Out(out)[i] = frame.In(a)[i] - frame.In(b)[i];
            });
    return operand;
  }

  Operand Ranked(const std::vector<Slot>& columns, const std::vector<std::string>& names) const {
    const int rank = field_->FindInteger("rank").value_or(1);
    field_->Choice<int>("rankOrder", {{"descending", 0}}, 0);
    field_->Choice<int>("rankBasis", {{"confidence", 0}}, 0);
    if (rank < 1 || static_cast<std::size_t>(rank) > columns.size()) {
      field_->Fail("expected a rank from 1 to " + std::to_string(columns.size()) + ", got " +
                   std::to_string(rank));
    }
    return Named(columns[static_cast<std::size_t>(rank - 1)], names);
  }

  // The texts of a column of numbers from 0.
  Operand Named(Slot numbers, const std::vector<std::string>& names) const {
    Operand operand;
    operand.type = kText;
    operand.opType = OpType::kCategorical;
    operand.slot = place_.Build().NewSlot(*field_);
    std::vector<double> texts;
    for (const auto& name : names) texts.push_back(place_.Build().Pool().Number(name));
    AddStep(place_.program, [numbers, texts, out = operand.slot](Frame& frame) {
      const double* x = frame.In(numbers);
      double* y = frame.Out(out);
      for (std::size_t i = 0; i < frame.Rows(); ++i) {
        y[i] = std::isnan(x[i]) ? kMissing : texts[static_cast<std::size_t>(x[i])];
      }
    });
    return operand;
  }

  const ModelResult& result_;
  const Place& place_;
  const Element* field_ = nullptr;
};

}  // namespace

std::vector<OutputColumn> ReadOutput(const Element& element, const ModelResult& result, const Place& place) {
  element.RefuseOtherAttributes();
  Scope& scope = place.Build().NewScope(&place.scope, place.program);
  const Place inside{scope, place.program};
  OutputReader reader(result, inside);
  std::vector<OutputColumn> columns;
  for (const Element& field : element.Children()) {
    if (!field.Is("OutputField")) field.Refuse();
    OutputColumn column;
    try {
      column = reader.Read(field);
      scope.Define(column.name, column.operand, column.fields);
    } catch (const Error& fault) {
      column = {field.Text("name"), {}, true, fault, {}};
      scope.DefineFault(column.name, fault);
    }
    columns.push_back(std::move(column));
  }
  return columns;
}

}  // namespace brenvolt::pmml
