// Loops of the formulas of vector_formulas-inl.h over arrays; included once per instruction set.
#if defined(HOST_NUMERIC_VECTOR_LOOPS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef HOST_NUMERIC_VECTOR_LOOPS_INL_H_
#undef HOST_NUMERIC_VECTOR_LOOPS_INL_H_
#else
#define HOST_NUMERIC_VECTOR_LOOPS_INL_H_
#endif

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <span>

#include "host/numeric/vector/distribution_values.h"
#include "host/numeric/vector/vector_formulas-inl.h"
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace brenvolt {
namespace HWY_NAMESPACE {

// `result` where p is a probability; NaN and kInvalidQuantile elsewhere.
template <class D, class V>
HWY_INLINE V ForProbabilities(D d, V p, V result) {
  const auto isValid = hn::And(hn::Ge(p, hn::Zero(d)), hn::Le(p, hn::Set(d, 1.0)));
  const V refused = hn::IfThenElse(hn::IsNaN(p), p, hn::Set(d, kInvalidQuantile));
  return hn::IfThenElse(isValid, result, refused);
}

// A formula runs in one stage or several. A stage is an object with operator()(d, x, t): over vectors of the
// arguments x and of what the stage before gave for them, t (x itself, for the first). Several short stages
// over a block are faster than one long formula: the chains of more values fit into the processor's window.

// Stages that are a function alone.
struct ExpStage {
  template <class D, class V>
  HWY_INLINE V operator()(D d, V /*x*/, V t) const {
    return Exp(d, t);
  }
};
struct LogStage {
  template <class D, class V>
  HWY_INLINE V operator()(D d, V /*x*/, V t) const {
    return Log(d, t);
  }
};

inline constexpr std::size_t kBlock = 512;  // values at a time, that stay in the nearest cache

// Two vectors at a time, so that neither waits for its own last step.
template <class Stage>
HWY_INLINE void RunStage(const double* x, const double* t, std::size_t count, double* out, Stage stage) {
  const hn::ScalableTag<double> d;
  const std::size_t lanes = hn::Lanes(d);
  std::size_t i = 0;
  for (; i + 2 * lanes <= count; i += 2 * lanes) {
    const auto first = stage(d, hn::LoadU(d, x + i), hn::LoadU(d, t + i));
    const auto second = stage(d, hn::LoadU(d, x + i + lanes), hn::LoadU(d, t + i + lanes));
    hn::StoreU(first, d, out + i);
    hn::StoreU(second, d, out + i + lanes);
  }
  if (i < count) hn::StoreU(stage(d, hn::LoadU(d, x + i), hn::LoadU(d, t + i)), d, out + i);
}

// For a count of whole vectors. Only the last stage writes to `out`, which may be x.
template <class Stage, class... Rest>
HWY_INLINE void RunStages(const double* x, const double* t, std::size_t count, double* between, double* out,
                          Stage stage, Rest... rest) {
  if constexpr (sizeof...(rest) == 0) {
    RunStage(x, t, count, out, stage);
  } else {
    RunStage(x, t, count, between, stage);
    RunStages(x, between, count, between, out, rest...);
  }
}

// out[i] = the formula of the stages at x[i]; a last part of a vector is padded.
template <class... Stages>
void OverArray(std::span<const double> x, std::span<double> out, Stages... stages) {
  assert(out.size() >= x.size());
  const hn::ScalableTag<double> d;
  const std::size_t lanes = hn::Lanes(d);
  HWY_ALIGN double between[kBlock];
  const std::size_t whole = x.size() - x.size() % lanes;
  for (std::size_t i = 0; i < whole; i += kBlock) {
    RunStages(x.data() + i, x.data() + i, std::min(kBlock, whole - i), between, out.data() + i, stages...);
  }
  const std::size_t rest = x.size() - whole;
  if (rest == 0) return;
  HWY_ALIGN double padded[hn::MaxLanes(d)] = {};
  std::copy_n(x.data() + whole, rest, padded);
  RunStages(padded, padded, lanes, between, padded, stages...);
  std::copy_n(padded, rest, out.data() + whole);
}

using OneLane = hn::CappedTag<double, 1>;

// The same at one value.
template <class... Stages>
double AtOne(double x, Stages... stages) {
  const OneLane d;
  const auto argument = hn::Set(d, x);
  auto t = argument;
  ((t = stages(d, argument, t)), ...);
  return hn::GetLane(t);
}

// What a list of stages is handed to, so that it is written once for arrays and single values.

struct ArrayRun {
  std::span<const double> x;
  std::span<double> out;
  template <class... Stages>
  void operator()(Stages... stages) const {
    OverArray(x, out, stages...);
  }
};

struct OneRun {
  double x;
  template <class... Stages>
  double operator()(Stages... stages) const {
    return AtOne(x, stages...);
  }
};

}  // namespace HWY_NAMESPACE
}  // namespace brenvolt
HWY_AFTER_NAMESPACE();

#endif
