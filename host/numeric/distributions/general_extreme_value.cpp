// The generalized extreme value distribution: P(X <= x) = exp(-exp(-w)), w = ln(1 + shape z) / shape, z = (x
// - location) / scale; w = z, the Gumbel distribution, at shape 0. Jenkinson (1955).
#include "host/numeric/distributions/general_extreme_value.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "host/numeric/distributions/general_extreme_value.cpp"
#include "hwy/foreach_target.h"
// After foreach_target.h:
#include <array>
#include <cmath>

#include "host/numeric/distributions/common/distribution_forms.h"
#include "host/numeric/estimation/gev_estimators.h"
#include "host/numeric/estimation/standard_errors.h"
#include "host/numeric/special/gamma_moments.h"
#include "host/numeric/special/log_one_plus.h"
#include "host/numeric/vector/vector_extremes-inl.h"
#include "host/numeric/vector/vector_forms.h"
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace brenvolt {
namespace HWY_NAMESPACE {
namespace {

// The distribution function and the quantile over vectors, in stages: see vector_loops-inl.h.

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

// exp(-t)
struct CdfStage {
  template <class D, class V>
  HWY_INLINE V operator()(D d, V x, V t) const {
    return hn::IfThenElse(hn::IsNaN(x), x, Exp(d, hn::Neg(t)));
  }
};

template <class Run>
auto Cdf(const Run& run, double location, double scale, double shape) {
  return run(LogOnePlusStage(location, scale, shape, -1.0), ClampedExpStage{}, CdfStage{});
}

template <class Run>
auto Quantile(const Run& run, double location, double scale, double shape) {
  return run(MinusLogStage{}, MinusLogStage{}, FromReducedStage(location, scale, shape));
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
struct FormulasOf<GeneralExtremeValue> {
  double location;
  double scale;
  double shape;

  // w; infinite beyond the ends of the support.
  double Reduced(double x) const { return LogOnePlusAt(x, location, scale, shape); }

  // The x at the reduced value w.
  double AtReduced(double w) const { return location + scale * InverseLogOnePlus(w, shape); }

  // At a finite upper end the density is 0, finite or infinite as the shape is above, at or below -1; beyond
  // an end, and at a lower one, it is 0.
  double LogDensityAtEnd(double x) const {
    const bool isUpperEnd = shape <= -1.0 && x == location - scale / shape;
    if (!isUpperEnd) return -kInfinity;
    return shape == -1.0 ? -std::log(scale) : kInfinity;
  }

  double LogDensity(double x) const {
    if (std::isinf(x)) return -kInfinity;
    const double w = Reduced(x);
    if (std::isinf(w)) return LogDensityAtEnd(x);
    return -(1.0 + shape) * w - std::exp(-w) - std::log(scale);
  }

  double Density(double x) const {
    if (std::isinf(x)) return 0.0;
    const double w = Reduced(x);
    if (std::isinf(w)) return std::exp(LogDensityAtEnd(x));
    return std::exp(-(1.0 + shape) * w - std::exp(-w)) / scale;
  }

  double Cdf(double x) const {
    return HWY_STATIC_DISPATCH(Cdf)(HWY_STATIC_DISPATCH(OneRun){x}, location, scale, shape);
  }
  void Cdf(In x, Out out) const { HWY_DYNAMIC_DISPATCH(CdfOverArray)(x, {location, scale, shape}, out); }
  double Complement(double x) const { return -std::expm1(-std::exp(-Reduced(x))); }
  double Quantile(double p) const {
    return HWY_STATIC_DISPATCH(Quantile)(HWY_STATIC_DISPATCH(OneRun){p}, location, scale, shape);
  }
  void Quantile(In p, Out out) const {
    HWY_DYNAMIC_DISPATCH(QuantileOverArray)(p, {location, scale, shape}, out);
  }
  double ComplementQuantile(double q) const { return AtReduced(-std::log(-std::log1p(-q))); }

  double Mean() const { return location + scale * GammaPowerMean(shape); }
  double Variance() const { return scale * scale * GammaPowerVariance(shape); }

  double LogLikelihood(In sorted) const {
    std::array<double, estimation::kBlock> buffer;
    const double sum = estimation::SumOverBlocks(sorted, [&](In x, Out out) {
      const Out w(buffer.data(), x.size());
      LogOnePlusOverShape(x, location, scale, shape, w);
      for (std::size_t i = 0; i < x.size(); ++i) out[i] = -w[i];
      elementary::Exp(out, out);
      for (std::size_t i = 0; i < x.size(); ++i) out[i] = -(1 + shape) * w[i] - out[i];
    });
    return sum - static_cast<double>(sorted.size()) * std::log(scale);
  }

  // No standard errors for a shape of -1/2 or less, where estimates are not asymptotically normal (Smith
  // 1985).
  static EstimateResult Estimate(const EstimationInput& input) {
    auto fit = EstimateExtremeValue(input.sorted, input.poll);
    const bool isLikelihood = static_cast<bool>(fit);
    if (!isLikelihood) fit = EstimateExtremeValueByMoments(input.sorted);
    if (!fit) return fit.Reason();
    std::vector<double> values(fit->parameters.begin(), fit->parameters.end());
    if (!(values[1] > 0)) return Fault{EstimationFault::kNoSolution};
    if (!isLikelihood) return EstimateOfValues(std::move(values), EstimateOrigin::kMoments);
    const bool hasErrors = values[2] > kLeastRegularShape && !fit->covariance.empty();
    if (!hasErrors) return EstimateOfValues(std::move(values), EstimateOrigin::kLikelihood);
    return EstimateWithCovariance(std::move(values), std::move(fit->covariance));
  }
};

template class Distribution<GeneralExtremeValue>;

}  // namespace brenvolt
#endif
