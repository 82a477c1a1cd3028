#include "host/models/transformations/predicate.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "host/models/document/arrays.h"

namespace brenvolt::pmml {
namespace {

Outcome OutcomeOf(bool holds) {
  return holds ? Outcome::kTrue : Outcome::kFalse;
}

bool IsOrderTest(Test test) {
  return test == Test::kLess || test == Test::kLessOrEqual || test == Test::kGreater ||
         test == Test::kGreaterOrEqual;
}

}  // namespace

bool Predicates::IsPredicate(const Element& element) {
  constexpr std::array<std::string_view, 5> kNames{"SimplePredicate", "SimpleSetPredicate",
                                                   "CompoundPredicate", "True", "False"};
  return std::ranges::find(kNames, element.Name()) != kNames.end();
}

Element Predicates::ChildOf(const Element& element) {
  for (const Element& child : element.Children()) {
    if (IsPredicate(child)) return child;
  }
  element.Fail("the element " + std::string(element.Name()) + " has no predicate");
}

PredicateNumber Predicates::Put(Predicate predicate) {
  predicates_.push_back(predicate);
  return static_cast<PredicateNumber>(predicates_.size() - 1);
}

void Predicates::PutSet(Predicate& predicate, std::span<const double> values) {
  predicate.first = static_cast<std::uint32_t>(values_.size());
  predicate.count = static_cast<std::uint32_t>(values.size());
  values_.insert(values_.end(), values.begin(), values.end());
  std::sort(values_.end() - static_cast<std::ptrdiff_t>(values.size()), values_.end());
}

PredicateNumber Predicates::Add(const Element& element, const Place& place) {
  if (element.Is("SimplePredicate")) return AddSimple(element, place);
  if (element.Is("SimpleSetPredicate")) return AddSet(element, place);
  if (element.Is("CompoundPredicate")) return AddCompound(element, place);
  if (!IsPredicate(element)) element.Refuse();
  element.RefuseAnythingElse();
  Predicate predicate;
  predicate.test = element.Is("True") ? Test::kTrue : Test::kFalse;
  return Put(predicate);
}

PredicateNumber Predicates::AddSimple(const Element& element, const Place& place) {
  Predicate predicate;
  const Operand operand = place.scope.Resolve(element.Text("field"), element);
  predicate.slot = operand.slot;
  predicate.test = element.Choice<Test>("operator", {{"equal", Test::kEqual},
                                                     {"notEqual", Test::kNotEqual},
                                                     {"lessThan", Test::kLess},
                                                     {"lessOrEqual", Test::kLessOrEqual},
                                                     {"greaterThan", Test::kGreater},
                                                     {"greaterOrEqual", Test::kGreaterOrEqual},
                                                     {"isMissing", Test::kIsMissing},
                                                     {"isNotMissing", Test::kIsNotMissing}});
  if (predicate.test == Test::kIsMissing || predicate.test == Test::kIsNotMissing) {
    element.PassOver({"value"});
    element.RefuseAnythingElse();
    return Put(predicate);
  }
  const std::string text = element.Text("value");
  element.RefuseAnythingElse();
  predicate.value = place.Build().ValueOf(text, operand.type, element);
  if (!operand.type.IsText() || !IsOrderTest(predicate.test)) return Put(predicate);
  // Texts have the order of their field's values, where the field is ordinal.
  const bool isOrdinal = operand.field != nullptr && operand.field->opType == OpType::kOrdinal;
  const auto& labels = isOrdinal ? operand.field->labels : std::vector<std::string>();
  const auto at = std::ranges::find(labels, text);
  if (at == labels.end())
    element.Fail("the values of the field have no order in which to compare \"" + text + "\"");
  const bool below = predicate.test == Test::kLess || predicate.test == Test::kLessOrEqual;
  const bool included = predicate.test == Test::kLessOrEqual || predicate.test == Test::kGreaterOrEqual;
  std::vector<double> values;
  for (auto label = labels.begin(); label != labels.end(); ++label) {
    if (label == at ? included : (label < at) == below) values.push_back(place.Build().Pool().Number(*label));
  }
  predicate.test = Test::kIsIn;
  PutSet(predicate, values);
  return Put(predicate);
}

PredicateNumber Predicates::AddSet(const Element& element, const Place& place) {
  const Operand operand = place.scope.Resolve(element.Text("field"), element);
  Predicate predicate;
  predicate.slot = operand.slot;
  predicate.test =
      element.Choice<Test>("booleanOperator", {{"isIn", Test::kIsIn}, {"isNotIn", Test::kIsNotIn}});
  element.RefuseOtherAttributes();
  const Element array = element.OnlyChild();
  if (!array.Is("Array")) array.Refuse();
  std::vector<double> values;
  for (const std::string& item : ReadArray(array)) {
    values.push_back(place.Build().ValueOf(item, operand.type, array));
  }
  PutSet(predicate, values);
  return Put(predicate);
}

PredicateNumber Predicates::AddCompound(const Element& element, const Place& place) {
  const Builder::Depth depth(place.Build(), element);
  Predicate predicate;
  predicate.test = element.Choice<Test>(
      "booleanOperator",
      {{"and", Test::kAnd}, {"or", Test::kOr}, {"xor", Test::kXor}, {"surrogate", Test::kSurrogate}});
  element.RefuseOtherAttributes();
  std::vector<PredicateNumber> parts;
  for (const Element& child : element.Children()) parts.push_back(Add(child, place));
  if (parts.empty()) element.Fail("a compound predicate has no parts");
  predicate.first = static_cast<std::uint32_t>(parts_.size());
  predicate.count = static_cast<std::uint32_t>(parts.size());
  parts_.insert(parts_.end(), parts.begin(), parts.end());
  return Put(predicate);
}

Outcome Predicates::Evaluate(PredicateNumber number, const Frame& frame, std::size_t row) const {
  const Predicate& predicate = predicates_[number];
  if (predicate.test == Test::kTrue) return Outcome::kTrue;
  if (predicate.test == Test::kFalse) return Outcome::kFalse;
  if (predicate.test >= Test::kAnd) return EvaluateCompound(predicate, frame, row);
  const double x = frame.In(predicate.slot)[row];
  const bool isMissing = std::isnan(x);
  if (predicate.test == Test::kIsMissing) return OutcomeOf(isMissing);
  if (predicate.test == Test::kIsNotMissing) return OutcomeOf(!isMissing);
  if (isMissing) return Outcome::kUnknown;
  const auto isInSet = [&] {
    const auto begin = values_.begin() + predicate.first;
    return std::binary_search(begin, begin + predicate.count, x);
  };
  switch (predicate.test) {
    case Test::kEqual:
      return OutcomeOf(x == predicate.value);
    case Test::kNotEqual:
      return OutcomeOf(x != predicate.value);
    case Test::kLess:
      return OutcomeOf(x < predicate.value);
    case Test::kLessOrEqual:
      return OutcomeOf(x <= predicate.value);
    case Test::kGreater:
      return OutcomeOf(x > predicate.value);
    case Test::kGreaterOrEqual:
      return OutcomeOf(x >= predicate.value);
    case Test::kIsIn:
      return OutcomeOf(isInSet());
    default:
      return OutcomeOf(!isInSet());
  }
}

Outcome Predicates::EvaluateCompound(const Predicate& predicate, const Frame& frame, std::size_t row) const {
  bool anyUnknown = false;
  bool parity = false;
  for (std::uint32_t k = 0; k < predicate.count; ++k) {
    const Outcome outcome = Evaluate(parts_[predicate.first + k], frame, row);
    if (predicate.test == Test::kSurrogate && outcome != Outcome::kUnknown) return outcome;
    if (predicate.test == Test::kAnd && outcome == Outcome::kFalse) return outcome;
    if (predicate.test == Test::kOr && outcome == Outcome::kTrue) return outcome;
    anyUnknown = anyUnknown || outcome == Outcome::kUnknown;
    parity = parity != (outcome == Outcome::kTrue);
  }
  if (anyUnknown) return Outcome::kUnknown;
  if (predicate.test == Test::kXor) return OutcomeOf(parity);
  return OutcomeOf(predicate.test == Test::kAnd);
}

}  // namespace brenvolt::pmml
