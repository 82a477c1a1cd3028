// The Rayleigh distribution: P(X > x) = exp(-z^2 / 2), z = (x - threshold) / scale, for x >= threshold.
#include <limits>
#include <numbers>

#include "host/numeric/distributions/law_forms.h"
#include "host/numeric/vector/standard_normal.h"
#include "host/numeric/vector/vector_forms.h"

namespace brenvolt::rayleigh {

bool IsValid(double scale) {
  return IsPositiveFinite(scale);
}

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

struct Law {
  double scale;
  double threshold;

  bool IsValid() const { return rayleigh::IsValid(scale) && std::isfinite(threshold); }

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

  double Complement(double x) const {
    if (std::isinf(x)) return x > 0.0 ? 0.0 : 1.0;
    return x > threshold ? ExpMinusHalfSquare(Standardised(x)) : 1.0;
  }

  double Quantile(double p) const { return vector_forms::RayleighQuantile(p, scale, threshold); }

  double ComplementQuantile(double q) const { return threshold + scale * std::sqrt(-2.0 * std::log(q)); }

  double Mean() const { return threshold + scale * std::sqrt(0.5 * std::numbers::pi); }
  double Variance() const { return scale * scale * (2.0 - 0.5 * std::numbers::pi); }
};

}  // namespace

double Density(double x, double scale, double threshold) {
  return ProbabilityAt(Law{scale, threshold}, &Law::Density, x);
}

double LogDensity(double x, double scale, double threshold) {
  return ProbabilityAt(Law{scale, threshold}, &Law::LogDensity, x);
}

double Cdf(double x, double scale, double threshold) {
  return ProbabilityAt(Law{scale, threshold}, &Law::Cdf, x);
}

double Complement(double x, double scale, double threshold) {
  return ProbabilityAt(Law{scale, threshold}, &Law::Complement, x);
}

double Quantile(double p, double scale, double threshold) {
  return QuantileAt(Law{scale, threshold}, &Law::Quantile, p);
}

double ComplementQuantile(double q, double scale, double threshold) {
  return QuantileAt(Law{scale, threshold}, &Law::ComplementQuantile, q);
}

void Cdf(std::span<const double> x, double scale, double threshold, std::span<double> out) {
  if (!Law{scale, threshold}.IsValid()) return FillInvalid(x.size(), kInvalidProbability, out);
  vector_forms::RayleighCdf(x, scale, threshold, out);
}

void Quantile(std::span<const double> p, double scale, double threshold, std::span<double> out) {
  if (!Law{scale, threshold}.IsValid()) return FillInvalid(p.size(), kInvalidQuantile, out);
  vector_forms::RayleighQuantile(p, scale, threshold, out);
}

BRENVOLT_ARRAYS_BY_SCALARS((double scale, double threshold), scale, threshold);

double Mean(double scale, double threshold) {
  return MomentAt(Law{scale, threshold}, &Law::Mean);
}

double Variance(double scale, double threshold) {
  return MomentAt(Law{scale, threshold}, &Law::Variance);
}

}  // namespace brenvolt::rayleigh
