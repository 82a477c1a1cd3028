// Building blocks of probabilities of counts that stay accurate where factorials and powers would cancel.
// Source: Loader (2000), "Fast and accurate computation of binomial probabilities".
#pragma once

#include <cmath>

namespace brenvolt {

// If |s| is at most this, the series below has all digits.
inline constexpr double kDevianceSeriesLimit = 0.2;

// The deviance of x from m = x + excess, with s = excess / (m + x): x / m = (1 - s) / (1 + s), and the
// logarithm is -2 artanh s, whose first term cancels the excess.
inline double DevianceSeries(double x, double excess, double s) {
  const double s2 = s * s;
  double series = 1.0 / 25.0;
  for (int odd = 23; odd >= 3; odd -= 2) series = series * s2 + 1.0 / odd;
  return excess * s - 2.0 * x * s * s2 * series;
}

// The deviance x ln(x / m) + m - x of a count x > 0 from its expectation m > 0, at least 0.
inline double Deviance(double x, double m) {
  const double s = (m - x) / (m + x);
  if (!(std::abs(s) <= kDevianceSeriesLimit)) return x * std::log(x / m) + m - x;
  return DevianceSeries(x, m - x, s);
}

// v - ln(1 + v) for v > -1, at least 0: the deviance of 1 from 1 + v.
inline double ExcessOverLog(double v) {
  const double s = v / (2.0 + v);
  if (!(std::abs(s) <= kDevianceSeriesLimit)) return v - std::log1p(v);
  return DevianceSeries(1.0, v, s);
}

// ln n! - ln(sqrt(2 pi n) (n / e)^n) for whole n >= 1.
inline double StirlingError(double n) {
  constexpr double kTable[] = {0.0,
                               0.08106146679532725822,
                               0.041340695955409294094,
                               0.027677925684998339149,
                               0.020790672103765093112,
                               0.016644691189821192163,
                               0.013876128823070747999,
                               0.011896709945891770095,
                               0.010411265261972096497,
                               0.0092554621827127329177,
                               0.0083305634333628712565,
                               0.007573675487951840795,
                               0.0069428401072095298657,
                               0.0064089941880042070684,
                               0.0059513701127588477356,
                               0.005554733551962801371};
  constexpr double kTableEnd = 16.0;
  if (n < kTableEnd) return kTable[static_cast<int>(n)];
  const double r = 1.0 / (n * n);
  return (1.0 / 12 -
          (1.0 / 360 - (1.0 / 1260 - (1.0 / 1680 - (1.0 / 1188 - 691.0 / 360360 * r) * r) * r) * r) * r) /
         n;
}

}  // namespace brenvolt
