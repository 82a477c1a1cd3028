// Mining schemas: the fields that a model takes, and what becomes of their outliers, missing and invalid
// values.
#include <algorithm>
#include <cmath>

#include "host/models/kinds/model.h"

namespace brenvolt::pmml {
namespace {

enum class Invalid : std::uint8_t { kRefuse, kAsIs, kMissing, kValue };
enum class Outliers : std::uint8_t { kAsIs, kMissing, kExtreme };

struct Treatment {
  Invalid invalid = Invalid::kRefuse;
  double invalidReplacement = kMissing;
  bool refusesMissing = false;
  double missingReplacement = kMissing;
  Outliers outliers = Outliers::kAsIs;
  double low = -std::numeric_limits<double>::infinity();
  double high = std::numeric_limits<double>::infinity();

  bool DoesNothing(const Domain& domain) const {
    return (invalid == Invalid::kAsIs || !domain.Restricts()) && domain.missing.empty() && !refusesMissing &&
           std::isnan(missingReplacement) && outliers == Outliers::kAsIs;
  }
};

class Treat final : public Step {
 public:
  Treat(Slot in, Slot out, const Field& field, const Domain& domain, const Treatment& treatment)
      : in_(in), out_(out), field_(field), domain_(domain), treatment_(treatment) {}

  void Run(Frame& frame) const override {
    const double* x = frame.In(in_);
    double* y = frame.Out(out_);
    if (IsPlain(x, frame.Rows())) {
      std::copy_n(x, frame.Rows(), y);
      return;
    }
    for (std::size_t i = 0; i < frame.Rows(); ++i) y[i] = Value(frame, i, x[i]);
  }

 private:
  // Whether the field has one interval and nothing else, and all values lie in it: the common case.
  bool IsPlain(const double* x, std::size_t rows) const {
    const bool isSimple = domain_.valid.empty() && domain_.invalid.empty() && domain_.missing.empty() &&
                          domain_.intervals.size() <= 1 && treatment_.outliers == Outliers::kAsIs;
    if (!isSimple) return false;
    const Interval interval = domain_.intervals.empty() ? Interval() : domain_.intervals.front();
    bool inside = true;
    for (std::size_t i = 0; i < rows; ++i) inside = inside & (x[i] > interval.low) & (x[i] < interval.high);
    return inside;
  }

  double Value(Frame& frame, std::size_t row, double x) const {
    bool isMissing = std::isnan(x) || domain_.IsMissing(x);
    if (!isMissing && !domain_.IsValid(x)) {
      if (treatment_.invalid == Invalid::kRefuse) {
        frame.RefuseRow(row, field_, x);
        return kMissing;
      }
      if (treatment_.invalid == Invalid::kValue) return treatment_.invalidReplacement;
      isMissing = treatment_.invalid == Invalid::kMissing;
      if (isMissing) frame.NoteLostValue(row, field_, x);
    }
    if (!isMissing && treatment_.outliers != Outliers::kAsIs && (x < treatment_.low || x > treatment_.high)) {
      if (treatment_.outliers == Outliers::kExtreme)
        return x < treatment_.low ? treatment_.low : treatment_.high;
      frame.NoteLostValue(row, field_, x);
      isMissing = true;
    }
    if (!isMissing) return x;
    if (treatment_.refusesMissing) frame.RefuseRow(row, field_, kMissing);
    return treatment_.missingReplacement;
  }

  Slot in_;
  Slot out_;
  const Field& field_;
  Domain domain_;
  Treatment treatment_;
};

Treatment ReadTreatment(const Element& element, TypeInfo type, bool isNested, Builder& builder) {
  Treatment treatment;
  treatment.invalid = element.Choice<Invalid>("invalidValueTreatment",
                                              {{"returnInvalid", Invalid::kRefuse},
                                               {"asIs", Invalid::kAsIs},
                                               {"asMissing", Invalid::kMissing},
                                               {"asValue", Invalid::kValue}},
                                              isNested ? Invalid::kAsIs : Invalid::kRefuse);
  if (const auto value = element.Find("invalidValueReplacement")) {
    treatment.invalidReplacement = builder.ValueOf(*value, type, element);
  } else if (treatment.invalid == Invalid::kValue) {
    element.Fail("invalidValueTreatment asValue needs an invalidValueReplacement");
  }
  treatment.refusesMissing = element.Choice<bool>("missingValueTreatment",
                                                  {{"asIs", false},
                                                   {"asMean", false},
                                                   {"asMode", false},
                                                   {"asMedian", false},
                                                   {"asValue", false},
                                                   {"returnInvalid", true}},
                                                  false);
  if (const auto value = element.Find("missingValueReplacement")) {
    treatment.missingReplacement = builder.ValueOf(*value, type, element);
  }
  treatment.outliers = element.Choice<Outliers>("outliers",
                                                {{"asIs", Outliers::kAsIs},
                                                 {"asMissingValues", Outliers::kMissing},
                                                 {"asExtremeValues", Outliers::kExtreme}},
                                                Outliers::kAsIs);
  treatment.low = element.Real("lowValue", treatment.low);
  treatment.high = element.Real("highValue", treatment.high);
  if (treatment.outliers != Outliers::kAsIs && type.IsText()) element.Fail("texts have no outliers");
  return treatment;
}

// The intervals, ascending, those that overlap or touch as one.
std::vector<Interval> Merged(std::vector<Interval> intervals) {
  std::ranges::sort(intervals, {}, &Interval::low);
  std::vector<Interval> merged;
  for (const Interval& interval : intervals) {
    if (merged.empty() || interval.low > merged.back().high) {
      merged.push_back(interval);
    } else {
      merged.back().high = std::max(merged.back().high, interval.high);
    }
  }
  return merged;
}

// What the treatment means for the data of the field.
FieldUse UseBy(const Treatment& treatment, const Domain& domain, OpType opType) {
  FieldUse use;
  use.replacement = treatment.refusesMissing ? kMissing : treatment.missingReplacement;
  const std::vector<Interval> parts = Merged(domain.intervals);
  if (!parts.empty()) {
    use.lowest = parts.front().low;
    use.highest = parts.back().high;
    if (parts.size() > 1) use.parts = parts;
  } else if (!domain.valid.empty() && opType == OpType::kContinuous) {
    use.lowest = std::ranges::min(domain.valid);
    use.highest = std::ranges::max(domain.valid);
  }
  const bool isKept = !std::isnan(use.replacement);
  use.predictsInvalid = treatment.invalid == Invalid::kAsIs || treatment.invalid == Invalid::kValue ||
                        (treatment.invalid == Invalid::kMissing && isKept);
  if (treatment.outliers == Outliers::kMissing && !isKept) {
    use.lowest = std::fmax(use.predictsInvalid ? treatment.low : use.lowest, treatment.low);
    use.highest = std::fmin(use.predictsInvalid ? treatment.high : use.highest, treatment.high);
    use.predictsInvalid = false;
  }
  return use;
}

Operand Treated(const std::string& name, const Element& element, Scope& scope, Scope& outside,
                bool isNested) {
  Operand operand = outside.Resolve(name, element);
  operand.opType = ReadOpType(element, operand.opType);
  const Treatment treatment = ReadTreatment(element, operand.type, isNested, scope.Build());
  const Domain domain = operand.field == nullptr ? Domain() : operand.field->domain;
  if (operand.field != nullptr && !isNested)
    scope.Build().UseOf(*operand.field) = UseBy(treatment, domain, operand.opType);
  if (treatment.DoesNothing(domain)) return operand;
  if (operand.field == nullptr) {
    auto field = std::make_unique<Field>();
    field->name = name;
    field->type = operand.type;
    operand.field = &scope.Build().AddField(std::move(field));
  }
  const Slot in = operand.slot;
  operand.slot = scope.Build().NewSlot(element);
  scope.Steps().push_back(std::make_unique<Treat>(in, operand.slot, *operand.field, domain, treatment));
  return operand;
}

enum class Usage : std::uint8_t { kActive, kTarget, kOther };

}  // namespace

std::vector<std::string> ReadMiningSchema(const Element& element, Scope& scope, Scope& outside,
                                          bool isNested) {
  std::vector<std::string> targets;
  element.RefuseOtherAttributes();
  for (const Element& child : element.Children()) {
    if (!child.Is("MiningField")) child.Refuse();
    const std::string name = child.Text("name");
    const auto usage = child.Choice<Usage>("usageType",
                                           {{"active", Usage::kActive},
                                            {"predicted", Usage::kTarget},
                                            {"target", Usage::kTarget},
                                            {"supplementary", Usage::kOther},
                                            {"group", Usage::kOther},
                                            {"order", Usage::kOther},
                                            {"frequencyWeight", Usage::kOther},
                                            {"analysisWeight", Usage::kOther}},
                                           Usage::kActive);
    child.PassOver({"importance"});
    if (usage == Usage::kTarget) targets.push_back(name);
    if (usage != Usage::kTarget && !outside.Knows(name)) child.Fail("unknown field " + name);
    scope.DefineLater(
        name,
        [name, child, &scope, &outside, isNested, usage] {
          if (usage != Usage::kTarget) return Treated(name, child, scope, outside, isNested);
          Operand operand = outside.Resolve(name, child);
          ReadTreatment(child, operand.type, isNested, scope.Build());
          return operand;
        },
        child);
    // Attributes are checked when the field is settled; those that no treatment reads are refused now.
    child.PassOver({"optype", "invalidValueTreatment", "invalidValueReplacement", "missingValueTreatment",
                    "missingValueReplacement", "outliers", "lowValue", "highValue"});
    child.RefuseAnythingElse();
  }
  return targets;
}

}  // namespace brenvolt::pmml
