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

struct NormalQuantileFormula {
  double location;
  double scale;
  template <class D, class V>
  HWY_INLINE V operator()(D d, V p, V z) const {
    return ForProbabilities(d, p, hn::Add(hn::Set(d, location), hn::Mul(hn::Set(d, scale), z)));
  }
};

}  // namespace

// Entries for the dispatch: arrays, then one value where single values are asked for.

using In = std::span<const double>;
using Out = std::span<double>;

void ExpArray(In x, Out out) {
  OverArray(x, out, ExpStage{});
}
void LogArray(In x, Out out) {
  OverArray(x, out, LogStage{});
}
void Log1pArray(In x, Out out) {
  OverArray(x, out, Log1pFormula{});
}
void NormalCdfArray(In x, double location, double scale, Out out) {
  OverArray(x, out, NormalCdfFormula{location, scale});
}
void NormalQuantileArray(In p, double location, double scale, Out out) {
  QuantilesOverArray(p, out, FromProbability{}, NormalQuantileFormula{location, scale});
}

double ExpOne(double x) {
  return AtOne(x, ExpStage{});
}
double LogOne(double x) {
  return AtOne(x, LogStage{});
}
double NormalCdfOne(double x, double location, double scale) {
  return AtOne(x, NormalCdfFormula{location, scale});
}
double NormalQuantileOne(double p, double location, double scale) {
  return QuantileAtOne(p, FromProbability{}, NormalQuantileFormula{location, scale});
}

}  // namespace HWY_NAMESPACE
}  // namespace brenvolt
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace brenvolt {

HWY_EXPORT(ExpArray);
HWY_EXPORT(LogArray);
HWY_EXPORT(Log1pArray);
HWY_EXPORT(NormalCdfArray);
HWY_EXPORT(NormalQuantileArray);

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
void Exp(std::span<const double> x, std::span<double> out) {
  HWY_DYNAMIC_DISPATCH(ExpArray)(x, out);
}
void Log(std::span<const double> x, std::span<double> out) {
  HWY_DYNAMIC_DISPATCH(LogArray)(x, out);
}
void Log1p(std::span<const double> x, std::span<double> out) {
  HWY_DYNAMIC_DISPATCH(Log1pArray)(x, out);
}

}  // namespace elementary

namespace vector_forms {

double NormalCdf(double x, double location, double scale) {
  return HWY_STATIC_DISPATCH(NormalCdfOne)(x, location, scale);
}
double NormalQuantile(double p, double location, double scale) {
  return HWY_STATIC_DISPATCH(NormalQuantileOne)(p, location, scale);
}
void NormalCdf(std::span<const double> x, double location, double scale, std::span<double> out) {
  HWY_DYNAMIC_DISPATCH(NormalCdfArray)(x, location, scale, out);
}
void NormalQuantile(std::span<const double> p, double location, double scale, std::span<double> out) {
  HWY_DYNAMIC_DISPATCH(NormalQuantileArray)(p, location, scale, out);
}

}  // namespace vector_forms
}  // namespace brenvolt
#endif
