// Compiled once per instruction set, which the first call chooses; the scalar forms are those of the set that
// every machine has, on one lane.
#include "host/numeric/vector/vector_forms.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "host/numeric/vector/vector_forms.cpp"
#include "hwy/foreach_target.h"
// After foreach_target.h:
#include "host/numeric/vector/vector_formulas-inl.h"
#include "host/numeric/vector/vector_loops-inl.h"
#include "host/numeric/vector/vector_quantiles-inl.h"
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace brenvolt {
namespace HWY_NAMESPACE {
namespace {

// Stages of the formulas, parameters as members; see vector_loops-inl.h.

struct ExpFormula {
  template <class D, class V>
  HWY_INLINE V operator()(D d, V /*x*/, V t) const {
    return Exp(d, t);
  }
};

struct LogFormula {
  template <class D, class V>
  HWY_INLINE V operator()(D d, V /*x*/, V t) const {
    return Log(d, t);
  }
};

struct Expm1Formula {
  template <class D, class V>
  HWY_INLINE V operator()(D d, V /*x*/, V t) const {
    return Expm1(d, t);
  }
};

struct Log1pFormula {
  template <class D, class V>
  HWY_INLINE V operator()(D d, V /*x*/, V t) const {
    return Log1p(d, t);
  }
};

struct NormalCdfFormula {
  double location;
  double scale;
  template <class D, class V>
  HWY_INLINE V operator()(D d, V x, V /*t*/) const {
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
  HWY_INLINE V operator()(D d, V x, V /*t*/) const {
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
void NormalQuantileArray(In p, double location, double scale, Out out) {
  QuantilesOverArray(p, out, FromProbability{}, NormalQuantileFormula{location, scale});
}
void LognormalQuantileArray(In p, double scale, double shape, double threshold, Out out) {
  QuantilesOverArray(p, out, FromProbability{}, LognormalQuantileFormula{scale, shape, threshold});
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
double NormalQuantileOne(double p, double location, double scale) {
  return QuantileAtOne(p, FromProbability{}, NormalQuantileFormula{location, scale});
}
double LognormalQuantileOne(double p, double scale, double shape, double threshold) {
  return QuantileAtOne(p, FromProbability{}, LognormalQuantileFormula{scale, shape, threshold});
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
HWY_EXPORT(NormalQuantileArray);
HWY_EXPORT(LognormalQuantileArray);

double StandardNormalCdf(double z) {
  return HWY_STATIC_DISPATCH(NormalCdfOne)(z, 0.0, 1.0);
}

double StandardNormalQuantile(double p) {
  return HWY_STATIC_DISPATCH(NormalQuantileOne)(p, 0.0, 1.0);
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
double NormalQuantile(double p, double location, double scale) {
  return HWY_STATIC_DISPATCH(NormalQuantileOne)(p, location, scale);
}
double LognormalQuantile(double p, double scale, double shape, double threshold) {
  return HWY_STATIC_DISPATCH(LognormalQuantileOne)(p, scale, shape, threshold);
}
void NormalCdf(std::span<const double> x, double location, double scale, std::span<double> out) {
  HWY_DYNAMIC_DISPATCH(NormalCdfArray)(x, location, scale, out);
}
void LognormalCdf(std::span<const double> x, double scale, double shape, double threshold,
                  std::span<double> out) {
  HWY_DYNAMIC_DISPATCH(LognormalCdfArray)(x, scale, shape, threshold, out);
}
void NormalQuantile(std::span<const double> p, double location, double scale, std::span<double> out) {
  HWY_DYNAMIC_DISPATCH(NormalQuantileArray)(p, location, scale, out);
}
void LognormalQuantile(std::span<const double> p, double scale, double shape, double threshold,
                       std::span<double> out) {
  HWY_DYNAMIC_DISPATCH(LognormalQuantileArray)(p, scale, shape, threshold, out);
}

}  // namespace vector_forms
}  // namespace brenvolt
#endif
