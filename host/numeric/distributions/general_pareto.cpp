// The generalized Pareto distribution: P(X > x) = exp(-w), w = ln(1 + shape z) / shape, z = (x - threshold) /
// scale >= 0; w = z, the exponential distribution, at shape 0. Pickands (1975).
#include "host/numeric/distributions/general_pareto.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "host/numeric/distributions/general_pareto.cpp"
#include "hwy/foreach_target.h"
// After foreach_target.h:
#include <array>
#include <cmath>

#include "host/numeric/distributions/common/distribution_forms.h"
#include "host/numeric/estimation/gpd_estimators.h"
#include "host/numeric/estimation/standard_errors.h"
#include "host/numeric/special/log_one_plus.h"
#include "host/numeric/vector/vector_extremes-inl.h"
#include "host/numeric/vector/vector_forms.h"
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace brenvolt {
namespace HWY_NAMESPACE {
namespace {

// The distribution function and the quantile over vectors, in stages: see vector_loops-inl.h.

template <class Run>
auto Cdf(const Run& run, double scale, double shape, double threshold) {
  return run(LogOnePlusStage(threshold, scale, shape, 1.0), FromHazardStage{threshold});
}

template <class Run>
auto Quantile(const Run& run, double scale, double shape, double threshold) {
  return run(HazardStage{}, FromReducedStage(threshold, scale, shape));
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
struct FormulasOf<GeneralPareto> {
  double scale;
  double shape;
  double threshold;

  // w, the cumulative hazard: 0 below the support, infinite above it.
  double Hazard(double x) const { return x > threshold ? LogOnePlusAt(x, threshold, scale, shape) : 0.0; }

  double AtHazard(double w) const { return threshold + scale * InverseLogOnePlus(w, shape); }

  // At the upper end the density is 0, finite or infinite as the shape is above, at or below -1.
  double LogDensityAtEnd(double x) const {
    const bool isUpperEnd = shape <= -1.0 && x == threshold - scale / shape;
    if (!isUpperEnd) return -kInfinity;
    return shape == -1.0 ? -std::log(scale) : kInfinity;
  }

  double LogDensity(double x) const {
    if (x < threshold || std::isinf(x)) return -kInfinity;
    const double w = Hazard(x);
    if (std::isinf(w)) return LogDensityAtEnd(x);
    return -(1.0 + shape) * w - std::log(scale);
  }

  double Density(double x) const {
    if (x < threshold || std::isinf(x)) return 0.0;
    const double w = Hazard(x);
    if (std::isinf(w)) return std::exp(LogDensityAtEnd(x));
    return std::exp(-(1.0 + shape) * w) / scale;
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

  double Mean() const { return shape < 1.0 ? threshold + scale / (1.0 - shape) : kInfinity; }

  double Variance() const {
    const double mean = scale / (1.0 - shape);
    return shape < 0.5 ? mean * mean / (1.0 - 2.0 * shape) : kInfinity;
  }

  double LogLikelihood(In sorted) const {
    const double sum = estimation::SumOverBlocks(sorted, [&](In x, Out out) {
      LogOnePlusOverShape(x, threshold, scale, shape, out);
      for (double& w : out) w *= -(1 + shape);
    });
    return sum - static_cast<double>(sorted.size()) * std::log(scale);
  }

  static EstimateResult Estimate(const EstimationInput& input) {
    auto fit = EstimatePareto(input.sorted, input.offset, input.poll);
    const bool isLikelihood = static_cast<bool>(fit);
    if (!isLikelihood) fit = EstimateParetoByMoments(input.sorted, input.offset);
    if (!fit) return fit.Reason();
    if (!(fit->scale > 0)) return Fault{EstimationFault::kNoSolution};
    std::vector<double> values{fit->scale, fit->shape};
    if (!isLikelihood) return EstimateOfValues(std::move(values), EstimateOrigin::kMoments);
    const auto covariance = ParetoCovariance(input.sorted, fit->scale, fit->shape, input.offset);
    if (!covariance) return EstimateOfValues(std::move(values), EstimateOrigin::kLikelihood);
    return EstimateWithCovariance(std::move(values), {covariance->begin(), covariance->end()});
  }
};

template class Distribution<GeneralPareto>;

}  // namespace brenvolt
#endif
