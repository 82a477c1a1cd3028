// The log-normal distribution: ln(x - threshold) is normal with mean `scale` and standard deviation `shape`.
#include "host/numeric/law_forms.h"
#include "host/numeric/standard_normal.h"

namespace brenvolt::lognormal {

bool IsValid(double scale, double shape) {
  return std::isfinite(scale) && IsPositiveFinite(shape);
}

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

bool IsValid(double scale, double shape, double threshold) {
  return lognormal::IsValid(scale, shape) && std::isfinite(threshold);
}

// (ln y - scale) / shape for y >= 0. The exponent's share of ln y is an exact product from which `scale` is
// taken first, so that a small shape does not magnify the rounding of a large logarithm.
double Standardised(double y, double scale, double shape) {
  if (y == 0.0) return -kInfinity;
  if (std::isinf(y)) return kInfinity;
  int exponent = 0;
  double mantissa = std::frexp(y, &exponent);
  if (mantissa < std::numbers::sqrt2 / 2.0) {
    mantissa *= 2.0;
    --exponent;
  }
  const double rest = std::fma(exponent, kLogTwoLow, std::log(mantissa));
  return ((exponent * kLogTwoHigh - scale) + rest) / shape;
}

auto CdfFormula(double scale, double shape, double threshold) {
  return [=](double x) {
    const double y = x - threshold;
    return y > 0.0 ? StandardNormalCdf(Standardised(y, scale, shape)) : 0.0;
  };
}

auto QuantileFormula(double scale, double shape, double threshold) {
  return [=](double p) { return threshold + std::exp(scale + shape * StandardNormalQuantile(p)); };
}

}  // namespace

double Density(double x, double scale, double shape, double threshold) {
  return ProbabilityAt(IsValid(scale, shape, threshold), x, [=](double at) {
    const double y = at - threshold;
    if (!(y > 0.0) || std::isinf(y)) return 0.0;
    const double z = Standardised(y, scale, shape);
    // y joins the exponent: for a wide shape exp(-z^2 / 2) may underflow where its quotient by y does not.
    return std::exp(-0.5 * z * z - std::log(y)) * kInverseSqrtTwoPi / shape;
  });
}

double LogDensity(double x, double scale, double shape, double threshold) {
  return ProbabilityAt(IsValid(scale, shape, threshold), x, [=](double at) {
    const double y = at - threshold;
    if (!(y > 0.0) || std::isinf(y)) return -kInfinity;
    const double z = Standardised(y, scale, shape);
    return -0.5 * z * z - std::log(y) - std::log(shape) - kLogSqrtTwoPi;
  });
}

double Cdf(double x, double scale, double shape, double threshold) {
  return ProbabilityAt(IsValid(scale, shape, threshold), x, CdfFormula(scale, shape, threshold));
}

double Complement(double x, double scale, double shape, double threshold) {
  return ProbabilityAt(IsValid(scale, shape, threshold), x, [=](double at) {
    const double y = at - threshold;
    return y > 0.0 ? StandardNormalCdf(-Standardised(y, scale, shape)) : 1.0;
  });
}

double Quantile(double p, double scale, double shape, double threshold) {
  return QuantileAt(IsValid(scale, shape, threshold), p, QuantileFormula(scale, shape, threshold));
}

double ComplementQuantile(double q, double scale, double shape, double threshold) {
  return QuantileAt(IsValid(scale, shape, threshold), q, [=](double tail) {
    return threshold + std::exp(scale - shape * StandardNormalQuantile(tail));
  });
}

void Cdf(std::span<const double> x, double scale, double shape, double threshold, std::span<double> out) {
  ProbabilitiesAt(IsValid(scale, shape, threshold), x, out, CdfFormula(scale, shape, threshold));
}

void Quantile(std::span<const double> p, double scale, double shape, double threshold,
              std::span<double> out) {
  QuantilesAt(IsValid(scale, shape, threshold), p, out, QuantileFormula(scale, shape, threshold));
}

}  // namespace brenvolt::lognormal
