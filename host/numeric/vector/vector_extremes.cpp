// The distributions of lifetimes and extremes: Weibull, Rayleigh, generalized extreme value and generalized
// Pareto. Compiled once per instruction set, like vector_forms.cpp.
#include "host/numeric/vector/vector_forms.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "host/numeric/vector/vector_extremes.cpp"
#include "hwy/foreach_target.h"
// After foreach_target.h:
#include <cmath>

#include "host/numeric/vector/vector_formulas-inl.h"
#include "host/numeric/vector/vector_loops-inl.h"
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace brenvolt {
namespace HWY_NAMESPACE {
namespace {

// Stages of the formulas, parameters as members; see vector_loops-inl.h.

struct ExpStage {
  template <class D, class V>
  HWY_INLINE V operator()(D d, V /*x*/, V t) const {
    return Exp(d, t);
  }
};

struct ClampedExpStage {
  template <class D, class V>
  HWY_INLINE V operator()(D d, V /*x*/, V t) const {
    return ClampedExp(d, t);
  }
};

struct MinusLogStage {
  template <class D, class V>
  HWY_INLINE V operator()(D d, V /*x*/, V t) const {
    return hn::Neg(Log(d, t));
  }
};

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

// (ln y) factor, y = (x - threshold) / scale.
struct PowerExponentStage {
  double scale;
  double factor;
  double threshold;
  template <class D, class V>
  HWY_INLINE V operator()(D d, V /*x*/, V t) const {
    const V y = hn::Div(hn::Sub(t, hn::Set(d, threshold)), hn::Set(d, scale));
    return hn::Mul(hn::Set(d, factor), Log(d, y));
  }
};

// ln(t) factor, for a t >= 0 that is 0 or normal.
struct LogTimesStage {
  double factor;
  template <class D, class V>
  HWY_INLINE V operator()(D d, V /*x*/, V t) const {
    return hn::Mul(hn::Set(d, factor), Log(d, t));
  }
};

struct WeibullQuantileStage {
  double scale;
  double threshold;
  template <class D, class V>
  HWY_INLINE V operator()(D d, V p, V t) const {
    const V x = hn::Add(hn::Set(d, threshold), hn::Mul(hn::Set(d, scale), Exp(d, t)));
    return ForProbabilities(d, p, x);
  }
};

struct RayleighCdfFormula {
  double scale;
  double threshold;
  template <class D, class V>
  HWY_INLINE V operator()(D d, V x, V /*t*/) const {
    const V y = hn::Sub(x, hn::Set(d, threshold));
    const V z = hn::Div(y, hn::Set(d, scale));
    const V minusHazard = hn::Mul(hn::Set(d, -0.5), hn::Mul(z, z));
    const V result = hn::IfThenElseZero(hn::Gt(y, hn::Zero(d)), hn::Neg(Expm1(d, minusHazard)));
    return hn::IfThenElse(hn::IsNaN(x), x, result);
  }
};

struct RayleighQuantileFormula {
  double scale;
  double threshold;
  template <class D, class V>
  HWY_INLINE V operator()(D d, V p, V /*t*/) const {
    const V hazard = hn::Abs(LogOfComplement(d, p));
    const V z = hn::Sqrt(hn::Add(hazard, hazard));
    return ForProbabilities(d, p, hn::Add(hn::Set(d, threshold), hn::Mul(hn::Set(d, scale), z)));
  }
};

// A shape below it acts as 0, and so does one whose product with z is below it: w = z to all digits.
constexpr double kTiny = 1e-290;

double ShapeOrZero(double shape) {
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

// exp(-t)
struct GevCdfStage {
  template <class D, class V>
  HWY_INLINE V operator()(D d, V x, V t) const {
    return hn::IfThenElse(hn::IsNaN(x), x, Exp(d, hn::Neg(t)));
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

// The stages of each function, handed to `run`.

template <class Run>
auto WeibullCdfStages(const Run& run, double scale, double shape, double threshold) {
  return run(PowerExponentStage{scale, shape, threshold}, ExpStage{}, FromHazardStage{threshold});
}

template <class Run>
auto WeibullQuantileStages(const Run& run, double scale, double shape, double threshold) {
  return run(HazardStage{}, LogTimesStage{1.0 / shape}, WeibullQuantileStage{scale, threshold});
}

template <class Run>
auto RayleighCdfStages(const Run& run, double scale, double threshold) {
  return run(RayleighCdfFormula{scale, threshold});
}

template <class Run>
auto RayleighQuantileStages(const Run& run, double scale, double threshold) {
  return run(RayleighQuantileFormula{scale, threshold});
}

template <class Run>
auto GevCdfStages(const Run& run, double location, double scale, double shape) {
  return run(LogOnePlusStage(location, scale, shape, -1.0), ClampedExpStage{}, GevCdfStage{});
}

template <class Run>
auto GevQuantileStages(const Run& run, double location, double scale, double shape) {
  return run(MinusLogStage{}, MinusLogStage{}, FromReducedStage(location, scale, shape));
}

template <class Run>
auto GpdCdfStages(const Run& run, double scale, double shape, double threshold) {
  return run(LogOnePlusStage(threshold, scale, shape, 1.0), FromHazardStage{threshold});
}

template <class Run>
auto GpdQuantileStages(const Run& run, double scale, double shape, double threshold) {
  return run(HazardStage{}, FromReducedStage(threshold, scale, shape));
}

// Over an array, and at one value.

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

}  // namespace

// Entries for the dispatch: arrays and single values run the same stages.

using In = std::span<const double>;
using Out = std::span<double>;

void WeibullCdfArray(In x, double scale, double shape, double threshold, Out out) {
  WeibullCdfStages(ArrayRun{x, out}, scale, shape, threshold);
}
void WeibullQuantileArray(In x, double scale, double shape, double threshold, Out out) {
  WeibullQuantileStages(ArrayRun{x, out}, scale, shape, threshold);
}
void RayleighCdfArray(In x, double scale, double threshold, Out out) {
  RayleighCdfStages(ArrayRun{x, out}, scale, threshold);
}
void RayleighQuantileArray(In x, double scale, double threshold, Out out) {
  RayleighQuantileStages(ArrayRun{x, out}, scale, threshold);
}
void GevCdfArray(In x, double location, double scale, double shape, Out out) {
  GevCdfStages(ArrayRun{x, out}, location, scale, shape);
}
void GevQuantileArray(In x, double location, double scale, double shape, Out out) {
  GevQuantileStages(ArrayRun{x, out}, location, scale, shape);
}
void GpdCdfArray(In x, double scale, double shape, double threshold, Out out) {
  GpdCdfStages(ArrayRun{x, out}, scale, shape, threshold);
}
void GpdQuantileArray(In x, double scale, double shape, double threshold, Out out) {
  GpdQuantileStages(ArrayRun{x, out}, scale, shape, threshold);
}

double WeibullCdfOne(double x, double scale, double shape, double threshold) {
  return WeibullCdfStages(OneRun{x}, scale, shape, threshold);
}
double WeibullQuantileOne(double x, double scale, double shape, double threshold) {
  return WeibullQuantileStages(OneRun{x}, scale, shape, threshold);
}
double RayleighCdfOne(double x, double scale, double threshold) {
  return RayleighCdfStages(OneRun{x}, scale, threshold);
}
double RayleighQuantileOne(double x, double scale, double threshold) {
  return RayleighQuantileStages(OneRun{x}, scale, threshold);
}
double GevCdfOne(double x, double location, double scale, double shape) {
  return GevCdfStages(OneRun{x}, location, scale, shape);
}
double GevQuantileOne(double x, double location, double scale, double shape) {
  return GevQuantileStages(OneRun{x}, location, scale, shape);
}
double GpdCdfOne(double x, double scale, double shape, double threshold) {
  return GpdCdfStages(OneRun{x}, scale, shape, threshold);
}
double GpdQuantileOne(double x, double scale, double shape, double threshold) {
  return GpdQuantileStages(OneRun{x}, scale, shape, threshold);
}

}  // namespace HWY_NAMESPACE
}  // namespace brenvolt
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace brenvolt {

HWY_EXPORT(WeibullCdfArray);
HWY_EXPORT(WeibullQuantileArray);
HWY_EXPORT(RayleighCdfArray);
HWY_EXPORT(RayleighQuantileArray);
HWY_EXPORT(GevCdfArray);
HWY_EXPORT(GevQuantileArray);
HWY_EXPORT(GpdCdfArray);
HWY_EXPORT(GpdQuantileArray);

namespace vector_forms {

double WeibullCdf(double x, double scale, double shape, double threshold) {
  return HWY_STATIC_DISPATCH(WeibullCdfOne)(x, scale, shape, threshold);
}
double WeibullQuantile(double p, double scale, double shape, double threshold) {
  return HWY_STATIC_DISPATCH(WeibullQuantileOne)(p, scale, shape, threshold);
}
double RayleighCdf(double x, double scale, double threshold) {
  return HWY_STATIC_DISPATCH(RayleighCdfOne)(x, scale, threshold);
}
double RayleighQuantile(double p, double scale, double threshold) {
  return HWY_STATIC_DISPATCH(RayleighQuantileOne)(p, scale, threshold);
}
double GevCdf(double x, double location, double scale, double shape) {
  return HWY_STATIC_DISPATCH(GevCdfOne)(x, location, scale, shape);
}
double GevQuantile(double p, double location, double scale, double shape) {
  return HWY_STATIC_DISPATCH(GevQuantileOne)(p, location, scale, shape);
}
double GpdCdf(double x, double scale, double shape, double threshold) {
  return HWY_STATIC_DISPATCH(GpdCdfOne)(x, scale, shape, threshold);
}
double GpdQuantile(double p, double scale, double shape, double threshold) {
  return HWY_STATIC_DISPATCH(GpdQuantileOne)(p, scale, shape, threshold);
}
void WeibullCdf(std::span<const double> x, double scale, double shape, double threshold,
                std::span<double> out) {
  HWY_DYNAMIC_DISPATCH(WeibullCdfArray)(x, scale, shape, threshold, out);
}
void WeibullQuantile(std::span<const double> p, double scale, double shape, double threshold,
                     std::span<double> out) {
  HWY_DYNAMIC_DISPATCH(WeibullQuantileArray)(p, scale, shape, threshold, out);
}
void RayleighCdf(std::span<const double> x, double scale, double threshold, std::span<double> out) {
  HWY_DYNAMIC_DISPATCH(RayleighCdfArray)(x, scale, threshold, out);
}
void RayleighQuantile(std::span<const double> p, double scale, double threshold, std::span<double> out) {
  HWY_DYNAMIC_DISPATCH(RayleighQuantileArray)(p, scale, threshold, out);
}
void GevCdf(std::span<const double> x, double location, double scale, double shape, std::span<double> out) {
  HWY_DYNAMIC_DISPATCH(GevCdfArray)(x, location, scale, shape, out);
}
void GevQuantile(std::span<const double> p, double location, double scale, double shape,
                 std::span<double> out) {
  HWY_DYNAMIC_DISPATCH(GevQuantileArray)(p, location, scale, shape, out);
}
void GpdCdf(std::span<const double> x, double scale, double shape, double threshold, std::span<double> out) {
  HWY_DYNAMIC_DISPATCH(GpdCdfArray)(x, scale, shape, threshold, out);
}
void GpdQuantile(std::span<const double> p, double scale, double shape, double threshold,
                 std::span<double> out) {
  HWY_DYNAMIC_DISPATCH(GpdQuantileArray)(p, scale, shape, threshold, out);
}

}  // namespace vector_forms
}  // namespace brenvolt
#endif
