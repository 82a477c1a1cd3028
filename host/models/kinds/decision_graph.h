// A decision tree as flat arrays, walked by several rows of a block at a time.
//
// Each decision asks one question and leads to one of three others: where the answer is no, yes, and where a
// value that it needs is missing. Nodes with several children become chains of decisions. A leaf leads to
// itself, so that rows that have arrived wait for the others without a branch.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "host/models/transformations/predicate.h"

namespace brenvolt::pmml {

using DecisionNumber = std::int32_t;

enum class Question : std::uint8_t { kLess, kEqual, kPredicate, kLeaf };

class DecisionGraph {
 public:
  // Adds a decision or leaf, to be linked later; returns its number.
  DecisionNumber AddLeaf(std::int32_t outcome);
  DecisionNumber AddDecision(PredicateNumber predicate, const Predicates& predicates);
  void Link(DecisionNumber from, DecisionNumber ifTrue, DecisionNumber ifFalse, DecisionNumber ifUnknown);
  void SetRoot(DecisionNumber root) { root_ = root; }
  // To be called once, when everything is linked.
  void Finish();
  // The outcome of the leaf that each row of the block arrives at. `unknowns` counts the missing answers on
  // the way, if it is not null.
  void Walk(const Predicates& predicates, const Frame& frame, std::int32_t* outcomes,
            std::uint16_t* unknowns) const;

 private:
  struct Decision {
    double threshold = 0;
    std::int32_t column = 0;               // of columns_; for kPredicate the predicate's number
    std::array<DecisionNumber, 3> next{};  // false, true, unknown
  };

  // A decision for blocks without missing values, in a quarter of a cache line: x >= threshold leads to the
  // decision behind `next`, anything else to `next`. A leaf's threshold is NaN and its `next` itself.
  struct Packed {
    double threshold;
    std::int32_t column;
    DecisionNumber next;
  };

  void WalkWhole(const Frame& frame, std::int32_t* outcomes) const;
  void WalkFast(const Frame& frame, std::int32_t* outcomes) const;
  DecisionNumber Answer(DecisionNumber at, const Predicates& predicates, const Frame& frame, std::size_t row,
                        bool& isUnknown) const;
  std::int32_t ColumnOf(Slot slot);

  std::vector<Decision> decisions_;
  std::vector<Question> questions_;
  std::vector<std::int32_t> outcomes_;  // of leaves
  std::vector<bool> swapped_;           // the question is the opposite of the predicate
  std::vector<Slot> columns_;
  std::vector<Packed> packed_;  // from the root on; empty if the questions are not all comparisons
  std::vector<std::int32_t> packedOutcomes_;
  DecisionNumber root_ = 0;
  bool isFast_ = true;  // all questions compare a number with a threshold
};

}  // namespace brenvolt::pmml
