// The log-normal distribution: ln(x - threshold) is normal with mean `scale` and standard deviation `shape`.
#include <limits>
#include <numbers>

#include "host/numeric/distributions/law_forms.h"
#include "host/numeric/vector/standard_normal.h"
#include "host/numeric/vector/vector_forms.h"

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
  return ProbabilityAt(IsValid(scale, shape, threshold), x,
                       [=](double at) { return vector_forms::LognormalCdf(at, scale, shape, threshold); });
}

double Complement(double x, double scale, double shape, double threshold) {
  return ProbabilityAt(IsValid(scale, shape, threshold), x, [=](double at) {
    const double y = at - threshold;
    return y > 0.0 ? StandardNormalCdf(-Standardised(y, scale, shape)) : 1.0;
  });
}

double Quantile(double p, double scale, double shape, double threshold) {
  return QuantileAt(IsValid(scale, shape, threshold), p,
                    [=](double at) { return vector_forms::LognormalQuantile(at, scale, shape, threshold); });
}

double ComplementQuantile(double q, double scale, double shape, double threshold) {
  return QuantileAt(IsValid(scale, shape, threshold), q, [=](double tail) {
    return threshold + std::exp(scale - shape * StandardNormalQuantile(tail));
  });
}

void Cdf(std::span<const double> x, double scale, double shape, double threshold, std::span<double> out) {
  if (!IsValid(scale, shape, threshold)) return FillInvalid(x.size(), kInvalidProbability, out);
  vector_forms::LognormalCdf(x, scale, shape, threshold, out);
}

void Quantile(std::span<const double> p, double scale, double shape, double threshold,
              std::span<double> out) {
  if (!IsValid(scale, shape, threshold)) return FillInvalid(p.size(), kInvalidQuantile, out);
  vector_forms::LognormalQuantile(p, scale, shape, threshold, out);
}

BRENVOLT_ARRAYS_BY_SCALARS((double scale, double shape, double threshold), scale, shape, threshold);

double Mean(double scale, double shape, double threshold) {
  return MomentAt(IsValid(scale, shape, threshold),
                  [=] { return threshold + std::exp(scale + 0.5 * shape * shape); });
}

double Variance(double scale, double shape, double threshold) {
  return MomentAt(IsValid(scale, shape, threshold),
                  [=] { return LognormalVariance(shape * shape, 2.0 * (scale + shape * shape)); });
}

}  // namespace brenvolt::lognormal
