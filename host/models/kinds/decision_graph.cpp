#include "host/models/kinds/decision_graph.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace brenvolt::pmml {
namespace {

// Rows that walk together: enough to hide the time of a step's memory access behind the others'.
constexpr std::size_t kTogether = 8;

// x <= t is x < the next number above t.
double NextAbove(double t) {
  return std::nextafter(t, std::numeric_limits<double>::infinity());
}

// The block's columns by their numbers.
class Columns {
 public:
  Columns(const std::vector<Slot>& slots, const Frame& frame) {
    if (slots.size() > kFew) many_.resize(slots.size());
    columns_ = many_.empty() ? few_.data() : many_.data();
    for (std::size_t k = 0; k < slots.size(); ++k) columns_[k] = frame.In(slots[k]);
  }
  Columns(const Columns&) = delete;
  Columns& operator=(const Columns&) = delete;
  const double* operator[](std::int32_t number) const { return columns_[number]; }

 private:
  static constexpr std::size_t kFew = 64;
  std::array<const double*, kFew> few_;
  std::vector<const double*> many_;
  const double** columns_;
};

}  // namespace

std::int32_t DecisionGraph::ColumnOf(Slot slot) {
  for (std::size_t k = 0; k < columns_.size(); ++k) {
    if (columns_[k] == slot) return static_cast<std::int32_t>(k);
  }
  columns_.push_back(slot);
  return static_cast<std::int32_t>(columns_.size() - 1);
}

DecisionNumber DecisionGraph::AddLeaf(std::int32_t outcome) {
  const auto number = static_cast<DecisionNumber>(decisions_.size());
  Decision decision;
  decision.next = {number, number, number};
  decisions_.push_back(decision);
  outcomes_.push_back(outcome);
  questions_.push_back(Question::kLeaf);
  swapped_.push_back(false);
  return number;
}

DecisionNumber DecisionGraph::AddDecision(PredicateNumber number, const Predicates& predicates) {
  const Predicate& predicate = predicates[number];
  Decision decision;
  decision.threshold = predicate.value;
  Question question = Question::kLess;
  bool isSwapped = false;
  switch (predicate.test) {
    case Test::kLess:
      break;
    case Test::kLessOrEqual:
      decision.threshold = NextAbove(predicate.value);
      break;
    case Test::kGreaterOrEqual:
      isSwapped = true;
      break;
    case Test::kGreater:
      decision.threshold = NextAbove(predicate.value);
      isSwapped = true;
      break;
    case Test::kEqual:
      question = Question::kEqual;
      break;
    case Test::kNotEqual:
      question = Question::kEqual;
      isSwapped = true;
      break;
    default:
      question = Question::kPredicate;
      break;
  }
  decision.column =
      question == Question::kPredicate ? static_cast<std::int32_t>(number) : ColumnOf(predicate.slot);
  isFast_ = isFast_ && question == Question::kLess;
  decisions_.push_back(decision);
  outcomes_.push_back(0);
  questions_.push_back(question);
  swapped_.push_back(isSwapped);
  return static_cast<DecisionNumber>(decisions_.size() - 1);
}

void DecisionGraph::Link(DecisionNumber from, DecisionNumber ifTrue, DecisionNumber ifFalse,
                         DecisionNumber ifUnknown) {
  const auto at = static_cast<std::size_t>(from);
  decisions_[at].next =
      swapped_[at] ? std::array{ifTrue, ifFalse, ifUnknown} : std::array{ifFalse, ifTrue, ifUnknown};
}

void DecisionGraph::Finish() {
  if (!isFast_ || columns_.empty()) return;
  // The two ways of a decision lie side by side; leaves that several decisions lead to are repeated.
  std::vector<DecisionNumber> sources{root_};
  for (std::size_t k = 0; k < sources.size(); ++k) {
    const auto from = static_cast<std::size_t>(sources[k]);
    const Decision& decision = decisions_[from];
    packedOutcomes_.push_back(outcomes_[from]);
    if (questions_[from] == Question::kLeaf) {
      packed_.push_back({std::numeric_limits<double>::quiet_NaN(), 0, static_cast<DecisionNumber>(k)});
      continue;
    }
    packed_.push_back({decision.threshold, decision.column, static_cast<DecisionNumber>(sources.size())});
    sources.push_back(decision.next[1]);
    sources.push_back(decision.next[0]);
  }
}

DecisionNumber DecisionGraph::Answer(DecisionNumber at, const Predicates& predicates, const Frame& frame,
                                     std::size_t row, bool& isUnknown) const {
  const Decision& decision = decisions_[static_cast<std::size_t>(at)];
  const Question question = questions_[static_cast<std::size_t>(at)];
  std::size_t answer = 2;
  if (question == Question::kPredicate) {
    const auto number = static_cast<PredicateNumber>(decision.column);
    const Outcome outcome = predicates.Evaluate(number, frame, row);
    if (outcome != Outcome::kUnknown) answer = outcome == Outcome::kTrue ? 1 : 0;
  } else {
    const double x = frame.In(columns_[static_cast<std::size_t>(decision.column)])[row];
    const bool holds = question == Question::kLess ? x < decision.threshold : x == decision.threshold;
    if (!std::isnan(x)) answer = holds ? 1 : 0;
  }
  isUnknown = answer == 2;
  return decision.next[answer];
}

void DecisionGraph::Walk(const Predicates& predicates, const Frame& frame, std::int32_t* outcomes,
                         std::uint16_t* unknowns) const {
  if (!packed_.empty()) {
    const bool isWhole =
        std::ranges::none_of(columns_, [&](const Slot slot) { return frame.HasMissing(slot); });
    if (isWhole && unknowns != nullptr) std::fill_n(unknowns, frame.Rows(), std::uint16_t{0});
    if (isWhole) return WalkWhole(frame, outcomes);
    if (unknowns == nullptr) return WalkFast(frame, outcomes);
  }
  for (std::size_t row = 0; row < frame.Rows(); ++row) {
    DecisionNumber at = root_;
    std::uint16_t count = 0;
    while (questions_[static_cast<std::size_t>(at)] != Question::kLeaf) {
      bool isUnknown = false;
      at = Answer(at, predicates, frame, row, isUnknown);
      count = static_cast<std::uint16_t>(count + (isUnknown ? 1 : 0));
    }
    outcomes[row] = outcomes_[static_cast<std::size_t>(at)];
    if (unknowns != nullptr) unknowns[row] = count;
  }
}

void DecisionGraph::WalkWhole(const Frame& frame, std::int32_t* outcomes) const {
  const Columns columns(columns_, frame);
  const Packed* packed = packed_.data();
  for (std::size_t first = 0; first < frame.Rows(); first += kTogether) {
    std::array<DecisionNumber, kTogether> at{};
    const std::size_t together = std::min(kTogether, frame.Rows() - first);
    // Where the block ends, its last row walks several times.
    DecisionNumber moved = 1;
    while (moved != 0) {
      moved = 0;
      for (std::size_t k = 0; k < kTogether; ++k) {
        const Packed& decision = packed[at[k]];
        const double x = columns[decision.column][first + std::min(k, together - 1)];
        const DecisionNumber next = decision.next + static_cast<DecisionNumber>(x >= decision.threshold);
        moved |= next ^ at[k];
        at[k] = next;
      }
    }
    for (std::size_t k = 0; k < together; ++k)
      outcomes[first + k] = packedOutcomes_[static_cast<std::size_t>(at[k])];
  }
}

void DecisionGraph::WalkFast(const Frame& frame, std::int32_t* outcomes) const {
  const Columns columns(columns_, frame);
  const Decision* decisions = decisions_.data();
  for (std::size_t first = 0; first < frame.Rows(); first += kTogether) {
    std::array<DecisionNumber, kTogether> at;
    at.fill(root_);
    const std::size_t together = std::min(kTogether, frame.Rows() - first);
    DecisionNumber moved = 1;
    while (moved != 0) {
      moved = 0;
      for (std::size_t k = 0; k < kTogether; ++k) {
        const Decision& decision = decisions[at[k]];
        const double x = columns[decision.column][first + std::min(k, together - 1)];
        const auto answer = static_cast<std::size_t>(x < decision.threshold);
        const DecisionNumber next = decision.next[std::isnan(x) ? 2 : answer];
        moved |= next ^ at[k];
        at[k] = next;
      }
    }
    for (std::size_t k = 0; k < together; ++k)
      outcomes[first + k] = outcomes_[static_cast<std::size_t>(at[k])];
  }
}

}  // namespace brenvolt::pmml
