// The normal distribution: z = (x - location) / scale, taken once.
#include "host/numeric/distributions/normal.h"

#include <array>

#include "host/numeric/distributions/common/distribution_forms.h"
#include "host/numeric/vector/standard_normal.h"
#include "host/numeric/vector/vector_forms.h"

namespace brenvolt {

template <>
struct FormulasOf<Normal> {
  double location;
  double scale;

  double Density(double x) const {
    return ExpMinusHalfSquare((x - location) / scale) * kInverseSqrtTwoPi / scale;
  }

  double LogDensity(double x) const {
    const double z = (x - location) / scale;
    return -0.5 * z * z - std::log(scale) - kLogSqrtTwoPi;
  }

  double Cdf(double x) const { return vector_forms::NormalCdf(x, location, scale); }
  void Cdf(In x, Out out) const { vector_forms::NormalCdf(x, location, scale, out); }

  double Complement(double x) const { return StandardNormalCdf((location - x) / scale); }
  void Complement(In x, Out out) const { vector_forms::NormalCdf(x, location, -scale, out); }

  double Quantile(double p) const { return vector_forms::NormalQuantile(p, location, scale); }
  void Quantile(In p, Out out) const { vector_forms::NormalQuantile(p, location, scale, out); }

  double ComplementQuantile(double q) const { return location - scale * StandardNormalQuantile(q); }
  void ComplementQuantile(In q, Out out) const { vector_forms::NormalQuantile(q, location, -scale, out); }

  double Mean() const { return location; }
  double Variance() const { return scale * scale; }

  double LogLikelihood(In sorted) const {
    const double sum =
        estimation::SumOverBlocks(sorted, [&](In x, Out out) { HalfSquares(x, location, scale, out); });
    return sum - static_cast<double>(sorted.size()) * (std::log(scale) + kLogSqrtTwoPi);
  }

  static EstimateResult Estimate(const EstimationInput& input) {
    return EstimateOfNormalValues(EstimateNormal(input.sorted), input.Count());
  }
};

template class Distribution<Normal>;

}  // namespace brenvolt
