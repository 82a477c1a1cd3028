// The Weibull distribution: P(X > x) = exp(-h), h = ((x - threshold) / scale)^shape, for x >= threshold.
#include <limits>

#include "host/numeric/distributions/law_forms.h"
#include "host/numeric/special/gamma_moments.h"
#include "host/numeric/vector/vector_forms.h"

namespace brenvolt::weibull {

bool IsValid(double scale, double shape) {
  return IsPositiveFinite(scale) && IsPositiveFinite(shape);
}

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

bool IsValid(double scale, double shape, double threshold) {
  return weibull::IsValid(scale, shape) && std::isfinite(threshold);
}

// The cumulative hazard h; 0 below the support.
double Hazard(double x, double scale, double shape, double threshold) {
  const double y = x - threshold;
  return y > 0.0 ? std::pow(y / scale, shape) : 0.0;
}

// The x at cumulative hazard h in [0, inf].
double AtHazard(double hazard, double scale, double shape, double threshold) {
  return threshold + scale * std::pow(hazard, 1.0 / shape);
}

}  // namespace

double Density(double x, double scale, double shape, double threshold) {
  return ProbabilityAt(IsValid(scale, shape, threshold), x, [=](double at) {
    if (at < threshold) return 0.0;
    const double survival = std::exp(-Hazard(at, scale, shape, threshold));
    if (survival == 0.0) return 0.0;  // also keeps an infinite power from meeting it
    return shape / scale * std::pow((at - threshold) / scale, shape - 1.0) * survival;
  });
}

double LogDensity(double x, double scale, double shape, double threshold) {
  return ProbabilityAt(IsValid(scale, shape, threshold), x, [=](double at) {
    if (at < threshold || std::isinf(at)) return -kInfinity;
    // At the threshold itself ln u is infinite and counts only where the exponent is not 0.
    const double power = shape == 1.0 ? 0.0 : (shape - 1.0) * std::log((at - threshold) / scale);
    return std::log(shape) - std::log(scale) + power - Hazard(at, scale, shape, threshold);
  });
}

double Cdf(double x, double scale, double shape, double threshold) {
  return ProbabilityAt(IsValid(scale, shape, threshold), x,
                       [=](double at) { return vector_forms::WeibullCdf(at, scale, shape, threshold); });
}

double Complement(double x, double scale, double shape, double threshold) {
  return ProbabilityAt(IsValid(scale, shape, threshold), x,
                       [=](double at) { return std::exp(-Hazard(at, scale, shape, threshold)); });
}

double Quantile(double p, double scale, double shape, double threshold) {
  return QuantileAt(IsValid(scale, shape, threshold), p,
                    [=](double at) { return vector_forms::WeibullQuantile(at, scale, shape, threshold); });
}

double ComplementQuantile(double q, double scale, double shape, double threshold) {
  return QuantileAt(IsValid(scale, shape, threshold), q,
                    [=](double tail) { return AtHazard(-std::log(tail), scale, shape, threshold); });
}

void Cdf(std::span<const double> x, double scale, double shape, double threshold, std::span<double> out) {
  if (!IsValid(scale, shape, threshold)) return FillInvalid(x.size(), kInvalidProbability, out);
  vector_forms::WeibullCdf(x, scale, shape, threshold, out);
}

void Quantile(std::span<const double> p, double scale, double shape, double threshold,
              std::span<double> out) {
  if (!IsValid(scale, shape, threshold)) return FillInvalid(p.size(), kInvalidQuantile, out);
  vector_forms::WeibullQuantile(p, scale, shape, threshold, out);
}

BRENVOLT_ARRAYS_BY_SCALARS((double scale, double shape, double threshold), scale, shape, threshold);

double Mean(double scale, double shape, double threshold) {
  return MomentAt(IsValid(scale, shape, threshold),
                  [=] { return threshold + scale * std::tgamma(1.0 + 1.0 / shape); });
}

double Variance(double scale, double shape, double threshold) {
  return MomentAt(IsValid(scale, shape, threshold), [=] {
    const double unit = scale / shape;
    return unit * unit * GammaPowerVariance(-1.0 / shape);
  });
}

}  // namespace brenvolt::weibull
