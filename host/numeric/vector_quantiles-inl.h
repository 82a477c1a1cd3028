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

#include "host/numeric/place_list.h"
#include "host/numeric/vector_loops-inl.h"
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
    return Tail<V, decltype(isLower)>{hn::IfThenElse(isLower, p, hn::Sub(hn::Set(d, 1.0), p)), isLower};
  }
};

// The centre of the cell of a uniform deviate, formed in the nearer tail, where it is exact.
struct FromUniform {
  template <class D, class V>
  HWY_INLINE auto operator()(D d, V u) const {
    const auto isLower = hn::Lt(u, hn::Set(d, 0.5));
    const V half = hn::Set(d, 0x1p-54);
    const V upper = hn::Sub(hn::Sub(hn::Set(d, 1.0), u), half);
    return Tail<V, decltype(isLower)>{hn::IfThenElse(isLower, hn::Add(u, half), upper), isLower};
  }
};

// The z of signed tail probabilities: negative for the upper tail; zeros count as well.
template <class D, class V>
HWY_INLINE V SignedTailQuantile(D d, V signedTail) {
  const V tail = hn::Abs(signedTail);
  const V z = hn::IfThenElse(hn::Eq(tail, hn::Zero(d)), hn::Set(d, -kVectorInfinity), TailQuantile(d, tail));
  const hn::Rebind<std::uint64_t, D> du;
  const auto sign = hn::And(hn::BitCast(du, signedTail), hn::Set(du, std::uint64_t{1} << 63));
  return hn::BitCast(d, hn::Xor(hn::BitCast(du, z), sign));
}

template <class D, class V, class M>
HWY_INLINE V WithSign(D /*d*/, M isLower, V v) {
  return hn::IfThenElse(isLower, v, hn::Neg(v));
}

template <class Source, class Formula>
double QuantileAtOne(double x, Source source, Formula formula) {
  const OneLane d;
  const auto argument = hn::Set(d, x);
  const auto tail = source(d, argument);
  const auto q = hn::Sub(tail.probability, hn::Set(d, 0.5));
  const bool isTail = hn::AllTrue(d, hn::Lt(q, hn::Set(d, kCentre)));
  const auto z = isTail ? SignedTailQuantile(d, WithSign(d, tail.isLower, hn::Abs(tail.probability)))
                        : WithSign(d, tail.isLower, CentreQuantile(d, q));
  return hn::GetLane(formula(d, argument, z));
}

inline constexpr std::size_t kQuantileBlock = PlaceList::kMostPlaces;
inline constexpr std::size_t kMostLanes = 64;  // room behind a block for whole vectors

// The z of one block: the centre of all, then the few in the tails, packed.
template <class Source>
HWY_INLINE void QuantilesOfBlock(const double* x, std::size_t count, Source source, double* z) {
  const hn::ScalableTag<double> d;
  const std::size_t lanes = hn::Lanes(d);
  PlaceList tails;
  for (std::size_t i = 0; i < count; i += lanes) {
    const auto tail = source(d, hn::LoadU(d, x + i));
    const auto q = hn::Sub(tail.probability, hn::Set(d, 0.5));
    hn::Store(WithSign(d, tail.isLower, CentreQuantile(d, q)), d, z + i);
    std::uint8_t bits[kMostLanes / 8];
    const std::size_t bytes = hn::StoreMaskBits(d, hn::Lt(q, hn::Set(d, kCentre)), bits);
    for (std::size_t byte = 0; byte < bytes; ++byte) tails.Add(bits[byte], i + 8 * byte);
  }
  HWY_ALIGN double packed[kQuantileBlock + kMostLanes];
  for (std::size_t i = 0; i < tails.Size(); ++i) packed[i] = x[tails[i]];
  std::fill_n(packed + tails.Size(), lanes, 0.01);
  for (std::size_t i = 0; i < tails.Size(); i += lanes) {
    const auto tail = source(d, hn::Load(d, packed + i));
    hn::Store(SignedTailQuantile(d, WithSign(d, tail.isLower, hn::Abs(tail.probability))), d, packed + i);
  }
  for (std::size_t i = 0; i < tails.Size(); ++i) z[tails[i]] = packed[i];
}

template <class Source, class Formula>
void QuantilesOverArray(std::span<const double> x, std::span<double> out, Source source, Formula formula) {
  assert(out.size() >= x.size());
  const hn::ScalableTag<double> d;
  const std::size_t lanes = hn::Lanes(d);
  static_assert(hn::MaxLanes(d) <= kMostLanes);
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

}  // namespace HWY_NAMESPACE
}  // namespace brenvolt
HWY_AFTER_NAMESPACE();

#endif
