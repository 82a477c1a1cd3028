// Normal quantiles over arrays: the cheap centre for all values, the costly tails for the few that need them.
// Included once per instruction set.
#if defined(HOST_NUMERIC_VECTOR_QUANTILES_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef HOST_NUMERIC_VECTOR_QUANTILES_INL_H_
#undef HOST_NUMERIC_VECTOR_QUANTILES_INL_H_
#else
#define HOST_NUMERIC_VECTOR_QUANTILES_INL_H_
#endif

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <span>

#include "host/numeric/vector/place_list.h"
#include "host/numeric/vector/vector_loops-inl.h"
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace brenvolt {
namespace HWY_NAMESPACE {

// Normal quantiles. A source of probabilities gives for its argument the nearer tail's probability and
// whether that tail is the lower one; a formula turns (argument, z) into the result.

template <class V, class M>
struct Tail {
  V probability;
  M isLower;
};

struct FromProbability {
  template <class D, class V>
  HWY_INLINE auto operator()(D d, V p) const {
    const auto isLower = hn::Le(p, hn::Set(d, 0.5));
    return Tail<V, hn::Mask<D>>{hn::IfThenElse(isLower, p, hn::Sub(hn::Set(d, 1.0), p)), isLower};
  }
};

// The centre of the cell of a uniform deviate, formed in the nearer tail, where it is exact.
struct FromUniform {
  template <class D, class V>
  HWY_INLINE auto operator()(D d, V u) const {
    const auto isLower = hn::Lt(u, hn::Set(d, 0.5));
    const V half = hn::Set(d, 0x1p-54);
    const V upper = hn::Sub(hn::Sub(hn::Set(d, 1.0), u), half);
    return Tail<V, hn::Mask<D>>{hn::IfThenElse(isLower, hn::Add(u, half), upper), isLower};
  }
};

template <class D, class V, class M>
HWY_INLINE V WithSign(D /*d*/, M isLower, V v) {
  return hn::IfThenElse(isLower, v, hn::Neg(v));
}

// The z of tail probabilities, of which `arguments` are the arguments; infinite at zero.
template <class D, class V, class M, std::size_t kGroups>
HWY_INLINE void SignedTailQuantiles(D d, const Tail<V, M> (&tails)[kGroups], const V (&arguments)[kGroups],
                                    V (&z)[kGroups]) {
  TailQuantiles(d, arguments, z);
  for (std::size_t g = 0; g < kGroups; ++g) {
    const auto isZero = hn::Eq(tails[g].probability, hn::Zero(d));
    z[g] = WithSign(d, tails[g].isLower, hn::IfThenElse(isZero, hn::Set(d, -kVectorInfinity), z[g]));
  }
}

template <class Source, class Formula>
double QuantileAtOne(double x, Source source, Formula formula) {
  using V = hn::Vec<OneLane>;
  const OneLane d;
  const V argument = hn::Set(d, x);
  const auto tail = source(d, argument);
  const V q = hn::Sub(tail.probability, hn::Set(d, 0.5));
  V z[1];
  if (hn::AllTrue(d, hn::Lt(q, hn::Set(d, kCentre)))) {
    SignedTailQuantiles(d, {tail}, {TailArgument(d, tail.probability)}, z);
  } else {
    CentreQuantiles(d, {q}, z);
    z[0] = WithSign(d, tail.isLower, z[0]);
  }
  return hn::GetLane(formula(d, argument, z[0]));
}

inline constexpr std::size_t kQuantileBlock = PlaceList::kMostPlaces;
inline constexpr std::size_t kMostLanes = 64;  // room after a block for whole vectors

// The z of the centre at some vectors; where it is not the centre is added to the tails.
template <std::size_t kGroups, class Source>
HWY_INLINE void CentresAt(const double* x, std::size_t i, Source source, double* z, PlaceList& tails) {
  const hn::ScalableTag<double> d;
  using V = hn::Vec<decltype(d)>;
  const std::size_t lanes = hn::Lanes(d);
  Tail<V, hn::Mask<decltype(d)>> tail[kGroups];
  V q[kGroups];
  V centre[kGroups];
  for (std::size_t g = 0; g < kGroups; ++g) {
    tail[g] = source(d, hn::LoadU(d, x + i + g * lanes));
    q[g] = hn::Sub(tail[g].probability, hn::Set(d, 0.5));
  }
  CentreQuantiles(d, q, centre);
  for (std::size_t g = 0; g < kGroups; ++g) {
    hn::Store(WithSign(d, tail[g].isLower, centre[g]), d, z + i + g * lanes);
    std::uint8_t bits[kMostLanes / 8];
    const std::size_t bytes = hn::StoreMaskBits(d, hn::Lt(q[g], hn::Set(d, kCentre)), bits);
    for (std::size_t byte = 0; byte < bytes; ++byte) tails.Add(bits[byte], i + g * lanes + 8 * byte);
  }
}

// Replaces arguments of the source that lie in the tails, kGroups vectors at a time, by their z.
template <std::size_t kGroups, class Source>
HWY_INLINE void TailsOf(double* packed, std::size_t count, Source source) {
  const hn::ScalableTag<double> d;
  using V = hn::Vec<decltype(d)>;
  const std::size_t lanes = hn::Lanes(d);
  HWY_ALIGN double arguments[kQuantileBlock + kMostLanes];
  for (std::size_t i = 0; i < count; i += lanes)
    hn::Store(TailArgument(d, source(d, hn::Load(d, packed + i)).probability), d, arguments + i);
  for (std::size_t i = 0; i < count; i += kGroups * lanes) {
    Tail<V, hn::Mask<decltype(d)>> tail[kGroups];
    V r[kGroups];
    V z[kGroups];
    for (std::size_t g = 0; g < kGroups; ++g) {
      tail[g] = source(d, hn::Load(d, packed + i + g * lanes));
      r[g] = hn::Load(d, arguments + i + g * lanes);
    }
    SignedTailQuantiles(d, tail, r, z);
    for (std::size_t g = 0; g < kGroups; ++g) hn::Store(z[g], d, packed + i + g * lanes);
  }
}

// The z of one block of whole vectors: the centre of all, then the few in the tails, packed.
template <class Source>
HWY_INLINE void QuantilesOfBlock(const double* x, std::size_t count, Source source, double* z) {
  constexpr std::size_t kTailsTogether = 2;  // of a few, which more would fill up for nothing
  const std::size_t lanes = hn::Lanes(hn::ScalableTag<double>());
  PlaceList tails;
  std::size_t i = 0;
  for (; i + kTogether * lanes <= count; i += kTogether * lanes) CentresAt<kTogether>(x, i, source, z, tails);
  for (; i < count; i += lanes) CentresAt<1>(x, i, source, z, tails);
  HWY_ALIGN double packed[kQuantileBlock + kMostLanes];
  for (std::size_t t = 0; t < tails.Size(); ++t) packed[t] = x[tails[t]];
  const std::size_t padded =
      (tails.Size() + kTailsTogether * lanes - 1) / (kTailsTogether * lanes) * (kTailsTogether * lanes);
  std::fill_n(packed + tails.Size(), padded - tails.Size(), 0.01);
  TailsOf<kTailsTogether>(packed, padded, source);
  for (std::size_t t = 0; t < tails.Size(); ++t) z[tails[t]] = packed[t];
}

template <class Source, class Formula>
void QuantilesOverArray(std::span<const double> x, std::span<double> out, Source source, Formula formula) {
  assert(out.size() >= x.size());
  const hn::ScalableTag<double> d;
  const std::size_t lanes = hn::Lanes(d);
  static_assert(2 * hn::MaxLanes(d) <= kMostLanes);
  HWY_ALIGN double z[kQuantileBlock + kMostLanes];
  HWY_ALIGN double padded[kMostLanes];
  std::size_t begin = 0;
  const std::size_t whole = x.size() - x.size() % lanes;
  while (begin < whole) {
    const std::size_t count = std::min(kQuantileBlock, whole - begin);
    QuantilesOfBlock(x.data() + begin, count, source, z);
    for (std::size_t i = 0; i < count; i += lanes) {
      const auto argument = hn::LoadU(d, x.data() + begin + i);
      hn::StoreU(formula(d, argument, hn::Load(d, z + i)), d, out.data() + begin + i);
    }
    begin += count;
  }
  const std::size_t rest = x.size() - whole;
  if (rest == 0) return;
  std::fill_n(padded, lanes, 0.5);
  std::copy_n(x.data() + whole, rest, padded);
  QuantilesOfBlock(padded, lanes, source, z);
  hn::Store(formula(d, hn::Load(d, padded), hn::Load(d, z)), d, padded);
  std::copy_n(padded, rest, out.data() + whole);
}

// The same as ArrayRun and OneRun, for the formula that follows the normal quantile of a probability.

struct ArrayQuantileRun {
  std::span<const double> p;
  std::span<double> out;
  template <class Formula>
  void operator()(Formula formula) const {
    QuantilesOverArray(p, out, FromProbability{}, formula);
  }
};

struct OneQuantileRun {
  double p;
  template <class Formula>
  double operator()(Formula formula) const {
    return QuantileAtOne(p, FromProbability{}, formula);
  }
};

}  // namespace HWY_NAMESPACE
}  // namespace brenvolt
HWY_AFTER_NAMESPACE();

#endif
