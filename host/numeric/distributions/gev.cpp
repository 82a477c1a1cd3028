// The generalized extreme value distribution: P(X <= x) = exp(-exp(-w)), w = ln(1 + shape z) / shape, z = (x
// - location) / scale; w = z, the Gumbel distribution, at shape 0. Jenkinson (1955).
#include <limits>

#include "host/numeric/distributions/law_forms.h"
#include "host/numeric/special/gamma_moments.h"
#include "host/numeric/special/log_one_plus.h"
#include "host/numeric/vector/vector_forms.h"

namespace brenvolt::gev {

bool IsValid(double location, double scale, double shape) {
  return std::isfinite(location) && IsPositiveFinite(scale) && std::isfinite(shape);
}

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

struct Law {
  double location;
  double scale;
  double shape;

  bool IsValid() const { return gev::IsValid(location, scale, shape); }

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

  double Cdf(double x) const { return vector_forms::GevCdf(x, location, scale, shape); }
  double Complement(double x) const { return -std::expm1(-std::exp(-Reduced(x))); }
  double Quantile(double p) const { return vector_forms::GevQuantile(p, location, scale, shape); }
  double ComplementQuantile(double q) const { return AtReduced(-std::log(-std::log1p(-q))); }

  double Mean() const { return location + scale * GammaPowerMean(shape); }
  double Variance() const { return scale * scale * GammaPowerVariance(shape); }
};

}  // namespace

double Density(double x, double location, double scale, double shape) {
  return ProbabilityAt(Law{location, scale, shape}, &Law::Density, x);
}

double LogDensity(double x, double location, double scale, double shape) {
  return ProbabilityAt(Law{location, scale, shape}, &Law::LogDensity, x);
}

double Cdf(double x, double location, double scale, double shape) {
  return ProbabilityAt(Law{location, scale, shape}, &Law::Cdf, x);
}

double Complement(double x, double location, double scale, double shape) {
  return ProbabilityAt(Law{location, scale, shape}, &Law::Complement, x);
}

double Quantile(double p, double location, double scale, double shape) {
  return QuantileAt(Law{location, scale, shape}, &Law::Quantile, p);
}

double ComplementQuantile(double q, double location, double scale, double shape) {
  return QuantileAt(Law{location, scale, shape}, &Law::ComplementQuantile, q);
}

void Cdf(std::span<const double> x, double location, double scale, double shape, std::span<double> out) {
  if (!Law{location, scale, shape}.IsValid()) return FillInvalid(x.size(), kInvalidProbability, out);
  vector_forms::GevCdf(x, location, scale, shape, out);
}

void Quantile(std::span<const double> p, double location, double scale, double shape, std::span<double> out) {
  if (!Law{location, scale, shape}.IsValid()) return FillInvalid(p.size(), kInvalidQuantile, out);
  vector_forms::GevQuantile(p, location, scale, shape, out);
}

BRENVOLT_ARRAYS_BY_SCALARS((double location, double scale, double shape), location, scale, shape);

double Mean(double location, double scale, double shape) {
  return MomentAt(Law{location, scale, shape}, &Law::Mean);
}

double Variance(double location, double scale, double shape) {
  return MomentAt(Law{location, scale, shape}, &Law::Variance);
}

}  // namespace brenvolt::gev
