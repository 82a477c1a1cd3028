// The Poisson distribution. P(N <= k) = Q(k + 1, mean), the regularised upper incomplete gamma function.
#include <limits>

#include "host/numeric/incomplete_gamma.h"
#include "host/numeric/law_forms.h"
#include "host/numeric/quantile_search.h"
#include "host/numeric/saddle_point.h"
#include "host/numeric/standard_normal.h"

namespace brenvolt::poisson {

bool IsValid(double mean) {
  return IsPositiveFinite(mean);
}

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

double CdfAt(double x, double mean) {
  if (x < 0.0) return 0.0;
  return std::isinf(x) ? 1.0 : UpperIncompleteGamma(std::floor(x) + 1.0, mean);
}

double ComplementAt(double x, double mean) {
  if (x < 0.0) return 1.0;
  return std::isinf(x) ? 0.0 : LowerIncompleteGamma(std::floor(x) + 1.0, mean);
}

// ln P(N = k) for whole k >= 0. Loader (2000), saddle-point form.
double LogProbability(double k, double mean) {
  if (k == 0.0) return -mean;
  return -Deviance(k, mean) - StirlingError(k) - 0.5 * std::log(k) - kLogSqrtTwoPi;
}

bool IsInSupport(double x) {
  return x >= 0.0 && x == std::floor(x) && !std::isinf(x);
}

// Cornish & Fisher (1938) to the second term: a guess at the quantile whose normal counterpart is z.
double Guess(double z, double mean) {
  if (std::isinf(z)) return 0.0;
  return std::max(0.0, std::floor(mean + std::sqrt(mean) * z + (z * z - 1.0) / 6.0));
}

auto QuantileFormula(double mean) {
  return [mean](double p) {
    if (p == 0.0) return 0.0;
    if (p == 1.0) return kInfinity;
    return SmallestReached(Guess(StandardNormalQuantile(p), mean),
                           [=](double k) { return CdfAt(k, mean) >= p; });
  };
}

}  // namespace

double Density(double x, double mean) {
  return ProbabilityAt(IsValid(mean), x, [mean](double at) {
    if (!IsInSupport(at)) return 0.0;
    if (at == 0.0) return std::exp(-mean);
    return std::exp(-Deviance(at, mean) - StirlingError(at)) * kInverseSqrtTwoPi / std::sqrt(at);
  });
}

double LogDensity(double x, double mean) {
  return ProbabilityAt(IsValid(mean), x,
                       [mean](double at) { return IsInSupport(at) ? LogProbability(at, mean) : -kInfinity; });
}

double Cdf(double x, double mean) {
  return ProbabilityAt(IsValid(mean), x, [mean](double at) { return CdfAt(at, mean); });
}

double Complement(double x, double mean) {
  return ProbabilityAt(IsValid(mean), x, [mean](double at) { return ComplementAt(at, mean); });
}

double Quantile(double p, double mean) {
  return QuantileAt(IsValid(mean), p, QuantileFormula(mean));
}

double ComplementQuantile(double q, double mean) {
  return QuantileAt(IsValid(mean), q, [mean](double tail) {
    if (tail == 0.0) return kInfinity;
    if (tail == 1.0) return 0.0;
    return SmallestReached(Guess(-StandardNormalQuantile(tail), mean),
                           [=](double k) { return ComplementAt(k, mean) <= tail; });
  });
}

void Cdf(std::span<const double> x, double mean, std::span<double> out) {
  ProbabilitiesAt(IsValid(mean), x, out, [mean](double at) { return CdfAt(at, mean); });
}

void Quantile(std::span<const double> p, double mean, std::span<double> out) {
  QuantilesAt(IsValid(mean), p, out, QuantileFormula(mean));
}

}  // namespace brenvolt::poisson
