// The random stream's blocks and the normal deviates of uniform ones. Compiled once per instruction set, like
// vector_forms.cpp.
#include "host/numeric/vector/vector_forms.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "host/numeric/random/vector_stream.cpp"
#include "hwy/foreach_target.h"
// After foreach_target.h:
#include <algorithm>
#include <cassert>

#include "host/numeric/vector/vector_loops-inl.h"
#include "host/numeric/vector/vector_quantiles-inl.h"
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace brenvolt {
namespace HWY_NAMESPACE {
namespace {

struct TimesFormula {
  double factor;
  template <class D, class V>
  HWY_INLINE V operator()(D d, V /*u*/, V z) const {
    return hn::Mul(hn::Set(d, factor), z);
  }
};

struct LineFormula {
  double factor;
  double constant;
  template <class D, class V>
  HWY_INLINE V operator()(D d, V /*u*/, V z) const {
    return hn::Add(hn::Mul(hn::Set(d, factor), z), hn::Set(d, constant));
  }
};

// The products of the low halves of the lanes with a 32-bit number.
template <class D, class V>
HWY_INLINE V TimesWord([[maybe_unused]] D du, V v, std::uint32_t factor) {
#if HWY_TARGET == HWY_SCALAR
  return hn::Set(du, std::uint64_t{static_cast<std::uint32_t>(hn::GetLane(v))} * factor);
#else
  const hn::Repartition<std::uint32_t, D> d32;
  return hn::MulEven(hn::BitCast(d32, v), hn::Set(d32, factor));
#endif
}

// Vectors of blocks that go through the rounds together, so that none waits for its own last product.
constexpr std::size_t kGroups = kTogether;

// Ten rounds on vectors of blocks, a 32-bit word in the low half of each lane; the upper halves hold
// anything. Multipliers and key increments: Salmon, Moraes, Dror & Shaw (2011).
template <class D, class V = hn::Vec<D>>
HWY_INLINE void PhiloxRounds(D du, std::uint32_t key0, std::uint32_t key1, V (&words)[kGroups][4]) {
  constexpr std::uint32_t kMultiplier0 = 0xD2511F53;
  constexpr std::uint32_t kMultiplier1 = 0xCD9E8D57;
  const V increment0 = hn::Set(du, std::uint64_t{0x9E3779B9});
  const V increment1 = hn::Set(du, std::uint64_t{0xBB67AE85});
  constexpr int kRounds = 10;
  V k0 = hn::Set(du, std::uint64_t{key0});
  V k1 = hn::Set(du, std::uint64_t{key1});
  for (V(&w)[4] : words) {
    const V product0 = TimesWord(du, w[0], kMultiplier0);
    w[0] = hn::Xor(w[1], k0);
    w[1] = hn::Zero(du);
    w[2] = hn::Xor(hn::template ShiftRight<32>(product0), k1);
    w[3] = product0;
  }
  for (int round = 1; round < kRounds; ++round) {
    k0 = hn::Add(k0, increment0);
    k1 = hn::Add(k1, increment1);
    for (V(&w)[4] : words) {
      const V product0 = TimesWord(du, w[0], kMultiplier0);
      const V product1 = TimesWord(du, w[2], kMultiplier1);
      w[0] = hn::Xor3(hn::template ShiftRight<32>(product1), w[1], k0);
      w[1] = product1;
      w[2] = hn::Xor3(hn::template ShiftRight<32>(product0), w[3], k1);
      w[3] = product0;
    }
  }
}

// (high 2^32 + low >> 11) 2^-53, with the words placed in the mantissas of 2^20 and 1/2, whose last bits
// count 2^-32 and 2^-53.
template <class D, class V>
HWY_INLINE hn::Vec<hn::Rebind<double, D>> Deviates(D du, V low, V high) {
  const hn::Rebind<double, D> d;
  constexpr std::uint64_t kHighBits = 0x4130000000000000ULL;  // 2^20
  constexpr std::uint64_t kLowBits = 0x3FE0000000000000ULL;   // 2^-1
  const V highBits = hn::OrAnd(hn::Set(du, kHighBits), high, hn::Set(du, std::uint64_t{0xFFFFFFFF}));
  const V lowBits = hn::OrAnd(hn::Set(du, kLowBits), hn::template ShiftRight<11>(low),
                              hn::Set(du, (std::uint64_t{1} << 21) - 1));
  const auto highPart = hn::BitCast(d, highBits);
  const auto lowPart = hn::BitCast(d, lowBits);
  return hn::Add(hn::Sub(highPart, hn::Set(d, 0x1p20 + 0.5)), lowPart);
}

// The deviates of one vector of blocks, which are in the order that puts them in place: even lanes hold the
// first half of the blocks, odd ones the second.
template <class D, class V>
HWY_INLINE void StoreDeviates(D du, const V (&words)[4], double* out) {
  const hn::Rebind<double, D> d;
  const auto even = Deviates(du, words[0], words[1]);
  const auto odd = Deviates(du, words[2], words[3]);
#if HWY_TARGET == HWY_SCALAR
  hn::StoreU(even, d, out);
  hn::StoreU(odd, d, out + 1);
#else
  hn::StoreU(hn::InterleaveLower(d, even, odd), d, out);
  hn::StoreU(hn::InterleaveUpper(d, even, odd), d, out + hn::Lanes(d));
#endif
}

void Philox(std::uint32_t key0, std::uint32_t key1, std::uint64_t firstBlock, std::span<double> out) {
  const hn::ScalableTag<std::uint64_t> du;
  const std::size_t lanes = hn::Lanes(du);
  HWY_ALIGN std::uint64_t order[hn::MaxLanes(du)];
  for (std::size_t i = 0; i < lanes; ++i) order[i] = i / 2 + (i % 2 == 1 ? lanes / 2 : 0);
  HWY_ALIGN double buffer[2 * kGroups * hn::MaxLanes(du)];
  for (std::size_t i = 0; i < out.size(); i += 2 * kGroups * lanes) {
    hn::Vec<decltype(du)> words[kGroups][4];
    for (std::size_t group = 0; group < kGroups; ++group) {
      const auto block = hn::Add(hn::Load(du, order), hn::Set(du, firstBlock + i / 2 + group * lanes));
      words[group][0] = block;
      words[group][1] = hn::template ShiftRight<32>(block);
    }
    PhiloxRounds(du, key0, key1, words);
    const std::size_t rest = out.size() - i;
    const bool isWhole = rest >= 2 * kGroups * lanes;
    double* to = isWhole ? out.data() + i : buffer;
    for (std::size_t group = 0; group < kGroups; ++group) {
      StoreDeviates(du, words[group], to + 2 * group * lanes);
    }
    if (!isWhole) std::copy_n(buffer, rest, out.data() + i);
  }
}

// One deviate of each block, of its first or its second half; a constant, so that the other half's last steps
// are not taken.
template <bool kSecond>
void PhiloxHalf(std::uint32_t key0, std::uint32_t key1, std::uint64_t firstBlock, std::span<double> out) {
  const hn::ScalableTag<std::uint64_t> du;
  const hn::Rebind<double, decltype(du)> d;
  const std::size_t lanes = hn::Lanes(du);
  HWY_ALIGN double buffer[kGroups * hn::MaxLanes(du)];
  for (std::size_t i = 0; i < out.size(); i += kGroups * lanes) {
    hn::Vec<decltype(du)> words[kGroups][4];
    for (std::size_t group = 0; group < kGroups; ++group) {
      const auto block = hn::Iota(du, firstBlock + i + group * lanes);
      words[group][0] = block;
      words[group][1] = hn::template ShiftRight<32>(block);
    }
    PhiloxRounds(du, key0, key1, words);
    const std::size_t rest = out.size() - i;
    const bool isWhole = rest >= kGroups * lanes;
    double* to = isWhole ? out.data() + i : buffer;
    for (std::size_t group = 0; group < kGroups; ++group) {
      const auto& w = words[group];
      const auto deviates = Deviates(du, w[kSecond ? 2 : 0], w[kSecond ? 3 : 1]);
      hn::StoreU(deviates, d, to + group * lanes);
    }
    if (!isWhole) std::copy_n(buffer, rest, out.data() + i);
  }
}

// Where the part of the probabilities begins in which a uniform deviate picks a point: its range, or strata.
struct RangeStart {
  double lower;
  template <class D>
  HWY_INLINE hn::Vec<D> operator()(D d, std::size_t /*i*/) const {
    return hn::Set(d, lower);
  }
};
struct StratumStart {
  double lower;
  double width;
  const std::int32_t* strata;
  template <class D>
  HWY_INLINE hn::Vec<D> operator()(D d, std::size_t i) const {
    const auto stratum = hn::PromoteTo(d, hn::LoadU(hn::Rebind<std::int32_t, D>(), strata + i));
    return hn::Add(hn::Set(d, lower), hn::Mul(stratum, hn::Set(d, width)));
  }
};
struct RealStratumStart {
  double lower;
  double width;
  const double* strata;
  template <class D>
  HWY_INLINE hn::Vec<D> operator()(D d, std::size_t i) const {
    return hn::Add(hn::Set(d, lower), hn::Mul(hn::LoadU(d, strata + i), hn::Set(d, width)));
  }
};

// One vector of start(i) + u[i] width, kept from least to most.
template <class D, class Start>
HWY_INLINE void StoreProbabilities(D d, const double* u, const vector_forms::ProbabilityRange& range,
                                   Start start, std::size_t i, double* out) {
  const auto p = hn::Add(start(d, i), hn::Mul(hn::LoadU(d, u + i), hn::Set(d, range.width)));
  const auto raised = hn::IfThenElse(hn::Le(p, hn::Set(d, range.lower)), hn::Set(d, range.least), p);
  const auto isAbove = hn::Gt(raised, hn::Set(d, range.most));
  hn::StoreU(hn::IfThenElse(isAbove, hn::Set(d, range.most), raised), d, out + i);
}

template <class Start>
void Probabilities(std::span<const double> u, const vector_forms::ProbabilityRange& range, Start start,
                   std::span<double> out) {
  const hn::ScalableTag<double> d;
  const std::size_t whole = out.size() - out.size() % hn::Lanes(d);
  for (std::size_t i = 0; i < whole; i += hn::Lanes(d))
    StoreProbabilities(d, u.data(), range, start, i, out.data());
  for (std::size_t i = whole; i < out.size(); ++i)
    StoreProbabilities(OneLane(), u.data(), range, start, i, out.data());
}

}  // namespace

void RangeArray(std::span<const double> u, const vector_forms::ProbabilityRange& range,
                std::span<double> out) {
  Probabilities(u, range, RangeStart{range.lower}, out);
}
void StrataArray(std::span<const double> u, const std::int32_t* strata,
                 const vector_forms::ProbabilityRange& range, std::span<double> out) {
  Probabilities(u, range, StratumStart{range.lower, range.width, strata}, out);
}
void RealStrataArray(std::span<const double> u, const double* strata,
                     const vector_forms::ProbabilityRange& range, std::span<double> out) {
  Probabilities(u, range, RealStratumStart{range.lower, range.width, strata}, out);
}

void PhiloxHalfArray(std::uint32_t key0, std::uint32_t key1, std::uint64_t firstBlock, bool second,
                     std::span<double> out) {
  if (second) {
    PhiloxHalf<true>(key0, key1, firstBlock, out);
  } else {
    PhiloxHalf<false>(key0, key1, firstBlock, out);
  }
}
void NormalsArray(std::span<const double> u, double sd, std::span<double> out) {
  QuantilesOverArray(u, out, FromUniform{}, TimesFormula{sd});
}
void LocatedNormalsArray(std::span<const double> u, double sd, double location, std::span<double> out) {
  QuantilesOverArray(u, out, FromUniform{}, LineFormula{sd, location});
}
void PhiloxArray(std::uint32_t key0, std::uint32_t key1, std::uint64_t firstBlock, std::span<double> out) {
  Philox(key0, key1, firstBlock, out);
}
double NormalOne(double u) {
  return QuantileAtOne(u, FromUniform{}, TimesFormula{1.0});
}

}  // namespace HWY_NAMESPACE
}  // namespace brenvolt
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace brenvolt {

HWY_EXPORT(NormalsArray);
HWY_EXPORT(LocatedNormalsArray);
HWY_EXPORT(PhiloxArray);
HWY_EXPORT(PhiloxHalfArray);
HWY_EXPORT(RangeArray);
HWY_EXPORT(StrataArray);
HWY_EXPORT(RealStrataArray);

double NormalFromUniform(double u) {
  return HWY_STATIC_DISPATCH(NormalOne)(u);
}

namespace vector_forms {

void NormalsFromUniforms(std::span<const double> u, double sd, std::span<double> out) {
  HWY_DYNAMIC_DISPATCH(NormalsArray)(u, sd, out);
}
void NormalsFromUniforms(std::span<const double> u, double sd, double location, std::span<double> out) {
  HWY_DYNAMIC_DISPATCH(LocatedNormalsArray)(u, sd, location, out);
}
void PhiloxUniforms(std::uint32_t key0, std::uint32_t key1, std::uint64_t firstBlock, std::span<double> out) {
  assert(out.size() % 2 == 0);
  HWY_DYNAMIC_DISPATCH(PhiloxArray)(key0, key1, firstBlock, out);
}
void PhiloxHalves(std::uint32_t key0, std::uint32_t key1, std::uint64_t firstBlock, bool second,
                  std::span<double> out) {
  HWY_DYNAMIC_DISPATCH(PhiloxHalfArray)(key0, key1, firstBlock, second, out);
}

void ProbabilitiesInRange(std::span<const double> u, const ProbabilityRange& range, std::span<double> out) {
  assert(u.size() >= out.size());
  HWY_DYNAMIC_DISPATCH(RangeArray)(u, range, out);
}
void ProbabilitiesInStrata(std::span<const double> u, std::span<const std::int32_t> strata,
                           const ProbabilityRange& range, std::span<double> out) {
  assert(u.size() >= out.size() && strata.size() >= out.size());
  HWY_DYNAMIC_DISPATCH(StrataArray)(u, strata.data(), range, out);
}
void ProbabilitiesInStrata(std::span<const double> u, std::span<const double> strata,
                           const ProbabilityRange& range, std::span<double> out) {
  assert(u.size() >= out.size() && strata.size() >= out.size());
  HWY_DYNAMIC_DISPATCH(RealStrataArray)(u, strata.data(), range, out);
}

}  // namespace vector_forms
}  // namespace brenvolt
#endif
