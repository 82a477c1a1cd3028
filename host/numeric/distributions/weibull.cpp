// The Weibull distribution: P(X > x) = exp(-h), h = ((x - threshold) / scale)^shape, for x >= threshold.
#include "host/numeric/distributions/weibull.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "host/numeric/distributions/weibull.cpp"
#include "hwy/foreach_target.h"
// After foreach_target.h:
#include <array>
#include <cmath>

#include "host/numeric/distributions/common/distribution_forms.h"
#include "host/numeric/estimation/weibull_estimator.h"
#include "host/numeric/special/gamma_moments.h"
#include "host/numeric/vector/vector_extremes-inl.h"
#include "host/numeric/vector/vector_forms.h"
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace brenvolt {
namespace HWY_NAMESPACE {
namespace {

// The distribution function and the quantile over vectors, in stages: see vector_loops-inl.h.

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

struct QuantileStage {
  double scale;
  double threshold;
  template <class D, class V>
  HWY_INLINE V operator()(D d, V p, V t) const {
    const V x = hn::Add(hn::Set(d, threshold), hn::Mul(hn::Set(d, scale), Exp(d, t)));
    return ForProbabilities(d, p, x);
  }
};

template <class Run>
auto Cdf(const Run& run, double scale, double shape, double threshold) {
  return run(PowerExponentStage{scale, shape, threshold}, ExpStage{}, FromHazardStage{threshold});
}

template <class Run>
auto Quantile(const Run& run, double scale, double shape, double threshold) {
  return run(HazardStage{}, LogTimesStage{1.0 / shape}, QuantileStage{scale, threshold});
}

constexpr std::size_t kParameters = 3;
using QuantileRun = ArrayRun;

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace brenvolt
HWY_AFTER_NAMESPACE();

#include "host/numeric/distributions/common/array_forms-inl.h"

#if HWY_ONCE
namespace brenvolt {

template <>
struct FormulasOf<Weibull> {
  double scale;
  double shape;
  double threshold;

  // The cumulative hazard h; 0 below the support.
  double Hazard(double x) const {
    const double y = x - threshold;
    return y > 0.0 ? std::pow(y / scale, shape) : 0.0;
  }

  // The x at cumulative hazard h in [0, inf].
  double AtHazard(double hazard) const { return threshold + scale * std::pow(hazard, 1.0 / shape); }

  double Density(double x) const {
    if (x < threshold) return 0.0;
    const double survival = std::exp(-Hazard(x));
    if (survival == 0.0) return 0.0;  // also keeps an infinite power from meeting it
    return shape / scale * std::pow((x - threshold) / scale, shape - 1.0) * survival;
  }

  double LogDensity(double x) const {
    if (x < threshold || std::isinf(x)) return -kInfinity;
    // At the threshold itself ln u is infinite and counts only if the exponent is not 0.
    const double power = shape == 1.0 ? 0.0 : (shape - 1.0) * std::log((x - threshold) / scale);
    return std::log(shape) - std::log(scale) + power - Hazard(x);
  }

  double Cdf(double x) const {
    return HWY_STATIC_DISPATCH(Cdf)(HWY_STATIC_DISPATCH(OneRun){x}, scale, shape, threshold);
  }
  void Cdf(In x, Out out) const { HWY_DYNAMIC_DISPATCH(CdfOverArray)(x, {scale, shape, threshold}, out); }
  double Complement(double x) const { return std::exp(-Hazard(x)); }
  double Quantile(double p) const {
    return HWY_STATIC_DISPATCH(Quantile)(HWY_STATIC_DISPATCH(OneRun){p}, scale, shape, threshold);
  }
  void Quantile(In p, Out out) const {
    HWY_DYNAMIC_DISPATCH(QuantileOverArray)(p, {scale, shape, threshold}, out);
  }
  double ComplementQuantile(double q) const { return AtHazard(-std::log(q)); }

  double Mean() const { return threshold + scale * std::tgamma(1.0 + 1.0 / shape); }

  double Variance() const {
    const double unit = scale / shape;
    return unit * unit * GammaPowerVariance(-1.0 / shape);
  }

  double LogLikelihood(In sorted) const {
    std::array<double, estimation::kBlock> buffer;
    const double sum = estimation::SumOverBlocks(sorted, [&](In x, Out out) {
      const Out logarithms(buffer.data(), x.size());
      for (std::size_t i = 0; i < x.size(); ++i) out[i] = (x[i] - threshold) / scale;
      elementary::Log(out, logarithms);
      for (std::size_t i = 0; i < x.size(); ++i) out[i] = shape * logarithms[i];
      elementary::Exp(out, out);
      for (std::size_t i = 0; i < x.size(); ++i) out[i] = (shape - 1) * logarithms[i] - out[i];
    });
    return sum + static_cast<double>(sorted.size()) * std::log(shape / scale);
  }

  // A Newton step of the shape below this ends the estimation: convergence is quadratic, so the shape is then
  // good to rounding. A shape is of the size of mean / standard deviation, where that is large.
  static double Tolerance(const EstimationInput& input) {
    constexpr double kRelative = 1e-9;
    const double size = (input.mean - input.offset) / input.standardDeviation;
    return kRelative * (std::isfinite(size) && size > 1 ? size : 1);
  }

  static EstimateResult Estimate(const EstimationInput& input) {
    const auto fit = EstimateWeibull(input.sorted, input.offset, Tolerance(input));
    if (!fit) return fit.Reason();
    const double scaleError = fit->scaleStandardError;
    const double shapeError = fit->shapeStandardError;
    return EstimateWithCovariance({fit->scale, fit->shape}, {scaleError * scaleError, fit->covariance,
                                                             fit->covariance, shapeError * shapeError});
  }
};

template class Distribution<Weibull>;

}  // namespace brenvolt
#endif
