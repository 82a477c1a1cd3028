// Stages of the formulas that the distributions of lifetimes and extremes share, parameters as members; see
// vector_loops-inl.h. Included once per instruction set.
#if defined(HOST_NUMERIC_VECTOR_EXTREMES_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef HOST_NUMERIC_VECTOR_EXTREMES_INL_H_
#undef HOST_NUMERIC_VECTOR_EXTREMES_INL_H_
#else
#define HOST_NUMERIC_VECTOR_EXTREMES_INL_H_
#endif

#include <cmath>
#include <cstdint>

#include "host/numeric/vector/vector_formulas-inl.h"
#include "host/numeric/vector/vector_loops-inl.h"
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace brenvolt {
namespace HWY_NAMESPACE {

// 1 - exp(-hazard) above the threshold, 0 elsewhere.
struct FromHazardStage {
  double threshold;
  template <class D, class V>
  HWY_INLINE V operator()(D d, V x, V hazard) const {
    const auto isWithin = hn::Gt(x, hn::Set(d, threshold));
    const V result = hn::IfThenElseZero(isWithin, hn::Neg(Expm1(d, hn::Neg(hazard))));
    return hn::IfThenElse(hn::IsNaN(x), x, result);
  }
};

// The cumulative hazard at probability p, with a positive sign where it is 0.
struct HazardStage {
  template <class D, class V>
  HWY_INLINE V operator()(D d, V p, V /*t*/) const {
    return hn::Abs(LogOfComplement(d, p));
  }
};

// A shape below it acts as 0, and so does one whose product with z is below it: w = z to all digits.
inline constexpr double kTiny = 1e-290;

inline double ShapeOrZero(double shape) {
  return std::abs(shape) < kTiny ? 0.0 : shape;
}

// sign w, w = ln(1 + shape z) / shape, z = (x - origin) / scale, for any x; infinite beyond the end of the
// support. Where the sum scale + shape (x - origin) loses digits, on the way to that end, it is formed with
// all its rounding errors (two-sums after Knuth 1969, the product after Dekker 1971), so that the result is
// good right up to the end. A NaN passes as a tiny product.
struct LogOnePlusStage {
  double origin;
  double scale;
  double shape;
  double signOverShape;
  double sign;

  LogOnePlusStage(double origin_, double scale_, double shape_, double sign_)
      : origin(origin_),
        scale(scale_),
        shape(ShapeOrZero(shape_)),
        signOverShape(sign_ / shape),
        sign(sign_) {}

  // Clears the lower half of the mantissa.
  template <class D, class V>
  static HWY_INLINE V UpperHalf(D d, V v) {
    const hn::Rebind<std::uint64_t, D> du;
    return hn::BitCast(d, hn::And(hn::BitCast(du, v), hn::Set(du, ~std::uint64_t{0} << 27)));
  }

  template <class D, class V>
  static HWY_INLINE V SumError(D /*d*/, V a, V b, V sum) {
    const V shareOfB = hn::Sub(sum, a);
    return hn::Add(hn::Sub(a, hn::Sub(sum, shareOfB)), hn::Sub(b, shareOfB));
  }

  template <class D, class V>
  static HWY_INLINE V ProductError(D d, V a, V b, V product) {
    const V a1 = UpperHalf(d, a);
    const V a2 = hn::Sub(a, a1);
    const V b1 = UpperHalf(d, b);
    const V b2 = hn::Sub(b, b1);
    const V upper = hn::Add(hn::Sub(hn::Mul(a1, b1), product), hn::Mul(a1, b2));
    return hn::Add(hn::Add(upper, hn::Mul(a2, b1)), hn::Mul(a2, b2));
  }

  // The errors of scale + slope, slope = shape y, y = x - origin; 0 for an infinite slope.
  template <class D, class V>
  HWY_INLINE V Lost(D d, V x, V y, V slope) const {
    const V k = hn::Set(d, shape);
    const V unit = hn::Set(d, scale);
    const V ofSlope =
        hn::Add(ProductError(d, k, y, slope), hn::Mul(k, SumError(d, x, hn::Set(d, -origin), y)));
    const V all = hn::Add(SumError(d, unit, slope, hn::Add(unit, slope)), ofSlope);
    return hn::IfThenElseZero(hn::Lt(hn::Abs(slope), hn::Set(d, kVectorInfinity)), all);
  }

  // sign w from the slope and the sum scale + slope, both regular.
  template <class D, class V>
  HWY_INLINE V Regular(D d, V slope, V base) const {
    const V one = hn::Set(d, 1.0);
    const auto isNearOne = hn::Le(hn::Abs(slope), hn::Set(d, 0.5 * scale));
    const V q = hn::Div(hn::IfThenElse(isNearOne, slope, base), hn::Set(d, scale));
    // ln(1 + q) near one, where the rounding c of 1 + q counts, ln q elsewhere. For the |q| <= 1/2 there, c
    // is c / u to within 1e-16 of the result.
    const V u = hn::IfThenElse(isNearOne, hn::Add(one, q), q);
    const V c = hn::IfThenElseZero(isNearOne, hn::Sub(q, hn::Sub(u, one)));
    return hn::Mul(hn::Add(LogOfPositive<!kMayBeSubnormal>(d, u), c), hn::Set(d, signOverShape));
  }

  template <class D, class V>
  HWY_INLINE V operator()(D d, V x, V /*t*/) const {
    const V infinity = hn::Set(d, kVectorInfinity);
    const V y = hn::Sub(x, hn::Set(d, origin));
    const V slope = hn::Mul(hn::Set(d, shape), y);
    const V size = hn::Abs(slope);
    const V base = hn::Add(hn::Set(d, scale), slope);
    // NaN, of shape 0 and infinite y, counts as tiny.
    const auto isNotTiny = hn::Gt(size, hn::Set(d, kTiny * scale));
    const auto isRegular = hn::And(isNotTiny, hn::Lt(size, infinity));
    const auto isFarFromEnd = hn::Ge(slope, hn::Set(d, -0.5 * scale));
    if (HWY_LIKELY(hn::AllTrue(d, hn::And(isRegular, isFarFromEnd)))) return Regular(d, slope, base);

    const V exact = hn::IfThenElse(isFarFromEnd, base, hn::Add(base, Lost(d, x, y, slope)));
    const double endless = std::copysign(kVectorInfinity, signOverShape);
    V w = Regular(d, slope, exact);
    w = hn::IfThenElse(hn::Eq(exact, infinity), hn::Set(d, endless), w);
    w = hn::IfThenElse(hn::Le(exact, hn::Zero(d)), hn::Set(d, -endless), w);
    return hn::IfThenElse(isNotTiny, w, hn::Mul(hn::Set(d, sign), hn::Div(y, hn::Set(d, scale))));
  }
};

// origin + scale z at w = t, z = (exp(shape w) - 1) / shape.
struct FromReducedStage {
  double origin;
  double scale;
  double shape;
  double inverseShape;

  FromReducedStage(double origin_, double scale_, double shape_)
      : origin(origin_), scale(scale_), shape(ShapeOrZero(shape_)), inverseShape(1.0 / shape) {}

  template <class D, class V>
  HWY_INLINE V operator()(D d, V p, V t) const {
    const V product = hn::Mul(hn::Set(d, shape), t);
    // NaN, of shape 0 and infinite w, counts as tiny.
    const auto isRegular = hn::Gt(hn::Abs(product), hn::Set(d, kTiny));
    const V z = hn::IfThenElse(isRegular, hn::Mul(Expm1(d, product), hn::Set(d, inverseShape)), t);
    return ForProbabilities(d, p, hn::Add(hn::Set(d, origin), hn::Mul(hn::Set(d, scale), z)));
  }
};

}  // namespace HWY_NAMESPACE
}  // namespace brenvolt
HWY_AFTER_NAMESPACE();

#endif
