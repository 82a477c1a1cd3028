// The log-normal distribution: ln(x - threshold) is normal with mean `scale` and standard deviation `shape`.
#include "host/numeric/distributions/log_normal.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "host/numeric/distributions/log_normal.cpp"
#include "hwy/foreach_target.h"
// After foreach_target.h:
#include <array>
#include <cmath>
#include <numbers>
#include <vector>

#include "host/numeric/distributions/common/distribution_forms.h"
#include "host/numeric/vector/standard_normal.h"
#include "host/numeric/vector/vector_forms.h"
#include "host/numeric/vector/vector_formulas-inl.h"
#include "host/numeric/vector/vector_quantiles-inl.h"
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace brenvolt {
namespace HWY_NAMESPACE {
namespace {

// The distribution function and the quantile over vectors, in stages: see vector_loops-inl.h.

// The exponent's share of ln y is an exact product from which `scale` is taken first, so that a small shape
// does not magnify the rounding of a large logarithm.
struct CdfStage {
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

struct QuantileStage {
  double scale;
  double shape;
  double threshold;
  template <class D, class V>
  HWY_INLINE V operator()(D d, V p, V z) const {
    const V y = Exp(d, hn::Add(hn::Set(d, scale), hn::Mul(hn::Set(d, shape), z)));
    return ForProbabilities(d, p, hn::Add(hn::Set(d, threshold), y));
  }
};

template <class Run>
auto Cdf(const Run& run, double scale, double shape, double threshold) {
  return run(CdfStage{scale, shape, threshold});
}

template <class Run>
auto Quantile(const Run& run, double scale, double shape, double threshold) {
  return run(QuantileStage{scale, shape, threshold});
}

constexpr std::size_t kParameters = 3;
using QuantileRun = ArrayQuantileRun;

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace brenvolt
HWY_AFTER_NAMESPACE();

#include "host/numeric/distributions/common/array_forms-inl.h"

#if HWY_ONCE
namespace brenvolt {

EstimationResult<NormalEstimate> EstimateLogNormal(std::span<const double> data, double offset) {
  if (auto checked = estimation::CheckAboveOffset(data, 2, offset, false); !checked) return checked.Reason();
  std::vector<double> logs;
  logs.reserve(data.size());
  for (const double x : data) logs.push_back(std::log(x - offset));
  return EstimateNormal(logs);
}

template <>
struct FormulasOf<LogNormal> {
  double scale;
  double shape;
  double threshold;

  // (ln y - scale) / shape for y >= 0. The exponent's share of ln y is an exact product from which `scale` is
  // taken first, so that a small shape does not magnify the rounding of a large logarithm.
  double Standardised(double y) const {
    if (y == 0.0) return -kInfinity;
    if (std::isinf(y)) return kInfinity;
    int exponent = 0;
    double mantissa = std::frexp(y, &exponent);
    if (mantissa < std::numbers::sqrt2 / 2.0) {
      mantissa *= 2.0;
      --exponent;
    }
    const double rest = std::fma(exponent, kLogTwoLow, std::log(mantissa));
    return ((exponent * kLogTwoHigh - scale) + rest) / shape;
  }

  double Density(double x) const {
    const double y = x - threshold;
    if (!(y > 0.0) || std::isinf(y)) return 0.0;
    const double z = Standardised(y);
    // y joins the exponent: for a wide shape exp(-z^2 / 2) may underflow where its quotient by y does not.
    return std::exp(-0.5 * z * z - std::log(y)) * kInverseSqrtTwoPi / shape;
  }

  double LogDensity(double x) const {
    const double y = x - threshold;
    if (!(y > 0.0) || std::isinf(y)) return -kInfinity;
    const double z = Standardised(y);
    return -0.5 * z * z - std::log(y) - std::log(shape) - kLogSqrtTwoPi;
  }

  double Cdf(double x) const {
    return HWY_STATIC_DISPATCH(Cdf)(HWY_STATIC_DISPATCH(OneRun){x}, scale, shape, threshold);
  }
  void Cdf(In x, Out out) const { HWY_DYNAMIC_DISPATCH(CdfOverArray)(x, {scale, shape, threshold}, out); }

  double Complement(double x) const {
    const double y = x - threshold;
    return y > 0.0 ? StandardNormalCdf(-Standardised(y)) : 1.0;
  }

  double Quantile(double p) const {
    return HWY_STATIC_DISPATCH(Quantile)(HWY_STATIC_DISPATCH(OneQuantileRun){p}, scale, shape, threshold);
  }
  void Quantile(In p, Out out) const {
    HWY_DYNAMIC_DISPATCH(QuantileOverArray)(p, {scale, shape, threshold}, out);
  }

  double ComplementQuantile(double q) const {
    return threshold + std::exp(scale - shape * StandardNormalQuantile(q));
  }

  double Mean() const { return threshold + std::exp(scale + 0.5 * shape * shape); }
  double Variance() const { return LognormalVariance(shape * shape, 2.0 * (scale + shape * shape)); }

  double LogLikelihood(In sorted) const {
    const double sum = estimation::SumOverBlocks(sorted, [&](In x, Out out) {
      for (std::size_t i = 0; i < x.size(); ++i) out[i] = x[i] - threshold;
      elementary::Log(out, out);
      for (double& l : out) {
        const double z = (l - scale) / shape;
        l = -0.5 * z * z - l;
      }
    });
    return sum - static_cast<double>(sorted.size()) * (std::log(shape) + kLogSqrtTwoPi);
  }

  static EstimateResult Estimate(const EstimationInput& input) {
    return EstimateOfNormalValues(EstimateLogNormal(input.sorted, input.offset), input.Count());
  }
};

template class Distribution<LogNormal>;

}  // namespace brenvolt
#endif
