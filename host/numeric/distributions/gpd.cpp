// The generalized Pareto distribution: P(X > x) = exp(-w), w = ln(1 + shape z) / shape, z = (x - threshold) /
// scale >= 0; w = z, the exponential distribution, at shape 0. Pickands (1975).
#include <limits>

#include "host/numeric/distributions/law_forms.h"
#include "host/numeric/special/log_one_plus.h"
#include "host/numeric/vector/vector_forms.h"

namespace brenvolt::gpd {

bool IsValid(double scale, double shape) {
  return IsPositiveFinite(scale) && std::isfinite(shape);
}

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

struct Law {
  double scale;
  double shape;
  double threshold;

  bool IsValid() const { return gpd::IsValid(scale, shape) && std::isfinite(threshold); }

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

  double Cdf(double x) const { return vector_forms::GpdCdf(x, scale, shape, threshold); }
  double Complement(double x) const { return std::exp(-Hazard(x)); }
  double Quantile(double p) const { return vector_forms::GpdQuantile(p, scale, shape, threshold); }
  double ComplementQuantile(double q) const { return AtHazard(-std::log(q)); }

  double Mean() const { return shape < 1.0 ? threshold + scale / (1.0 - shape) : kInfinity; }

  double Variance() const {
    const double mean = scale / (1.0 - shape);
    return shape < 0.5 ? mean * mean / (1.0 - 2.0 * shape) : kInfinity;
  }
};

}  // namespace

double Density(double x, double scale, double shape, double threshold) {
  return ProbabilityAt(Law{scale, shape, threshold}, &Law::Density, x);
}

double LogDensity(double x, double scale, double shape, double threshold) {
  return ProbabilityAt(Law{scale, shape, threshold}, &Law::LogDensity, x);
}

double Cdf(double x, double scale, double shape, double threshold) {
  return ProbabilityAt(Law{scale, shape, threshold}, &Law::Cdf, x);
}

double Complement(double x, double scale, double shape, double threshold) {
  return ProbabilityAt(Law{scale, shape, threshold}, &Law::Complement, x);
}

double Quantile(double p, double scale, double shape, double threshold) {
  return QuantileAt(Law{scale, shape, threshold}, &Law::Quantile, p);
}

double ComplementQuantile(double q, double scale, double shape, double threshold) {
  return QuantileAt(Law{scale, shape, threshold}, &Law::ComplementQuantile, q);
}

void Cdf(std::span<const double> x, double scale, double shape, double threshold, std::span<double> out) {
  if (!Law{scale, shape, threshold}.IsValid()) return FillInvalid(x.size(), kInvalidProbability, out);
  vector_forms::GpdCdf(x, scale, shape, threshold, out);
}

void Quantile(std::span<const double> p, double scale, double shape, double threshold,
              std::span<double> out) {
  if (!Law{scale, shape, threshold}.IsValid()) return FillInvalid(p.size(), kInvalidQuantile, out);
  vector_forms::GpdQuantile(p, scale, shape, threshold, out);
}

BRENVOLT_ARRAYS_BY_SCALARS((double scale, double shape, double threshold), scale, shape, threshold);

double Mean(double scale, double shape, double threshold) {
  return MomentAt(Law{scale, shape, threshold}, &Law::Mean);
}

double Variance(double scale, double shape, double threshold) {
  return MomentAt(Law{scale, shape, threshold}, &Law::Variance);
}

}  // namespace brenvolt::gpd
