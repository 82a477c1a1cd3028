// The Rayleigh distribution: P(X > x) = exp(-z^2 / 2), z = (x - threshold) / scale, for x >= threshold.
#include "host/numeric/distributions/rayleigh.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "host/numeric/distributions/rayleigh.cpp"
#include "hwy/foreach_target.h"
// After foreach_target.h:
#include <array>
#include <cmath>
#include <numbers>

#include "host/numeric/distributions/common/distribution_forms.h"
#include "host/numeric/vector/standard_normal.h"
#include "host/numeric/vector/vector_forms.h"
#include "host/numeric/vector/vector_formulas-inl.h"
#include "host/numeric/vector/vector_loops-inl.h"
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace brenvolt {
namespace HWY_NAMESPACE {
namespace {

// The distribution function and the quantile over vectors, in stages: see vector_loops-inl.h.

struct CdfStage {
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

struct QuantileStage {
  double scale;
  double threshold;
  template <class D, class V>
  HWY_INLINE V operator()(D d, V p, V /*t*/) const {
    const V hazard = hn::Abs(LogOfComplement(d, p));
    const V z = hn::Sqrt(hn::Add(hazard, hazard));
    return ForProbabilities(d, p, hn::Add(hn::Set(d, threshold), hn::Mul(hn::Set(d, scale), z)));
  }
};

template <class Run>
auto Cdf(const Run& run, double scale, double threshold) {
  return run(CdfStage{scale, threshold});
}

template <class Run>
auto Quantile(const Run& run, double scale, double threshold) {
  return run(QuantileStage{scale, threshold});
}

constexpr std::size_t kParameters = 2;
using QuantileRun = ArrayRun;

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace brenvolt
HWY_AFTER_NAMESPACE();

#include "host/numeric/distributions/common/array_forms-inl.h"

#if HWY_ONCE
namespace brenvolt {

EstimationResult<ScaleEstimate> EstimateRayleigh(std::span<const double> data, double offset) {
  auto sample = estimation::AboveOffset(data, offset, false);
  if (!sample) return sample.Reason();
  const auto n = static_cast<double>(data.size());
  const double scaled = std::sqrt(0.5 * estimation::MeanSquare(sample->values));
  // Of the logarithms of x / scale, which needs no units.
  const double logs =
      estimation::SumOverBlocks(sample->values, [scaled](std::span<const double> x, std::span<double> out) {
        for (std::size_t i = 0; i < x.size(); ++i) out[i] = x[i] / scaled;
        elementary::Log(out, out);
      });
  const double scale = sample->InUnitsOfData(scaled);
  return estimation::IfFinite({scale, scale / std::sqrt(4.0 * n), logs - n * (std::log(scale) + 1.0)});
}

template <>
struct FormulasOf<Rayleigh> {
  double scale;
  double threshold;

  double Standardised(double x) const { return (x - threshold) / scale; }

  double Density(double x) const {
    if (!(x > threshold) || std::isinf(x)) return 0.0;
    const double z = Standardised(x);
    return z * ExpMinusHalfSquare(z) / scale;
  }

  double LogDensity(double x) const {
    if (!(x > threshold) || std::isinf(x)) return -kInfinity;
    const double z = Standardised(x);
    return std::log(z) - std::log(scale) - 0.5 * z * z;
  }

  double Cdf(double x) const {
    return HWY_STATIC_DISPATCH(Cdf)(HWY_STATIC_DISPATCH(OneRun){x}, scale, threshold);
  }
  void Cdf(In x, Out out) const { HWY_DYNAMIC_DISPATCH(CdfOverArray)(x, {scale, threshold}, out); }

  double Complement(double x) const {
    if (std::isinf(x)) return x > 0.0 ? 0.0 : 1.0;
    return x > threshold ? ExpMinusHalfSquare(Standardised(x)) : 1.0;
  }

  double Quantile(double p) const {
    return HWY_STATIC_DISPATCH(Quantile)(HWY_STATIC_DISPATCH(OneRun){p}, scale, threshold);
  }
  void Quantile(In p, Out out) const { HWY_DYNAMIC_DISPATCH(QuantileOverArray)(p, {scale, threshold}, out); }

  double ComplementQuantile(double q) const { return threshold + scale * std::sqrt(-2.0 * std::log(q)); }

  double Mean() const { return threshold + scale * std::sqrt(0.5 * std::numbers::pi); }
  double Variance() const { return scale * scale * (2.0 - 0.5 * std::numbers::pi); }

  double LogLikelihood(In sorted) const {
    const double sum = estimation::SumOverBlocks(sorted, [&](In x, Out out) {
      for (std::size_t i = 0; i < x.size(); ++i) out[i] = (x[i] - threshold) / scale;
      elementary::Log(out, out);
      for (std::size_t i = 0; i < x.size(); ++i) {
        const double z = (x[i] - threshold) / scale;
        out[i] -= 0.5 * z * z;
      }
    });
    return sum - static_cast<double>(sorted.size()) * std::log(scale);
  }

  static EstimateResult Estimate(const EstimationInput& input) {
    return EstimateOfScale(EstimateRayleigh(input.sorted, input.offset));
  }
};

template class Distribution<Rayleigh>;

}  // namespace brenvolt
#endif
