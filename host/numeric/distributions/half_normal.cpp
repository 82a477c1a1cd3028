// The half normal distribution: the magnitude of a normal variable about 0, shifted by the threshold.
#include <boost/math/special_functions/erf.hpp>
#include <limits>
#include <numbers>

#include "host/numeric/distributions/law_forms.h"
#include "host/numeric/vector/standard_normal.h"

namespace brenvolt::half_normal {

bool IsValid(double scale) {
  return IsPositiveFinite(scale);
}

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

struct Law {
  double scale;
  double threshold;

  bool IsValid() const { return half_normal::IsValid(scale) && std::isfinite(threshold); }

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

BRENVOLT_ARRAYS_BY_SCALARS((double scale, double threshold), scale, threshold);
BRENVOLT_ARRAY_BY_SCALAR(Cdf, (double scale, double threshold), scale, threshold);
BRENVOLT_ARRAY_BY_SCALAR(Quantile, (double scale, double threshold), scale, threshold);

double Mean(double scale, double threshold) {
  return MomentAt(Law{scale, threshold}, &Law::Mean);
}

double Variance(double scale, double threshold) {
  return MomentAt(Law{scale, threshold}, &Law::Variance);
}

}  // namespace brenvolt::half_normal
