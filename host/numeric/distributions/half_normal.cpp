// The half normal distribution: the magnitude of a normal variable about 0, shifted by the threshold.
#include "host/numeric/distributions/half_normal.h"

#include <array>
#include <boost/math/special_functions/erf.hpp>
#include <numbers>

#include "host/numeric/distributions/common/distribution_forms.h"
#include "host/numeric/vector/standard_normal.h"

namespace brenvolt {

EstimationResult<ScaleEstimate> EstimateHalfNormal(std::span<const double> data, double offset) {
  auto sample = estimation::AboveOffset(data, offset, true);
  if (!sample) return sample.Reason();
  const double scale = sample->InUnitsOfData(std::sqrt(estimation::MeanSquare(sample->values)));
  if (!(scale > 0.0)) return Fault{EstimationFault::kNoSpread};
  const auto n = static_cast<double>(data.size());
  return estimation::IfFinite(
      {scale, scale / std::sqrt(2.0 * n), n * (std::numbers::ln2 - kLogSqrtTwoPi - std::log(scale) - 0.5)});
}

template <>
struct FormulasOf<HalfNormal> {
  double scale;
  double threshold;

  double Standardised(double x) const { return (x - threshold) / scale; }

  double Density(double x) const {
    if (x < threshold || std::isinf(x)) return 0.0;
    return 2.0 * kInverseSqrtTwoPi * ExpMinusHalfSquare(Standardised(x)) / scale;
  }

  double LogDensity(double x) const {
    if (x < threshold) return -kInfinity;
    const double z = Standardised(x);
    return std::numbers::ln2 - 0.5 * z * z - std::log(scale) - kLogSqrtTwoPi;
  }

  double Cdf(double x) const {
    return x > threshold ? std::erf(Standardised(x) * (std::numbers::sqrt2 / 2.0)) : 0.0;
  }

  double Complement(double x) const {
    return x > threshold ? 2.0 * StandardNormalCdf(-Standardised(x)) : 1.0;
  }

  static double LowerZ(double p) { return std::numbers::sqrt2 * boost::math::erf_inv(p); }
  static double UpperZ(double q) { return -StandardNormalQuantile(0.5 * q); }

  // From the nearer tail; in the other half its complement is exact.
  double Quantile(double p) const { return threshold + scale * (p < 0.5 ? LowerZ(p) : UpperZ(1.0 - p)); }

  double ComplementQuantile(double q) const {
    return threshold + scale * (q <= 0.5 ? UpperZ(q) : LowerZ(1.0 - q));
  }

  double Mean() const { return threshold + scale * (2.0 * kInverseSqrtTwoPi); }
  double Variance() const { return scale * scale * (1.0 - 2.0 * std::numbers::inv_pi); }

  double LogLikelihood(In sorted) const {
    const double sum =
        estimation::SumOverBlocks(sorted, [&](In x, Out out) { HalfSquares(x, threshold, scale, out); });
    return sum + static_cast<double>(sorted.size()) * (std::numbers::ln2 - std::log(scale) - kLogSqrtTwoPi);
  }

  static EstimateResult Estimate(const EstimationInput& input) {
    return EstimateOfScale(EstimateHalfNormal(input.sorted, input.offset));
  }
};

template class Distribution<HalfNormal>;

}  // namespace brenvolt
