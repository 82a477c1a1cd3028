// The formulas of vector_forms.h over vectors of any length; included once per instruction set.
//
// Source of the accuracy: reductions whose leading parts are exact, so that only small corrections round.
#if defined(HOST_NUMERIC_VECTOR_FORMULAS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef HOST_NUMERIC_VECTOR_FORMULAS_INL_H_
#undef HOST_NUMERIC_VECTOR_FORMULAS_INL_H_
#else
#define HOST_NUMERIC_VECTOR_FORMULAS_INL_H_
#endif

#include <cstddef>
#include <cstdint>
#include <limits>

#include "host/numeric/vector/standard_normal.h"
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace brenvolt {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

inline constexpr double kVectorInfinity = std::numeric_limits<double>::infinity();
// Adding it rounds to a whole number, which is then in the low bits.
inline constexpr double kRounder = 0x1.8p52;
inline constexpr int kMantissaBits = 52;

// Vectors that go through the steps of a long formula together, so that none waits for its own last step: as
// many as the registers hold.
inline constexpr std::size_t kTogether = HWY_TARGET <= HWY_AVX3 ? 4 : 2;

// Polynomial with coefficients from the highest power down.
template <class D, class V, std::size_t kSize>
HWY_INLINE V Horner(D d, const double (&coefficients)[kSize], V x) {
  V sum = hn::Set(d, coefficients[0]);
  for (std::size_t i = 1; i < kSize; ++i) sum = hn::Add(hn::Mul(sum, x), hn::Set(d, coefficients[i]));
  return sum;
}

// Ratios of two polynomials of one degree at several vectors. They go through the steps together, as the
// processor's window is too short for it to find a second vector's steps behind those of the first.
template <class D, class V, std::size_t kGroups, std::size_t kSize>
HWY_INLINE void HornerRatios(D d, const double (&above)[kSize], const double (&below)[kSize],
                             const V (&x)[kGroups], V (&ratios)[kGroups]) {
  V divisors[kGroups];
  for (std::size_t g = 0; g < kGroups; ++g) {
    ratios[g] = hn::Set(d, above[0]);
    divisors[g] = hn::Set(d, below[0]);
  }
  for (std::size_t i = 1; i < kSize; ++i) {
    for (std::size_t g = 0; g < kGroups; ++g) {
      ratios[g] = hn::Add(hn::Mul(ratios[g], x[g]), hn::Set(d, above[i]));
      divisors[g] = hn::Add(hn::Mul(divisors[g], x[g]), hn::Set(d, below[i]));
    }
  }
  for (std::size_t g = 0; g < kGroups; ++g) ratios[g] = hn::Div(ratios[g], divisors[g]);
}

// The same as two sums in x^2, of the odd and the even powers, that do not wait for each other.
template <class D, class V, std::size_t kSize>
HWY_INLINE V TwofoldHorner(D d, const double (&coefficients)[kSize], V x) {
  const V x2 = hn::Mul(x, x);
  V upper = hn::Set(d, coefficients[0]);
  V lower = hn::Set(d, coefficients[1]);
  for (std::size_t i = 2; i < kSize; ++i) {
    const V sum = hn::Add(hn::Mul(upper, x2), hn::Set(d, coefficients[i]));
    upper = lower;
    lower = sum;
  }
  return hn::Add(hn::Mul(upper, x), lower);
}

// ln x = exponent ln 2 + (leading + rest) for positive finite x: x = 2^exponent m, m in [sqrt(1/2), sqrt 2),
// leading = m - 1 exactly, ln m = 2 artanh s = 2 s + s S(s^2), s = (m - 1) / (m + 1). S is the Chebyshev
// interpolant of degree 6, relative error 5e-16 of a part that is a hundredth of the whole at most.
template <class V>
struct Logarithm {
  V exponent;
  V leading;
  V rest;
};

// A normal x has no need of kMayBeSubnormal.
inline constexpr bool kMayBeSubnormal = true;

template <bool kAnySize = kMayBeSubnormal, class D, class V = hn::Vec<D>>
HWY_INLINE Logarithm<V> SplitLog(D d, V x) {
  static constexpr double kSeries[] = {0.14616449685088906, 0.1533172160055169,  0.1818288912526188,
                                       0.22222211134795078, 0.28571428625975487, 0.39999999999899505,
                                       0.666666666666667};
  constexpr std::uint64_t kSqrtHalfBits = 0x3FE6A09E667F3BCDULL;
  constexpr std::uint64_t kBias = std::uint64_t{1024} << kMantissaBits;
  constexpr std::uint64_t kMantissaMask = (std::uint64_t{1} << kMantissaBits) - 1;
  constexpr std::uint64_t kWholeBits = 0x4330000000000000ULL;  // 2^52, whose last mantissa bit counts 1
  const hn::Rebind<std::uint64_t, D> du;
  auto bits = hn::BitCast(du, x);
  V offset = hn::Set(d, 0x1p52 + 1024.0);
  if constexpr (kAnySize) {
    const auto isSubnormal = hn::Lt(x, hn::Set(d, std::numeric_limits<double>::min()));
    bits = hn::BitCast(du, hn::IfThenElse(isSubnormal, hn::Mul(x, hn::Set(d, 0x1p54)), x));
    offset = hn::IfThenElse(isSubnormal, hn::Set(d, 0x1p52 + 1024.0 + 54.0), offset);
  }
  const auto biased = hn::Add(bits, hn::Set(du, kBias - kSqrtHalfBits));
  const auto whole =
      hn::BitCast(d, hn::Or(hn::template ShiftRight<kMantissaBits>(biased), hn::Set(du, kWholeBits)));
  const V exponent = hn::Sub(whole, offset);
  const auto mBits = hn::Add(hn::And(biased, hn::Set(du, kMantissaMask)), hn::Set(du, kSqrtHalfBits));
  const V m = hn::BitCast(d, mBits);
  const V one = hn::Set(d, 1.0);
  const V f = hn::Sub(m, one);
  const V s = hn::Div(f, hn::Add(m, one));
  const V s2 = hn::Mul(s, s);
  // 2 s = f - s f, which keeps the leading part free of the division's rounding.
  return {exponent, f, hn::Mul(s, hn::Sub(hn::Mul(s2, TwofoldHorner(d, kSeries, s2)), f))};
}

// ln x for positive finite x.
template <bool kAnySize = kMayBeSubnormal, class D, class V = hn::Vec<D>>
HWY_INLINE V LogOfPositive(D d, V x) {
  const Logarithm<V> log = SplitLog<kAnySize>(d, x);
  const V rest = hn::Add(log.rest, hn::Mul(log.exponent, hn::Set(d, kLogTwoLow)));
  return hn::Add(hn::Mul(log.exponent, hn::Set(d, kLogTwoHigh)), hn::Add(log.leading, rest));
}

template <class D, class V = hn::Vec<D>>
HWY_INLINE V Log(D d, V x) {
  const V infinity = hn::Set(d, kVectorInfinity);
  const auto isNormal =
      hn::And(hn::Ge(x, hn::Set(d, std::numeric_limits<double>::min())), hn::Lt(x, infinity));
  if (HWY_LIKELY(hn::AllTrue(d, isNormal))) return LogOfPositive<!kMayBeSubnormal>(d, x);
  const V zero = hn::Zero(d);
  V y = LogOfPositive(d, x);
  y = hn::IfThenElse(hn::Eq(x, infinity), infinity, y);
  y = hn::IfThenElse(hn::Eq(x, zero), hn::Neg(infinity), y);
  return hn::IfThenElse(hn::Ge(x, zero), y, hn::Set(d, std::numeric_limits<double>::quiet_NaN()));
}

// ln(1 + x): the rounding of u = 1 + x made good by c / u.
template <class D, class V = hn::Vec<D>>
HWY_INLINE V Log1p(D d, V x) {
  const V one = hn::Set(d, 1.0);
  const V zero = hn::Zero(d);
  const V u = hn::Add(one, x);
  const V c = hn::IfThenElse(hn::Gt(x, one), hn::Sub(one, hn::Sub(u, x)), hn::Sub(x, hn::Sub(u, one)));
  const V y = hn::Add(LogOfPositive<!kMayBeSubnormal>(d, u), hn::Div(c, u));
  const auto isRegular = hn::And(hn::Gt(u, zero), hn::Lt(u, hn::Set(d, kVectorInfinity)));
  return hn::IfThenElse(hn::Eq(x, zero), x, hn::IfThenElse(isRegular, y, Log(d, u)));
}

// ln(1 - p) for p in [0, 1]. The rounding c of u = 1 - p is 0 for p >= 1/2; below, the c / u that it calls
// for is c to within 1e-16 of the result.
template <class D, class V = hn::Vec<D>>
HWY_INLINE V LogOfComplement(D d, V p) {
  const V one = hn::Set(d, 1.0);
  const V u = hn::Sub(one, p);
  const V c = hn::Sub(hn::Sub(one, u), p);
  const V y = hn::Add(LogOfPositive<!kMayBeSubnormal>(d, u), c);
  return hn::IfThenElse(hn::Eq(p, one), hn::Set(d, -kVectorInfinity), y);
}

// 2^k for whole k in [-1022, 1023].
template <class D, class V = hn::Vec<D>>
HWY_INLINE V PowerOfTwo(D d, V k) {
  const hn::Rebind<std::uint64_t, D> du;
  const auto bits = hn::BitCast(du, hn::Add(k, hn::Set(d, kRounder + 1023.0)));
  return hn::BitCast(d, hn::template ShiftLeft<kMantissaBits>(bits));
}

template <class D, class V = hn::Vec<D>>
HWY_INLINE V RoundToWhole(D d, V x) {
  return hn::Sub(hn::Add(x, hn::Set(d, kRounder)), hn::Set(d, kRounder));
}

// exp(x + low...) = 2^power (1 + excess), |excess| < 0.42, for |x| < 1e4 and a small low, if any.
template <class V>
struct Exponential {
  V power;
  V excess;
};

template <class D, class V = hn::Vec<D>, class... Low>
HWY_INLINE Exponential<V> SplitExp(D d, V x, Low... low) {
  // (exp(r) - 1 - r) / r^2: the Chebyshev interpolant of degree 9, relative error 3e-16.
  static constexpr double kSeries[] = {2.510038549551032e-08,  2.7620088445409746e-07, 2.7557268459997064e-06,
                                       2.4801521295954376e-05, 0.00019841269863053618, 0.0013888888917213717,
                                       0.008333333333330062,   0.04166666666662413,    0.16666666666666669,
                                       0.5000000000000001};
  const V k = RoundToWhole(d, hn::Mul(x, hn::Set(d, std::numbers::log2e)));
  const V main = hn::Sub(x, hn::Mul(k, hn::Set(d, kLogTwoHigh)));
  V r = hn::Sub(main, hn::Mul(k, hn::Set(d, kLogTwoLow)));
  ((r = hn::Add(r, low)), ...);
  return {k, hn::Add(r, hn::Mul(hn::Mul(r, r), TwofoldHorner(d, kSeries, r)))};
}

// v 2^k for |v| in [2^-20, 2] and k in [-1990, 1024], in two steps, of which the first is exact, so that the
// result may be subnormal.
template <class D, class V = hn::Vec<D>>
HWY_INLINE V TimesPowerOfTwo(D d, V v, V k) {
  constexpr double kFar = 1000.0;
  const hn::Rebind<std::uint64_t, D> du;
  const auto isFar = hn::Lt(k, hn::Set(d, -kFar));
  const V bias = hn::IfThenElse(isFar, hn::Set(d, kRounder + 1022.0 + kFar), hn::Set(d, kRounder + 1022.0));
  const V power = hn::BitCast(d, hn::template ShiftLeft<kMantissaBits>(hn::BitCast(du, hn::Add(k, bias))));
  return hn::Mul(hn::Mul(v, power), hn::IfThenElse(isFar, hn::Set(d, 0x1p-999), hn::Set(d, 2.0)));
}

inline constexpr double kExpUnderflow = -746.0;
inline constexpr double kExpOverflow = 710.0;

// Below this size of x, exp(x) and all steps to it are normal numbers.
inline constexpr double kExpNormal = 708.0;

// The longer way gives the bits of the shorter one if both will do.
template <class D, class V = hn::Vec<D>>
HWY_INLINE V Exp(D d, V x) {
  const V one = hn::Set(d, 1.0);
  if (HWY_LIKELY(hn::AllTrue(d, hn::Lt(hn::Abs(x), hn::Set(d, kExpNormal))))) {
    const Exponential<V> e = SplitExp(d, x);
    return hn::Mul(hn::Add(one, e.excess), PowerOfTwo(d, e.power));
  }
  const V within = hn::Max(hn::Min(x, hn::Set(d, kExpOverflow)), hn::Set(d, kExpUnderflow));
  const Exponential<V> e = SplitExp(d, within);
  return hn::IfThenElse(hn::IsNaN(x), x, TimesPowerOfTwo(d, hn::Add(one, e.excess), e.power));
}

// exp(x) if only its place among normal numbers counts: x held to [-708, 709], a NaN to anything.
template <class D, class V = hn::Vec<D>>
HWY_INLINE V ClampedExp(D d, V x) {
  const V within = hn::Max(hn::Min(x, hn::Set(d, 709.0)), hn::Set(d, -kExpNormal));
  const Exponential<V> e = SplitExp(d, within);
  return hn::Mul(hn::Add(hn::Set(d, 1.0), e.excess), PowerOfTwo(d, e.power));
}

// exp(x) - 1 = 2 (s excess + (s - 1/2)), s = 2^(power - 1): the halves keep s finite at the upper end.
template <class D, class V = hn::Vec<D>>
HWY_INLINE V Expm1(D d, V x) {
  constexpr double kAllButOne = -50.0;  // below it the result rounds to -1
  constexpr double kTiny = 0x1p-60;     // below it the result is x
  const V within = hn::Max(hn::Min(x, hn::Set(d, kExpOverflow)), hn::Set(d, kAllButOne));
  const Exponential<V> e = SplitExp(d, within);
  const V s = PowerOfTwo(d, hn::Sub(e.power, hn::Set(d, 1.0)));
  const V half = hn::Add(hn::Mul(s, e.excess), hn::Sub(s, hn::Set(d, 0.5)));
  const auto isLarge = hn::Ge(hn::Abs(x), hn::Set(d, kTiny));
  return hn::IfThenElse(isLarge, hn::Add(half, half), x);
}

// P(Z <= z). With a = |z|, (a + 5) exp(a^2 / 2) P(Z <= -a) is a polynomial in u = (5/4 a - 5) / (a + 5),
// which runs from -1 at a = 0 to 1 at a = 40; its coefficients are those of the Chebyshev interpolant of
// degree 20, relative error 4e-16. a^2 is formed exactly from a short leading part of a and the rest.
template <class D, class V = hn::Vec<D>>
HWY_INLINE V StandardCdf(D d, V z) {
  static constexpr double kScaledTail[] = {
      2.3343889890540847e-10, -1.3408330191275695e-09, -3.6620795312196464e-09, 1.7329859278196154e-08,
      3.72131887884614e-08,   -1.6292424336109805e-07, -3.1407499772142164e-07, 1.62950706771467e-06,
      1.9813748441076537e-06, -1.8308474386299975e-05, 4.026944197191261e-06,   0.00019836118393340522,
      -0.0005313521456081611, -0.0008922359409187841,  0.011238259242670889,    -0.046439848476985776,
      0.12948165075057605,    -0.2781194819583972,     0.48437498414282854,     -0.7004649271683167,
      0.8496957717177205};
  constexpr std::uint64_t kShortMask = ~std::uint64_t{0} << 27;
  constexpr double kReach = 40.0;  // P(Z <= -40) is below the smallest double
  const hn::Rebind<std::uint64_t, D> du;
  const V one = hn::Set(d, 1.0);
  const V five = hn::Set(d, 5.0);
  const V a = hn::Min(hn::Abs(z), hn::Set(d, kReach));
  const V inverse = hn::Div(one, hn::Add(a, five));
  const V u = hn::Mul(hn::Sub(hn::Mul(hn::Set(d, 1.25), a), five), inverse);
  const V scaled = hn::Mul(Horner(d, kScaledTail, u), inverse);

  const V leading = hn::BitCast(d, hn::And(hn::BitCast(du, a), hn::Set(du, kShortMask)));
  const V minusHalf = hn::Set(d, -0.5);
  const V high = hn::Mul(minusHalf, hn::Mul(leading, leading));
  const V low = hn::Mul(minusHalf, hn::Mul(hn::Sub(a, leading), hn::Add(a, leading)));
  const Exponential<V> e = SplitExp(d, high, low);
  const V tail = TimesPowerOfTwo(d, hn::Mul(scaled, hn::Add(one, e.excess)), e.power);
  const V result = hn::IfThenElse(hn::Gt(z, hn::Zero(d)), hn::Sub(one, tail), tail);
  return hn::IfThenElse(hn::IsNaN(z), z, result);
}

// The z <= 0 with P(Z <= z) = p, for 0 < p <= 1/2: Wichura (1988), algorithm AS 241, routine PPND16. Its
// centre, p >= 0.075, and its tail, apart, since the tail costs more and few values need it. Several vectors
// at a time.
inline constexpr double kCentre = -0.425;  // the least p - 1/2 of the centre

template <class D, class V, std::size_t kGroups>
HWY_INLINE void CentreQuantiles(D d, const V (&q)[kGroups], V (&z)[kGroups]) {
  static constexpr double kA[] = {
      2.5090809287301226727e+3, 3.3430575583588128105e+4, 6.7265770927008700853e+4, 4.5921953931549871457e+4,
      1.3731693765509461125e+4, 1.9715909503065514427e+3, 1.3314166789178437745e+2, 3.3871328727963666080e+0};
  static constexpr double kB[] = {
      5.2264952788528545610e+3, 2.8729085735721942674e+4, 3.9307895800092710610e+4, 2.1213794301586595867e+4,
      5.3941960214247511077e+3, 6.8718700749205790830e+2, 4.2313330701600911252e+1, 1.0};
  V r[kGroups];
  for (std::size_t g = 0; g < kGroups; ++g) r[g] = hn::Sub(hn::Set(d, 0.180625), hn::Mul(q[g], q[g]));
  HornerRatios(d, kA, kB, r, z);
  for (std::size_t g = 0; g < kGroups; ++g) z[g] = hn::Mul(q[g], z[g]);
}

// The tail in two steps: its argument of p > 0, then the z of the argument.
template <class D, class V = hn::Vec<D>>
HWY_INLINE V TailArgument(D d, V p) {
  return hn::Sqrt(hn::Neg(LogOfPositive(d, p)));
}

template <class D, class V, std::size_t kGroups>
HWY_INLINE void TailQuantiles(D d, const V (&r)[kGroups], V (&z)[kGroups]) {
  static constexpr double kC[] = {7.74545014278341407640e-4, 2.27238449892691845833e-2,
                                  2.41780725177450611770e-1, 1.27045825245236838258e+0,
                                  3.64784832476320460504e+0, 5.76949722146069140550e+0,
                                  4.63033784615654529590e+0, 1.42343711074968357734e+0};
  static constexpr double kD[] = {1.05075007164441684324e-9, 5.47593808499534494600e-4,
                                  1.51986665636164571966e-2, 1.48103976427480074590e-1,
                                  6.89767334985100004550e-1, 1.67638483018380384940e+0,
                                  2.05319162663775882187e+0, 1.0};
  static constexpr double kE[] = {2.01033439929228813265e-7, 2.71155556874348757815e-5,
                                  1.24266094738807843860e-3, 2.65321895265761230930e-2,
                                  2.96560571828504891230e-1, 1.78482653991729133580e+0,
                                  5.46378491116411436990e+0, 6.65790464350110377720e+0};
  static constexpr double kF[] = {2.04426310338993978564e-15, 1.42151175831644588870e-7,
                                  1.84631831751005468180e-5,  7.86869131145613259100e-4,
                                  1.48753612908506148525e-2,  1.36929880922735805310e-1,
                                  5.99832206555887937690e-1,  1.0};
  V near[kGroups];
  for (std::size_t g = 0; g < kGroups; ++g) near[g] = hn::Sub(r[g], hn::Set(d, 1.6));
  HornerRatios(d, kC, kD, near, z);
  for (std::size_t g = 0; g < kGroups; ++g) {
    z[g] = hn::Neg(z[g]);
    const auto isNear = hn::Le(r[g], hn::Set(d, 5.0));
    if (HWY_LIKELY(hn::AllTrue(d, isNear))) continue;
    const V far = hn::Sub(r[g], hn::Set(d, 5.0));
    z[g] = hn::IfThenElse(isNear, z[g], hn::Neg(hn::Div(Horner(d, kE, far), Horner(d, kF, far))));
  }
}

}  // namespace HWY_NAMESPACE
}  // namespace brenvolt
HWY_AFTER_NAMESPACE();

#endif
