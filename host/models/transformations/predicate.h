// Predicates over a row, in three-valued logic. All predicates of a model lie in one array and are evaluated
// without calls through pointers.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "host/models/transformations/expression_element.h"

namespace brenvolt::pmml {

enum class Outcome : std::uint8_t { kFalse, kTrue, kUnknown };

enum class Test : std::uint8_t {
  kTrue,
  kFalse,
  kEqual,
  kNotEqual,
  kLess,
  kLessOrEqual,
  kGreater,
  kGreaterOrEqual,
  kIsMissing,
  kIsNotMissing,
  kIsIn,
  kIsNotIn,
  kAnd,
  kOr,
  kXor,
  kSurrogate
};

using PredicateNumber = std::uint32_t;

struct Predicate {
  Test test = Test::kTrue;
  Slot slot = kNoSlot;
  double value = 0;
  std::uint32_t first = 0;  // of the set's values or the parts
  std::uint32_t count = 0;
};

class Predicates {
 public:
  static bool IsPredicate(const Element& element);
  // The first child that is a predicate; throws if there is none.
  static Element ChildOf(const Element& element);

  PredicateNumber Add(const Element& element, const Place& place);

  const Predicate& operator[](PredicateNumber number) const { return predicates_[number]; }
  Outcome Evaluate(PredicateNumber number, const Frame& frame, std::size_t row) const;

 private:
  PredicateNumber AddSimple(const Element& element, const Place& place);
  PredicateNumber AddSet(const Element& element, const Place& place);
  PredicateNumber AddCompound(const Element& element, const Place& place);
  PredicateNumber Put(Predicate predicate);
  void PutSet(Predicate& predicate, std::span<const double> values);
  Outcome EvaluateCompound(const Predicate& predicate, const Frame& frame, std::size_t row) const;

  std::vector<Predicate> predicates_;
  std::vector<double> values_;
  std::vector<PredicateNumber> parts_;
};

}  // namespace brenvolt::pmml
