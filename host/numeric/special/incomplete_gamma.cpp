// Boost.Math for small orders; Temme's uniform expansion for large ones, where Boost loses digits in the
// tails.
#include "host/numeric/special/incomplete_gamma.h"

#include <boost/math/special_functions/gamma.hpp>
#include <cmath>
#include <cstddef>
#include <numbers>

#include "host/numeric/special/saddle_point.h"

namespace brenvolt {
namespace {

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

// Q(a, x) if `isUpper`, otherwise P(a, x), for large a. Temme (1979), with the coefficients of
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

}  // namespace

double UpperIncompleteGamma(double a, double x) {
  if (std::isinf(x)) return 0.0;
  return a >= kTemmeFrom ? LargeIncompleteGamma(a, x, true) : boost::math::gamma_q(a, x, Policy());
}

double LowerIncompleteGamma(double a, double x) {
  if (std::isinf(x)) return 1.0;
  return a >= kTemmeFrom ? LargeIncompleteGamma(a, x, false) : boost::math::gamma_p(a, x, Policy());
}

}  // namespace brenvolt
