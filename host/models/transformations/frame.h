// What a compiled model is: a program of steps over a block of rows. A step reads columns and writes columns
// of the block; which ones was settled when the model was loaded.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <span>
#include <vector>

#include "host/models/transformations/text_pool.h"

namespace brenvolt::pmml {

// Rows of a block: few enough that the columns of a model stay in a near cache, many enough that each tree of
// a forest is fetched seldom.
inline constexpr std::size_t kBlockRows = 1024;

// A column of the block: from 0 up those that steps write, below 0 the inputs and constants.
using Slot = std::int32_t;
inline constexpr Slot kNoSlot = std::numeric_limits<Slot>::max();

struct Field;

// A row whose value of a field is refused, or made missing, by the treatment of invalid or missing values.
struct Refusal {
  std::size_t row = std::numeric_limits<std::size_t>::max();
  const Field* field = nullptr;
  double value = 0;
};

class Frame {
 public:
  Frame(std::size_t slots, std::size_t fixed, TextPool& pool)
      : storage_(slots * kBlockRows), fixed_(fixed), whole_(slots + fixed), pool_(&pool) {}

  std::size_t Rows() const { return rows_; }
  // The number of rows before the block; inputs hold these before the block's values.
  std::size_t FirstRow() const { return first_; }
  const double* In(Slot slot) const {
    return slot >= 0 ? storage_.data() + static_cast<std::size_t>(slot) * kBlockRows
                     : fixed_[static_cast<std::size_t>(~slot)];
  }
  double* Out(Slot slot) { return storage_.data() + static_cast<std::size_t>(slot) * kBlockRows; }
  TextPool& Pool() const { return *pool_; }

  void SetFixed(Slot slot, const double* values) { fixed_[static_cast<std::size_t>(~slot)] = values; }
  void SetRows(std::size_t first, std::size_t count) {
    first_ = first;
    rows_ = count;
    if (hasReasons_) std::ranges::fill(reasons_, RowReason());
    hasReasons_ = false;
    std::fill(whole_.begin(), whole_.end(), Wholeness::kOpen);
  }

  // Whether a column has missing values. The answer is kept for the block: to be asked of columns that no
  // later step writes again.
  bool HasMissing(Slot slot) const {
    Wholeness& known =
        whole_[slot >= 0 ? static_cast<std::size_t>(slot) + fixed_.size() : static_cast<std::size_t>(~slot)];
    if (known == Wholeness::kOpen) {
      const double* x = In(slot);
      bool whole = true;
      for (std::size_t i = 0; i < rows_; ++i) whole = whole & (x[i] == x[i]);
      known = whole ? Wholeness::kWhole : Wholeness::kMissing;
    }
    return known == Wholeness::kMissing;
  }

  // A row without a result, because a field's value is refused. The first refusal of a row is its reason.
  void RefuseRow(std::size_t row, const Field& field, double value) {
    if (!reasons_[row].isRefused) reasons_[row] = {&field, value, true};
    hasReasons_ = true;
    if (first_ + row < refusal_.row) refusal_ = {first_ + row, &field, value};
  }
  // A row that goes on without a field's value: the reason if it ends without a result.
  void NoteLostValue(std::size_t row, const Field& field, double value) {
    if (reasons_[row].field == nullptr) reasons_[row] = {&field, value, false};
    hasReasons_ = true;
  }
  struct RowReason {
    const Field* field = nullptr;  // null: no value was refused or lost
    double value = 0;
    bool isRefused = false;
  };
  // Whether any row of the block has a reason; most blocks have none.
  bool HasReasons() const { return hasReasons_; }
  const RowReason& ReasonOf(std::size_t row) const { return reasons_[row]; }
  const Refusal& FirstRefusal() const { return refusal_; }

 private:
  enum class Wholeness : std::uint8_t { kOpen, kWhole, kMissing };

  std::vector<double> storage_;
  std::vector<const double*> fixed_;
  mutable std::vector<Wholeness> whole_;
  TextPool* pool_;
  std::size_t first_ = 0;
  std::size_t rows_ = 0;
  std::vector<RowReason> reasons_ = std::vector<RowReason>(kBlockRows);
  bool hasReasons_ = false;
  Refusal refusal_;
};

class Step {
 public:
  Step() = default;
  virtual ~Step() = default;
  Step(const Step&) = delete;
  Step& operator=(const Step&) = delete;
  virtual void Run(Frame& frame) const = 0;
};

using Program = std::vector<std::unique_ptr<Step>>;

inline void RunProgram(const Program& program, Frame& frame) {
  for (const auto& step : program) step->Run(frame);
}

// A step made of a function over the frame.
template <class Body>
class BodyStep final : public Step {
 public:
  explicit BodyStep(Body body) : body_(std::move(body)) {}
  void Run(Frame& frame) const override { body_(frame); }

 private:
  Body body_;
};

template <class Body>
void AddStep(Program& program, Body body) {
  program.push_back(std::make_unique<BodyStep<Body>>(std::move(body)));
}

}  // namespace brenvolt::pmml
