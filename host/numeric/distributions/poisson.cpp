// The Poisson distribution. P(N <= k) = Q(k + 1, mean), the regularised upper incomplete gamma function.
#include <limits>

#include "host/numeric/distributions/count_memo.h"
#include "host/numeric/distributions/law_forms.h"
#include "host/numeric/distributions/quantile_search.h"
#include "host/numeric/special/incomplete_gamma.h"
#include "host/numeric/special/saddle_point.h"
#include "host/numeric/vector/standard_normal.h"

namespace brenvolt::poisson {

bool IsValid(double mean) {
  return IsPositiveFinite(mean);
}

double Mean(double mean) {
  return IsValid(mean) ? mean : kInvalidProbability;
}

double Variance(double mean) {
  return Mean(mean);
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

// `cdf`(k): the distribution function at whole numbers.
template <class Function>
double QuantileFrom(double p, double mean, const Function& cdf) {
  if (p == 0.0) return 0.0;
  if (p == 1.0) return kInfinity;
  return SmallestReached(Guess(StandardNormalQuantile(p), mean), [&](double k) { return cdf(k) >= p; });
}

// `complement`(k): the same of its complement.
template <class Function>
double ComplementQuantileFrom(double tail, double mean, const Function& complement) {
  if (tail == 0.0) return kInfinity;
  if (tail == 1.0) return 0.0;
  return SmallestReached(Guess(-StandardNormalQuantile(tail), mean),
                         [&](double k) { return complement(k) <= tail; });
}

double DensityAt(double x, double mean) {
  if (!IsInSupport(x)) return 0.0;
  if (x == 0.0) return std::exp(-mean);
  return std::exp(-Deviance(x, mean) - StirlingError(x)) * kInverseSqrtTwoPi / std::sqrt(x);
}

double LogDensityAt(double x, double mean) {
  return IsInSupport(x) ? LogProbability(x, mean) : -kInfinity;
}

}  // namespace

double Density(double x, double mean) {
  return ProbabilityAt(IsValid(mean), x, [mean](double at) { return DensityAt(at, mean); });
}

double LogDensity(double x, double mean) {
  return ProbabilityAt(IsValid(mean), x, [mean](double at) { return LogDensityAt(at, mean); });
}

double Cdf(double x, double mean) {
  return ProbabilityAt(IsValid(mean), x, [mean](double at) { return CdfAt(at, mean); });
}

double Complement(double x, double mean) {
  return ProbabilityAt(IsValid(mean), x, [mean](double at) { return ComplementAt(at, mean); });
}

double Quantile(double p, double mean) {
  return QuantileAt(IsValid(mean), p, [mean](double probability) {
    return QuantileFrom(probability, mean, [mean](double k) { return CdfAt(k, mean); });
  });
}

double ComplementQuantile(double q, double mean) {
  return QuantileAt(IsValid(mean), q, [mean](double tail) {
    return ComplementQuantileFrom(tail, mean, [mean](double k) { return ComplementAt(k, mean); });
  });
}

void Density(std::span<const double> x, double mean, std::span<double> out) {
  const auto density = [mean](double k) { return DensityAt(k, mean); };
  RememberedProbabilitiesAt(IsValid(mean), x, out, density);
}

void LogDensity(std::span<const double> x, double mean, std::span<double> out) {
  const auto density = [mean](double k) { return LogDensityAt(k, mean); };
  RememberedProbabilitiesAt(IsValid(mean), x, out, density);
}

void Cdf(std::span<const double> x, double mean, std::span<double> out) {
  const auto cdf = [mean](double k) { return CdfAt(k, mean); };
  RememberedProbabilitiesAt(IsValid(mean), x, out, cdf);
}

void Complement(std::span<const double> x, double mean, std::span<double> out) {
  const auto complement = [mean](double k) { return ComplementAt(k, mean); };
  RememberedProbabilitiesAt(IsValid(mean), x, out, complement);
}

void Quantile(std::span<const double> p, double mean, std::span<double> out) {
  CountMemo memo(p.size());
  const auto cdf = [&](double count) { return memo.At(count, [mean](double k) { return CdfAt(k, mean); }); };
  QuantilesAt(IsValid(mean), p, out,
              [&](double probability) { return QuantileFrom(probability, mean, cdf); });
}

void ComplementQuantile(std::span<const double> q, double mean, std::span<double> out) {
  CountMemo memo(q.size());
  const auto complement = [&](double count) {
    return memo.At(count, [mean](double k) { return ComplementAt(k, mean); });
  };
  QuantilesAt(IsValid(mean), q, out,
              [&](double tail) { return ComplementQuantileFrom(tail, mean, complement); });
}

}  // namespace brenvolt::poisson
