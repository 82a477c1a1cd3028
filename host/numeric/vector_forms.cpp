// Compiled once per instruction set, which the first call chooses; the scalar forms are those of the set that
// every machine has, on one lane.
#include "host/numeric/vector_forms.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "host/numeric/vector_forms.cpp"
#include "hwy/foreach_target.h"
// After foreach_target.h:
#include <algorithm>
#include <cassert>

#include "host/numeric/distributions.h"
#include "host/numeric/vector_formulas-inl.h"
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace brenvolt {
namespace HWY_NAMESPACE {
namespace {

// Formulas as objects: operator()(d, x) over vectors, parameters as members.

struct ExpFormula {
  template <class D, class V>
  HWY_INLINE V operator()(D d, V x) const {
    return Exp(d, x);
  }
};

struct LogFormula {
  template <class D, class V>
  HWY_INLINE V operator()(D d, V x) const {
    return Log(d, x);
  }
};

struct Expm1Formula {
  template <class D, class V>
  HWY_INLINE V operator()(D d, V x) const {
    return Expm1(d, x);
  }
};

struct Log1pFormula {
  template <class D, class V>
  HWY_INLINE V operator()(D d, V x) const {
    return Log1p(d, x);
  }
};

struct NormalCdfFormula {
  double location;
  double scale;
  template <class D, class V>
  HWY_INLINE V operator()(D d, V x) const {
    return StandardCdf(d, hn::Div(hn::Sub(x, hn::Set(d, location)), hn::Set(d, scale)));
  }
};

// The exponent's share of ln y is an exact product from which `scale` is taken first, so that a small shape
// does not magnify the rounding of a large logarithm.
struct LognormalCdfFormula {
  double scale;
  double shape;
  double threshold;
  template <class D, class V>
  HWY_INLINE V operator()(D d, V x) const {
    const V y = hn::Sub(x, hn::Set(d, threshold));
    const Logarithm<V> log = SplitLog(d, y);
    const V rest = hn::Add(log.leading, hn::Add(log.rest, hn::Mul(log.exponent, hn::Set(d, kLogTwoLow))));
    const V leading = hn::Sub(hn::Mul(log.exponent, hn::Set(d, kLogTwoHigh)), hn::Set(d, scale));
    V result = StandardCdf(d, hn::Div(hn::Add(leading, rest), hn::Set(d, shape)));
    result = hn::IfThenElse(hn::Le(y, hn::Zero(d)), hn::Zero(d), result);
    result = hn::IfThenElse(hn::Eq(y, hn::Set(d, kVectorInfinity)), hn::Set(d, 1.0), result);
    return hn::IfThenElse(hn::IsNaN(x), x, result);
  }
};

struct WeibullCdfFormula {
  double scale;
  double shape;
  double threshold;
  template <class D, class V>
  HWY_INLINE V operator()(D d, V x) const {
    const V y = hn::Sub(x, hn::Set(d, threshold));
    const V hazard = Exp(d, hn::Mul(hn::Set(d, shape), Log(d, hn::Div(y, hn::Set(d, scale)))));
    const V result = hn::IfThenElseZero(hn::Gt(y, hn::Zero(d)), hn::Neg(Expm1(d, hn::Neg(hazard))));
    return hn::IfThenElse(hn::IsNaN(x), x, result);
  }
};

// `result` where p is a probability; NaN and kInvalidQuantile elsewhere.
template <class D, class V>
HWY_INLINE V ForProbabilities(D d, V p, V result) {
  const auto isValid = hn::And(hn::Ge(p, hn::Zero(d)), hn::Le(p, hn::Set(d, 1.0)));
  const V refused = hn::IfThenElse(hn::IsNaN(p), p, hn::Set(d, kInvalidQuantile));
  return hn::IfThenElse(isValid, result, refused);
}

struct WeibullQuantileFormula {
  double scale;
  double inverseShape;
  double threshold;
  template <class D, class V>
  HWY_INLINE V operator()(D d, V p) const {
    const V hazard = hn::Neg(Log1p(d, hn::Neg(p)));
    // Clears the sign of a zero, whose logarithm is -infinity either way.
    const V power = Exp(d, hn::Mul(hn::Set(d, inverseShape), Log(d, hn::Abs(hazard))));
    return ForProbabilities(d, p, hn::Add(hn::Set(d, threshold), hn::Mul(hn::Set(d, scale), power)));
  }
};

// out[i] = formula(x[i]); a last part of a vector is padded.
template <class Formula>
void OverArray(std::span<const double> x, std::span<double> out, Formula formula) {
  assert(out.size() >= x.size());
  const hn::ScalableTag<double> d;
  const std::size_t lanes = hn::Lanes(d);
  const std::size_t whole = x.size() - x.size() % lanes;
  for (std::size_t i = 0; i < whole; i += lanes) {
    hn::StoreU(formula(d, hn::LoadU(d, x.data() + i)), d, out.data() + i);
  }
  const std::size_t rest = x.size() - whole;
  if (rest == 0) return;
  HWY_ALIGN double padded[hn::MaxLanes(d)] = {};
  std::copy_n(x.data() + whole, rest, padded);
  hn::Store(formula(d, hn::Load(d, padded)), d, padded);
  std::copy_n(padded, rest, out.data() + whole);
}

using OneLane = hn::CappedTag<double, 1>;

template <class Formula>
double AtOne(double x, Formula formula) {
  const OneLane d;
  return hn::GetLane(formula(d, hn::Set(d, x)));
}

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

struct NormalQuantileFormula {
  double location;
  double scale;
  template <class D, class V>
  HWY_INLINE V operator()(D d, V p, V z) const {
    return ForProbabilities(d, p, hn::Add(hn::Set(d, location), hn::Mul(hn::Set(d, scale), z)));
  }
};

struct LognormalQuantileFormula {
  double scale;
  double shape;
  double threshold;
  template <class D, class V>
  HWY_INLINE V operator()(D d, V p, V z) const {
    const V y = Exp(d, hn::Add(hn::Set(d, scale), hn::Mul(hn::Set(d, shape), z)));
    return ForProbabilities(d, p, hn::Add(hn::Set(d, threshold), y));
  }
};

struct TimesFormula {
  double factor;
  template <class D, class V>
  HWY_INLINE V operator()(D d, V /*u*/, V z) const {
    return hn::Mul(hn::Set(d, factor), z);
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

constexpr std::size_t kBlock = 512;     // values at a time, that stay in the nearest cache
constexpr std::size_t kMostLanes = 64;  // room behind a block for whole vectors

// The z of one block: the centre of all, then the few in the tails, packed.
template <class Source>
HWY_INLINE void QuantilesOfBlock(const double* x, std::size_t count, Source source, double* z) {
  const hn::ScalableTag<double> d;
  const hn::Rebind<std::uint64_t, decltype(d)> du;
  const std::size_t lanes = hn::Lanes(d);
  HWY_ALIGN double tails[kBlock + kMostLanes];
  HWY_ALIGN std::uint64_t places[kBlock + kMostLanes];
  std::size_t tailCount = 0;
  for (std::size_t i = 0; i < count; i += lanes) {
    const auto tail = source(d, hn::LoadU(d, x + i));
    const auto q = hn::Sub(tail.probability, hn::Set(d, 0.5));
    hn::Store(WithSign(d, tail.isLower, CentreQuantile(d, q)), d, z + i);
    const auto isTail = hn::Lt(q, hn::Set(d, kCentre));
    const auto signedTail = WithSign(d, tail.isLower, hn::Abs(tail.probability));
    hn::CompressStore(hn::Iota(du, i), hn::RebindMask(du, isTail), du, places + tailCount);
    tailCount += hn::CompressStore(signedTail, isTail, d, tails + tailCount);
  }
  std::fill_n(tails + tailCount, lanes, 0.01);
  for (std::size_t i = 0; i < tailCount; i += lanes) {
    hn::StoreU(SignedTailQuantile(d, hn::LoadU(d, tails + i)), d, tails + i);
  }
  for (std::size_t i = 0; i < tailCount; ++i) z[places[i]] = tails[i];
}

template <class Source, class Formula>
void QuantilesOverArray(std::span<const double> x, std::span<double> out, Source source, Formula formula) {
  assert(out.size() >= x.size());
  const hn::ScalableTag<double> d;
  const std::size_t lanes = hn::Lanes(d);
  static_assert(hn::MaxLanes(d) <= kMostLanes);
  HWY_ALIGN double z[kBlock + kMostLanes];
  HWY_ALIGN double padded[kMostLanes];
  std::size_t begin = 0;
  const std::size_t whole = x.size() - x.size() % lanes;
  while (begin < whole) {
    const std::size_t count = std::min(kBlock, whole - begin);
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

// Ten rounds on a vector of blocks, a 32-bit word in the low half of each lane; the upper halves hold
// anything. Multipliers and key increments: Salmon, Moraes, Dror & Shaw (2011).
template <class D, class V = hn::Vec<D>>
HWY_INLINE void PhiloxRounds(D du, std::uint32_t key0, std::uint32_t key1, V (&words)[4]) {
  constexpr std::uint32_t kMultiplier0 = 0xD2511F53;
  constexpr std::uint32_t kMultiplier1 = 0xCD9E8D57;
  constexpr std::uint32_t kIncrement0 = 0x9E3779B9;
  constexpr std::uint32_t kIncrement1 = 0xBB67AE85;
  constexpr int kRounds = 10;
  for (int round = 0; round < kRounds; ++round) {
    const V product0 = TimesWord(du, words[0], kMultiplier0);
    const V product1 = TimesWord(du, words[2], kMultiplier1);
    words[0] = hn::Xor3(hn::template ShiftRight<32>(product1), words[1], hn::Set(du, std::uint64_t{key0}));
    words[1] = product1;
    words[2] = hn::Xor3(hn::template ShiftRight<32>(product0), words[3], hn::Set(du, std::uint64_t{key1}));
    words[3] = product0;
    key0 += kIncrement0;
    key1 += kIncrement1;
  }
}

// (high 2^32 + low >> 11) 2^-53, with the words placed in the mantissas of 2^20 and 1/2, whose last bits
// count 2^-32 and 2^-53.
template <class D, class V>
HWY_INLINE hn::Vec<hn::Rebind<double, D>> Deviates(D du, V low, V high) {
  const hn::Rebind<double, D> d;
  constexpr std::uint64_t kHighBits = 0x4130000000000000ULL;  // 2^20
  constexpr std::uint64_t kLowBits = 0x3FE0000000000000ULL;   // 2^-1
  const V highWord = hn::And(high, hn::Set(du, std::uint64_t{0xFFFFFFFF}));
  const V lowWord = hn::template ShiftRight<43>(hn::template ShiftLeft<32>(low));
  const auto highPart = hn::BitCast(d, hn::Or(highWord, hn::Set(du, kHighBits)));
  const auto lowPart = hn::BitCast(d, hn::Or(lowWord, hn::Set(du, kLowBits)));
  return hn::Add(hn::Sub(highPart, hn::Set(d, 0x1p20 + 0.5)), lowPart);
}

void Philox(std::uint32_t key0, std::uint32_t key1, std::uint64_t firstBlock, std::span<double> out) {
  const hn::ScalableTag<std::uint64_t> du;
  const hn::Rebind<double, decltype(du)> d;
  const std::size_t lanes = hn::Lanes(du);
  HWY_ALIGN double buffer[2 * hn::MaxLanes(du)];
  for (std::size_t i = 0; i < out.size(); i += 2 * lanes) {
    const auto block = hn::Iota(du, firstBlock + i / 2);
    hn::Vec<decltype(du)> words[4] = {block, hn::template ShiftRight<32>(block), hn::Zero(du), hn::Zero(du)};
    PhiloxRounds(du, key0, key1, words);
    const auto even = Deviates(du, words[0], words[1]);
    const auto odd = Deviates(du, words[2], words[3]);
    const std::size_t rest = out.size() - i;
    if (rest >= 2 * lanes) {
      hn::StoreInterleaved2(even, odd, d, out.data() + i);
    } else {
      hn::StoreInterleaved2(even, odd, d, buffer);
      std::copy_n(buffer, rest, out.data() + i);
    }
  }
}

}  // namespace

// Entries for the dispatch: arrays, then one value.

using In = std::span<const double>;
using Out = std::span<double>;

void ExpArray(In x, Out out) {
  OverArray(x, out, ExpFormula{});
}
void LogArray(In x, Out out) {
  OverArray(x, out, LogFormula{});
}
void Expm1Array(In x, Out out) {
  OverArray(x, out, Expm1Formula{});
}
void Log1pArray(In x, Out out) {
  OverArray(x, out, Log1pFormula{});
}
void NormalCdfArray(In x, double location, double scale, Out out) {
  OverArray(x, out, NormalCdfFormula{location, scale});
}
void LognormalCdfArray(In x, double scale, double shape, double threshold, Out out) {
  OverArray(x, out, LognormalCdfFormula{scale, shape, threshold});
}
void WeibullCdfArray(In x, double scale, double shape, double threshold, Out out) {
  OverArray(x, out, WeibullCdfFormula{scale, shape, threshold});
}
void NormalQuantileArray(In p, double location, double scale, Out out) {
  QuantilesOverArray(p, out, FromProbability{}, NormalQuantileFormula{location, scale});
}
void LognormalQuantileArray(In p, double scale, double shape, double threshold, Out out) {
  QuantilesOverArray(p, out, FromProbability{}, LognormalQuantileFormula{scale, shape, threshold});
}
void WeibullQuantileArray(In p, double scale, double shape, double threshold, Out out) {
  OverArray(p, out, WeibullQuantileFormula{scale, 1.0 / shape, threshold});
}
void NormalsArray(In u, double sd, Out out) {
  QuantilesOverArray(u, out, FromUniform{}, TimesFormula{sd});
}
void PhiloxArray(std::uint32_t key0, std::uint32_t key1, std::uint64_t firstBlock, Out out) {
  Philox(key0, key1, firstBlock, out);
}

double ExpOne(double x) {
  return AtOne(x, ExpFormula{});
}
double LogOne(double x) {
  return AtOne(x, LogFormula{});
}
double Expm1One(double x) {
  return AtOne(x, Expm1Formula{});
}
double Log1pOne(double x) {
  return AtOne(x, Log1pFormula{});
}
double NormalCdfOne(double x, double location, double scale) {
  return AtOne(x, NormalCdfFormula{location, scale});
}
double LognormalCdfOne(double x, double scale, double shape, double threshold) {
  return AtOne(x, LognormalCdfFormula{scale, shape, threshold});
}
double WeibullCdfOne(double x, double scale, double shape, double threshold) {
  return AtOne(x, WeibullCdfFormula{scale, shape, threshold});
}
double NormalQuantileOne(double p, double location, double scale) {
  return QuantileAtOne(p, FromProbability{}, NormalQuantileFormula{location, scale});
}
double LognormalQuantileOne(double p, double scale, double shape, double threshold) {
  return QuantileAtOne(p, FromProbability{}, LognormalQuantileFormula{scale, shape, threshold});
}
double WeibullQuantileOne(double p, double scale, double shape, double threshold) {
  return AtOne(p, WeibullQuantileFormula{scale, 1.0 / shape, threshold});
}
double NormalOne(double u) {
  return QuantileAtOne(u, FromUniform{}, TimesFormula{1.0});
}

}  // namespace HWY_NAMESPACE
}  // namespace brenvolt
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace brenvolt {

HWY_EXPORT(ExpArray);
HWY_EXPORT(LogArray);
HWY_EXPORT(Expm1Array);
HWY_EXPORT(Log1pArray);
HWY_EXPORT(NormalCdfArray);
HWY_EXPORT(LognormalCdfArray);
HWY_EXPORT(WeibullCdfArray);
HWY_EXPORT(NormalQuantileArray);
HWY_EXPORT(LognormalQuantileArray);
HWY_EXPORT(WeibullQuantileArray);
HWY_EXPORT(NormalsArray);
HWY_EXPORT(PhiloxArray);

double StandardNormalCdf(double z) {
  return HWY_STATIC_DISPATCH(NormalCdfOne)(z, 0.0, 1.0);
}

double StandardNormalQuantile(double p) {
  return HWY_STATIC_DISPATCH(NormalQuantileOne)(p, 0.0, 1.0);
}

double NormalFromUniform(double u) {
  return HWY_STATIC_DISPATCH(NormalOne)(u);
}

namespace elementary {

double Exp(double x) {
  return HWY_STATIC_DISPATCH(ExpOne)(x);
}
double Log(double x) {
  return HWY_STATIC_DISPATCH(LogOne)(x);
}
double Expm1(double x) {
  return HWY_STATIC_DISPATCH(Expm1One)(x);
}
double Log1p(double x) {
  return HWY_STATIC_DISPATCH(Log1pOne)(x);
}
void Exp(std::span<const double> x, std::span<double> out) {
  HWY_DYNAMIC_DISPATCH(ExpArray)(x, out);
}
void Log(std::span<const double> x, std::span<double> out) {
  HWY_DYNAMIC_DISPATCH(LogArray)(x, out);
}
void Expm1(std::span<const double> x, std::span<double> out) {
  HWY_DYNAMIC_DISPATCH(Expm1Array)(x, out);
}
void Log1p(std::span<const double> x, std::span<double> out) {
  HWY_DYNAMIC_DISPATCH(Log1pArray)(x, out);
}

}  // namespace elementary

namespace vector_forms {

double NormalCdf(double x, double location, double scale) {
  return HWY_STATIC_DISPATCH(NormalCdfOne)(x, location, scale);
}
double LognormalCdf(double x, double scale, double shape, double threshold) {
  return HWY_STATIC_DISPATCH(LognormalCdfOne)(x, scale, shape, threshold);
}
double WeibullCdf(double x, double scale, double shape, double threshold) {
  return HWY_STATIC_DISPATCH(WeibullCdfOne)(x, scale, shape, threshold);
}
double NormalQuantile(double p, double location, double scale) {
  return HWY_STATIC_DISPATCH(NormalQuantileOne)(p, location, scale);
}
double LognormalQuantile(double p, double scale, double shape, double threshold) {
  return HWY_STATIC_DISPATCH(LognormalQuantileOne)(p, scale, shape, threshold);
}
double WeibullQuantile(double p, double scale, double shape, double threshold) {
  return HWY_STATIC_DISPATCH(WeibullQuantileOne)(p, scale, shape, threshold);
}
void NormalCdf(std::span<const double> x, double location, double scale, std::span<double> out) {
  HWY_DYNAMIC_DISPATCH(NormalCdfArray)(x, location, scale, out);
}
void LognormalCdf(std::span<const double> x, double scale, double shape, double threshold,
                  std::span<double> out) {
  HWY_DYNAMIC_DISPATCH(LognormalCdfArray)(x, scale, shape, threshold, out);
}
void WeibullCdf(std::span<const double> x, double scale, double shape, double threshold,
                std::span<double> out) {
  HWY_DYNAMIC_DISPATCH(WeibullCdfArray)(x, scale, shape, threshold, out);
}
void NormalQuantile(std::span<const double> p, double location, double scale, std::span<double> out) {
  HWY_DYNAMIC_DISPATCH(NormalQuantileArray)(p, location, scale, out);
}
void LognormalQuantile(std::span<const double> p, double scale, double shape, double threshold,
                       std::span<double> out) {
  HWY_DYNAMIC_DISPATCH(LognormalQuantileArray)(p, scale, shape, threshold, out);
}
void WeibullQuantile(std::span<const double> p, double scale, double shape, double threshold,
                     std::span<double> out) {
  HWY_DYNAMIC_DISPATCH(WeibullQuantileArray)(p, scale, shape, threshold, out);
}
void NormalsFromUniforms(std::span<const double> u, double sd, std::span<double> out) {
  HWY_DYNAMIC_DISPATCH(NormalsArray)(u, sd, out);
}
void PhiloxUniforms(std::uint32_t key0, std::uint32_t key1, std::uint64_t firstBlock, std::span<double> out) {
  assert(out.size() % 2 == 0);
  HWY_DYNAMIC_DISPATCH(PhiloxArray)(key0, key1, firstBlock, out);
}

}  // namespace vector_forms
}  // namespace brenvolt
#endif
