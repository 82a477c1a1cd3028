// The folded normal distribution: the magnitude of a normal variable, shifted by the threshold. Leone, Nelson
// & Nottingham (1961).
#include <algorithm>
#include <boost/math/quadrature/gauss.hpp>
#include <limits>

#include "host/numeric/distributions/law_forms.h"
#include "host/numeric/distributions/quantile_search.h"
#include "host/numeric/special/exact_sums.h"
#include "host/numeric/vector/standard_normal.h"

namespace brenvolt::folded_normal {

bool IsValid(double location, double scale) {
  return std::isfinite(location) && IsPositiveFinite(scale);
}

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kSlack = 1e-12;  // for the rounding of the ends of a bracket, in its size and in scales

struct Law {
  double location;
  double scale;
  double threshold;

  bool IsValid() const { return folded_normal::IsValid(location, scale) && std::isfinite(threshold); }

  double Centre() const { return std::abs(location); }

  // The distances of x - threshold from the normal variable's location and from its mirror image.
  double Near(double x) const {
    const TwoPartSum y = ExactDifference(x, threshold);
    return ((y.high - Centre()) + y.low) / scale;
  }
  double Far(double x) const { return ((x - threshold) + Centre()) / scale; }

  double Density(double x) const {
    if (x < threshold || std::isinf(x)) return 0.0;
    return (ExpMinusHalfSquare(Near(x)) + ExpMinusHalfSquare(Far(x))) * kInverseSqrtTwoPi / scale;
  }

  double LogDensity(double x) const {
    if (x < threshold || std::isinf(x)) return -kInfinity;
    const double near = Near(x);
    // (far^2 - near^2) / 2, as a product.
    const double apart = 2.0 * ((x - threshold) / scale) * (Centre() / scale);
    return -0.5 * near * near + std::log1p(std::exp(-apart)) - std::log(scale) - kLogSqrtTwoPi;
  }

  // Near the threshold the two normal probabilities cancel; there it is the integral of their common
  // density, exp(-m^2 / 2) exp(-t^2 / 2) cosh(m t), over a length at which that is nearly a polynomial.
  double Cdf(double x) const {
    if (!(x > threshold)) return 0.0;
    const double h = (x - threshold) / scale;
    const double m = Centre() / scale;
    if (h * std::max(1.0, m) > 1.0) return StandardNormalCdf(Near(x)) - StandardNormalCdf(-Far(x));
    const auto integrand = [m](double t) { return std::exp(-0.5 * t * t) * std::cosh(m * t); };
    return 2.0 * kInverseSqrtTwoPi * ExpMinusHalfSquare(m) *
           boost::math::quadrature::gauss<double, 15>::integrate(integrand, 0.0, h);
  }

  double Complement(double x) const {
    return x > threshold ? StandardNormalCdf(-Near(x)) + StandardNormalCdf(-Far(x)) : 1.0;
  }

  // The same without threshold, whose rounding the search must not see.
  Law Unshifted() const { return {location, scale, 0.0}; }

  // The quantile of a tail lies between the normal one and that of half the upper tail; near 0 the
  // probability grows in a line at first.
  double FromLower(double p) const {
    if (p == 0.0) return threshold;
    const Law law = Unshifted();
    const double low = std::max(0.0, Centre() + scale * StandardNormalQuantile(p));
    const double high = Centre() - scale * StandardNormalQuantile(0.5 * (1.0 - p));
    const double flat = p / law.Density(0.0);
    return threshold + SolveTail(
                           low * (1.0 - kSlack), high * (1.0 + kSlack) + scale * kSlack,
                           std::max(low, std::min(flat, high + scale * kSlack)), p, true,
                           [&](double y) { return law.Cdf(y); }, [&](double y) { return law.Density(y); });
  }

  double FromUpper(double q) const {
    if (q == 0.0) return kInfinity;
    const Law law = Unshifted();
    const double low = std::max(0.0, Centre() - scale * StandardNormalQuantile(q));
    const double high = Centre() - scale * StandardNormalQuantile(0.5 * q);
    return threshold + SolveTail(
                           low * (1.0 - kSlack), high * (1.0 + kSlack), high, q, false,
                           [&](double y) { return law.Complement(y); },
                           [&](double y) { return law.Density(y); });
  }

  double Quantile(double p) const { return p < 0.5 ? FromLower(p) : FromUpper(1.0 - p); }
  double ComplementQuantile(double q) const { return q <= 0.5 ? FromUpper(q) : FromLower(1.0 - q); }

  // By how much the mean of the magnitude exceeds that of the normal variable, in units of the scale.
  double ExcessOfMean() const {
    constexpr double kFar = 40.0;  // beyond it folding moves nothing
    const double d = Centre() / scale;
    return d < kFar ? 2.0 * (kInverseSqrtTwoPi * ExpMinusHalfSquare(d) - d * StandardNormalCdf(-d)) : 0.0;
  }

  double Mean() const { return threshold + (Centre() + scale * ExcessOfMean()); }

  double Variance() const {
    const double excess = ExcessOfMean();
    return scale * scale * (excess > 0.0 ? 1.0 - excess * (2.0 * (Centre() / scale) + excess) : 1.0);
  }
};

}  // namespace

double Density(double x, double location, double scale, double threshold) {
  return ProbabilityAt(Law{location, scale, threshold}, &Law::Density, x);
}

double LogDensity(double x, double location, double scale, double threshold) {
  return ProbabilityAt(Law{location, scale, threshold}, &Law::LogDensity, x);
}

double Cdf(double x, double location, double scale, double threshold) {
  return ProbabilityAt(Law{location, scale, threshold}, &Law::Cdf, x);
}

double Complement(double x, double location, double scale, double threshold) {
  return ProbabilityAt(Law{location, scale, threshold}, &Law::Complement, x);
}

double Quantile(double p, double location, double scale, double threshold) {
  return QuantileAt(Law{location, scale, threshold}, &Law::Quantile, p);
}

double ComplementQuantile(double q, double location, double scale, double threshold) {
  return QuantileAt(Law{location, scale, threshold}, &Law::ComplementQuantile, q);
}

BRENVOLT_ARRAYS_BY_SCALARS((double location, double scale, double threshold), location, scale, threshold);
BRENVOLT_ARRAY_BY_SCALAR(Cdf, (double location, double scale, double threshold), location, scale, threshold);
BRENVOLT_ARRAY_BY_SCALAR(Quantile, (double location, double scale, double threshold), location, scale,
                         threshold);

double Mean(double location, double scale, double threshold) {
  return MomentAt(Law{location, scale, threshold}, &Law::Mean);
}

double Variance(double location, double scale, double threshold) {
  return MomentAt(Law{location, scale, threshold}, &Law::Variance);
}

}  // namespace brenvolt::folded_normal
