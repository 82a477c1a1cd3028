// The Poisson distribution. P(N <= k) = Q(k + 1, mean), the regularised upper incomplete gamma function, by
// Boost.Math for small k and by Temme's uniform expansion for large k, where Boost loses digits in the tails.
#include <boost/math/special_functions/gamma.hpp>
#include <limits>
#include <numbers>
#include <utility>

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

// Plain double throughout (promotion to long double is slower and not needed), and values instead of
// exceptions.
using Policy = boost::math::policies::policy<
    boost::math::policies::promote_double<false>,
    boost::math::policies::domain_error<boost::math::policies::ignore_error>,
    boost::math::policies::pole_error<boost::math::policies::ignore_error>,
    boost::math::policies::overflow_error<boost::math::policies::ignore_error>,
    boost::math::policies::underflow_error<boost::math::policies::ignore_error>,
    boost::math::policies::evaluation_error<boost::math::policies::ignore_error>>;

// From this order on Temme's expansion with the terms below is good to 1e-14 relative out to probabilities of
// 1e-300.
constexpr double kTemmeFrom = 2e4;

template <std::size_t N>
double Horner(const double (&coefficients)[N], double x) {
  double sum = coefficients[N - 1];
  for (std::size_t i = N - 1; i-- > 0;) sum = sum * x + coefficients[i];
  return sum;
}

// Q(a, x) when `isUpper`, else P(a, x) = 1 - Q(a, x), for large a. Temme (1979), with the coefficients of
// DiDonato & Morris (1986): Q = erfc(eta sqrt(a / 2)) / 2 + R, with eta^2 / 2 = l - 1 - ln l, l = x /
// a, and R = exp(-a eta^2 / 2) / sqrt(2 pi a) (C0(eta) + C1(eta) / a + C2(eta) / a^2 + ...).
double LargeIncompleteGamma(double a, double x, bool isUpper) {
  constexpr double kC0[] = {-3.33333333333333315e-01, 8.33333333333333287e-02,  -1.48148148148148154e-02,
                            1.15740740740740734e-03,  3.52733686067019424e-04,  -1.78755144032921798e-04,
                            3.91926317852243767e-05,  -2.18544851067999198e-06, -1.85406221071515997e-06,
                            8.29671134095308652e-07,  -1.76659527368260782e-07, 6.70785354340149841e-09,
                            1.02618097842403086e-08};
  constexpr double kC1[] = {-1.85185185185185192e-03, -3.47222222222222203e-03, 2.64550264550264536e-03,
                            -9.90226337448559630e-04, 2.05761316872427979e-04,  -4.01877572016460897e-07,
                            -1.80985503344899767e-05, 7.64916091608110982e-06};
  constexpr double kC2[] = {4.13359788359788337e-03, -2.68132716049382727e-03, 7.71604938271604895e-04,
                            2.00938786008230470e-06, -1.07366532263651599e-04};
  constexpr double kUnderflow = 750.0;

  const double y = Deviance(a, x);  // a eta^2 / 2
  if (!(y < kUnderflow)) return (x > a) == isUpper ? 0.0 : 1.0;
  const double t = std::copysign(std::sqrt(y), x - a);
  const double eta = t * std::sqrt(2.0 / a);
  const double series = Horner(kC0, eta) + (Horner(kC1, eta) + Horner(kC2, eta) / a) / a;
  const double rest = std::exp(-y) / std::sqrt(2.0 * std::numbers::pi * a) * series;
  return isUpper ? 0.5 * std::erfc(t) + rest : 0.5 * std::erfc(-t) - rest;
}

// P(N <= k) when `isLower`, else P(N > k), for whole k >= 0.
double Tail(double k, double mean, bool isLower) {
  const double a = k + 1.0;
  if (a >= kTemmeFrom) return LargeIncompleteGamma(a, mean, isLower);
  return isLower ? boost::math::gamma_q(a, mean, Policy()) : boost::math::gamma_p(a, mean, Policy());
}

double CdfAt(double x, double mean) {
  if (x < 0.0) return 0.0;
  return std::isinf(x) ? 1.0 : Tail(std::floor(x), mean, true);
}

double ComplementAt(double x, double mean) {
  if (x < 0.0) return 1.0;
  return std::isinf(x) ? 0.0 : Tail(std::floor(x), mean, false);
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
