// The Rayleigh distribution: P(X > x) = exp(-z^2 / 2), z = (x - threshold) / scale, for x >= threshold.
#include "host/numeric/distributions/rayleigh.h"

#include <array>
#include <numbers>

#include "host/numeric/distributions/shared/distribution_forms.h"
#include "host/numeric/vector/standard_normal.h"
#include "host/numeric/vector/vector_forms.h"

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

  double Cdf(double x) const { return vector_forms::RayleighCdf(x, scale, threshold); }
  void Cdf(In x, Out out) const { vector_forms::RayleighCdf(x, scale, threshold, out); }

  double Complement(double x) const {
    if (std::isinf(x)) return x > 0.0 ? 0.0 : 1.0;
    return x > threshold ? ExpMinusHalfSquare(Standardised(x)) : 1.0;
  }

  double Quantile(double p) const { return vector_forms::RayleighQuantile(p, scale, threshold); }
  void Quantile(In p, Out out) const { vector_forms::RayleighQuantile(p, scale, threshold, out); }

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
