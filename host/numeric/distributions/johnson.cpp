// The four families of Johnson (1949): z = gamma + delta g(u), u = (x - xi) / lambda, is standard normal.
#include "host/numeric/distributions/johnson.h"

#include <array>

#include "host/numeric/distributions/common/distribution_forms.h"
#include "host/numeric/estimation/johnson/johnson_bounded_moments.h"
#include "host/numeric/estimation/johnson/johnson_estimators.h"
#include "host/numeric/special/exact_sums.h"
#include "host/numeric/vector/standard_normal.h"
#include "host/numeric/vector/vector_forms.h"

namespace brenvolt {
template <>
struct FormulasOf<Johnson> {
  double type;
  double gamma;
  double delta;
  double lambda;
  double xi;

  JohnsonFamily Family() const { return static_cast<JohnsonFamily>(static_cast<int>(type)); }

  // lambda - (x - xi), as good near the upper end of SB as x - xi near the lower.
  double BelowEnd(double x) const {
    const TwoPartSum y = ExactDifference(x, xi);
    return (lambda - y.high) - y.low;
  }

  // g(u); infinite beyond the ends of the support.
  double Transformed(double x) const {
    const double y = x - xi;
    switch (Family()) {
      case JohnsonFamily::kLognormal:
        return y > 0.0 ? std::log(y / lambda) : -kInfinity;
      case JohnsonFamily::kUnbounded:
        return std::asinh(y / lambda);
      case JohnsonFamily::kBounded: {
        if (!(y > 0.0)) return -kInfinity;
        const double rest = BelowEnd(x);
        return rest > 0.0 ? std::log(y / rest) : kInfinity;
      }
      case JohnsonFamily::kNormal:
        return y / lambda;
    }
    return kInfinity;  // no other is valid
  }

  // ln g'(u), for x inside the support.
  double LogSlope(double x) const {
    const double u = (x - xi) / lambda;
    switch (Family()) {
      case JohnsonFamily::kLognormal:
        return -std::log(u);
      case JohnsonFamily::kUnbounded:
        return -std::log(std::hypot(1.0, u));
      case JohnsonFamily::kBounded:
        return -std::log(u) - std::log(BelowEnd(x) / lambda);
      case JohnsonFamily::kNormal:
        return 0.0;
    }
    return 0.0;  // no other is valid
  }

  // Rounded once: gamma may be large, and the tails magnify every unit in the last place.
  double Standardised(double x) const { return std::fma(delta, Transformed(x), gamma); }

  // The slope joins the exponent: exp(-z^2 / 2) may underflow where their product does not.
  double Density(double x) const {
    const double z = Standardised(x);
    if (std::isinf(z)) return 0.0;
    return std::exp(-0.5 * z * z + LogSlope(x)) * kInverseSqrtTwoPi * (delta / lambda);
  }

  double LogDensity(double x) const {
    const double z = Standardised(x);
    if (std::isinf(z)) return -kInfinity;
    return -0.5 * z * z + LogSlope(x) + std::log(delta / lambda) - kLogSqrtTwoPi;
  }

  double Cdf(double x) const { return StandardNormalCdf(Standardised(x)); }
  double Complement(double x) const { return StandardNormalCdf(-Standardised(x)); }

  // Over arrays; `out` may be `x`.
  void Cdf(In x, Out out) const {
    for (std::size_t i = 0; i < x.size(); ++i) out[i] = std::isnan(x[i]) ? x[i] : Standardised(x[i]);
    vector_forms::NormalCdf(out.first(x.size()), 0.0, 1.0, out);
  }
  void Complement(In x, Out out) const {
    for (std::size_t i = 0; i < x.size(); ++i) out[i] = std::isnan(x[i]) ? x[i] : -Standardised(x[i]);
    vector_forms::NormalCdf(out.first(x.size()), 0.0, 1.0, out);
  }

  // The x at the standard normal value z.
  double AtNormal(double z) const {
    const double g = (z - gamma) / delta;
    switch (Family()) {
      case JohnsonFamily::kLognormal:
        return xi + lambda * std::exp(g);
      case JohnsonFamily::kUnbounded:
        return xi + lambda * std::sinh(g);
      case JohnsonFamily::kBounded:
        return g < 0.0 ? xi + lambda * (std::exp(g) / (1.0 + std::exp(g)))
                       : xi + lambda / (1.0 + std::exp(-g));
      case JohnsonFamily::kNormal:
        return xi + lambda * g;
    }
    return kInvalidQuantile;  // no other is valid
  }

  double Quantile(double p) const { return AtNormal(StandardNormalQuantile(p)); }
  double ComplementQuantile(double q) const { return AtNormal(-StandardNormalQuantile(q)); }

  double UnboundedMean() const {
    return gamma == 0.0 ? xi : xi - lambda * std::exp(0.5 / delta / delta) * std::sinh(gamma / delta);
  }

  double UnboundedVariance() const {
    const double excess = std::expm1(1.0 / delta / delta);  // omega - 1
    return 0.5 * lambda * lambda * excess * ((1.0 + excess) * std::cosh(2.0 * gamma / delta) + 1.0);
  }

  // Johnson (1949), for SL, SU and SN; SB has no closed form.
  double Mean() const {
    switch (Family()) {
      case JohnsonFamily::kLognormal:
        return xi + lambda * std::exp((0.5 / delta - gamma) / delta);
      case JohnsonFamily::kUnbounded:
        return UnboundedMean();
      case JohnsonFamily::kBounded:
        return xi + lambda * BoundedMeanAndVariance(gamma, delta).mean;
      case JohnsonFamily::kNormal:
        return xi - lambda * (gamma / delta);
    }
    return kInvalidProbability;  // no other is valid
  }

  double Variance() const {
    switch (Family()) {
      case JohnsonFamily::kLognormal:
        return lambda * lambda * LognormalVariance(1.0 / delta / delta, 2.0 * (1.0 / delta - gamma) / delta);
      case JohnsonFamily::kUnbounded:
        return UnboundedVariance();
      case JohnsonFamily::kBounded:
        return lambda * lambda * BoundedMeanAndVariance(gamma, delta).variance;
      case JohnsonFamily::kNormal:
        return (lambda / delta) * (lambda / delta);
    }
    return kInvalidProbability;  // no other is valid
  }

  // Family 5, the two-point limit of SB, is kept as SB.
  static double StoredFamily(double family) {
    constexpr double kTwoPoints = 5;
    return family == kTwoPoints ? static_cast<double>(JohnsonFamily::kBounded) : family;
  }

  // SL and SN do without the scale, SN also without the location.
  static int ParameterCount(double family) {
    if (family == static_cast<double>(JohnsonFamily::kNormal)) return 2;
    return family == static_cast<double>(JohnsonFamily::kLognormal) ? 3 : 4;
  }

  // No standard errors: neither moments nor percentiles maximise the likelihood.
  static EstimationResult<JohnsonEstimate> ByMoments(const EstimationInput& input) {
    constexpr double kLeastCount = 4;  // for a kurtosis
    if (IsNotSet(input.kurtosis))
      return FaultAbout(EstimationFault::kTooFewValues, input.Count(), kLeastCount);
    return EstimateJohnsonByMoments(input.mean, input.standardDeviation, input.skewness, input.kurtosis);
  }

  static EstimateResult Estimate(const EstimationInput& input) {
    auto fit = input.isByPercentiles ? EstimateJohnsonByPercentiles(input.sorted) : ByMoments(input);
    if (!fit) return fit.Reason();
    (*fit)[0] = StoredFamily((*fit)[0]);
    auto estimate =
        EstimateOfValues({fit->begin(), fit->end()},
                         input.isByPercentiles ? EstimateOrigin::kPercentiles : EstimateOrigin::kMoments);
    estimate.estimatedParameters = ParameterCount((*fit)[0]);
    return estimate;
  }
};

template class Distribution<Johnson>;

}  // namespace brenvolt
