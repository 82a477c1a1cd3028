// The binomial distribution. Probabilities after Loader (2000); a tail is the probability at its edge times a
// sum of ratios of neighbours, which has no cancellation at any size and takes some standard deviations of
// terms.
#include <algorithm>
#include <limits>

#include "host/numeric/exact_sums.h"
#include "host/numeric/law_forms.h"
#include "host/numeric/quantile_search.h"
#include "host/numeric/saddle_point.h"
#include "host/numeric/standard_normal.h"

namespace brenvolt::binomial {

bool IsValid(double proportion, double trials) {
  constexpr double kMostTrials = 0x1p53;
  return proportion >= 0.0 && proportion <= 1.0 && trials >= 1.0 && trials <= kMostTrials &&
         trials == std::floor(trials);
}

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

struct Law {
  double p;
  double n;

  bool IsValid() const { return binomial::IsValid(p, n); }

  bool IsPoint() const { return p == 0.0 || p == 1.0; }
  bool IsInSupport(double k) const { return k >= 0.0 && k <= n && k == std::floor(k); }

  // n p and n (1 - p) with their rounding errors.
  TwoPartSum ExpectedSuccesses() const {
    const double m = n * p;
    return {m, std::fma(n, p, -m)};
  }
  TwoPartSum ExpectedFailures() const {
    const TwoPartSum successes = ExpectedSuccesses();
    const TwoPartSum failures = ExactDifference(n, successes.high);
    return {failures.high, failures.low - successes.low};
  }

  // The deviance of a count from an expectation known beyond a double.
  static double DevianceFrom(double count, const TwoPartSum& expected) {
    return Deviance(count, expected.high) + (1.0 - count / expected.high) * expected.low;
  }

  // The exponent of the saddle-point form, for 0 < k < n.
  double Exponent(double k) const {
    return StirlingError(n) - StirlingError(k) - StirlingError(n - k) - DevianceFrom(k, ExpectedSuccesses()) -
           DevianceFrom(n - k, ExpectedFailures());
  }

  // ln P(N = k) at k = 0 and k = n, and at any k where p is 0 or 1.
  double LogAtEnd(double k) const {
    if (IsPoint()) return k == n * p ? 0.0 : -kInfinity;
    return k == 0.0 ? n * std::log1p(-p) : n * std::log(p);
  }

  bool IsEnd(double k) const { return k == 0.0 || k == n || IsPoint(); }

  double Density(double k) const {
    if (!IsInSupport(k)) return 0.0;
    if (IsEnd(k)) return std::exp(LogAtEnd(k));
    return std::exp(Exponent(k)) * kInverseSqrtTwoPi * std::sqrt(n / k / (n - k));
  }

  double LogDensity(double k) const {
    if (!IsInSupport(k)) return -kInfinity;
    if (IsEnd(k)) return LogAtEnd(k);
    return Exponent(k) - kLogSqrtTwoPi + 0.5 * std::log(n / k / (n - k));
  }

  // The odds of failure (isLower) or of success, and the relative error of their rounding.
  TwoPartSum Odds(bool isLower) const {
    const TwoPartSum q = ExactDifference(1.0, p);
    const double odds = isLower ? q.high / p : p / q.high;
    const double missing = isLower ? std::fma(-odds, p, q.high) / q.high + q.low / q.high
                                   : std::fma(-odds, q.high, p) / p - q.low / q.high;
    return {odds, -missing};
  }

  // 1 + r1 + r1 r2 + …, r_i = odds (first - i + 1) / (n - first + i): the probabilities of `first` and all
  // lower counts, relative to that of `first`. The relative error of the odds enters a term once per factor
  // and is taken back at the end.
  double SumOfRatios(double first, const TwoPartSum& odds) const {
    constexpr double kNegligible = 0x1p-58;
    double term = 1.0;
    double sum = 1.0;
    double weighted = 0.0;  // the sum of i times term i
    for (double i = 1.0; i <= first && term > kNegligible * sum; ++i) {
      term *= odds.high * (first - i + 1.0) / (n - first + i);
      sum += term;
      weighted += i * term;
    }
    return sum - odds.low * weighted;
  }

  // P(N <= k) for k below the mean, P(N >= k) for k above it.
  double LowerTail(double k) const { return Density(k) * SumOfRatios(k, Odds(true)); }
  double UpperTail(double k) const { return Density(k) * SumOfRatios(n - k, Odds(false)); }

  double Cdf(double x) const {
    if (x < 0.0) return 0.0;
    if (x >= n) return 1.0;
    if (IsPoint()) return 1.0 - p;
    const double k = std::floor(x);
    return k < n * p ? LowerTail(k) : 1.0 - UpperTail(k + 1.0);
  }

  double Complement(double x) const {
    if (x < 0.0) return 1.0;
    if (x >= n) return 0.0;
    if (IsPoint()) return p;
    const double k = std::floor(x);
    return k < n * p ? 1.0 - LowerTail(k) : UpperTail(k + 1.0);
  }

  // Cornish & Fisher (1938) to the second term: a guess at the quantile whose normal counterpart is z.
  double Guess(double z) const {
    const double deviation = std::sqrt(n * p * (1.0 - p));
    const double guess = n * p + deviation * z + (1.0 - 2.0 * p) * (z * z - 1.0) / 6.0;
    return std::clamp(std::floor(guess), 0.0, n);
  }

  double Quantile(double probability) const {
    if (IsPoint()) return n * p;
    if (probability == 0.0) return 0.0;
    if (probability == 1.0) return n;
    return SmallestReached(Guess(StandardNormalQuantile(probability)),
                           [&](double k) { return Cdf(k) >= probability; });
  }

  double ComplementQuantile(double tail) const {
    if (IsPoint()) return n * p;
    if (tail == 0.0) return n;
    if (tail == 1.0) return 0.0;
    return SmallestReached(Guess(-StandardNormalQuantile(tail)),
                           [&](double k) { return Complement(k) <= tail; });
  }
};

}  // namespace

double Density(double x, double proportion, double trials) {
  return ProbabilityAt(Law{proportion, trials}, &Law::Density, x);
}

double LogDensity(double x, double proportion, double trials) {
  return ProbabilityAt(Law{proportion, trials}, &Law::LogDensity, x);
}

double Cdf(double x, double proportion, double trials) {
  return ProbabilityAt(Law{proportion, trials}, &Law::Cdf, x);
}

double Complement(double x, double proportion, double trials) {
  return ProbabilityAt(Law{proportion, trials}, &Law::Complement, x);
}

double Quantile(double p, double proportion, double trials) {
  return QuantileAt(Law{proportion, trials}, &Law::Quantile, p);
}

double ComplementQuantile(double q, double proportion, double trials) {
  return QuantileAt(Law{proportion, trials}, &Law::ComplementQuantile, q);
}

void Cdf(std::span<const double> x, double proportion, double trials, std::span<double> out) {
  ProbabilitiesAt(Law{proportion, trials}, &Law::Cdf, x, out);
}

void Quantile(std::span<const double> p, double proportion, double trials, std::span<double> out) {
  QuantilesAt(Law{proportion, trials}, &Law::Quantile, p, out);
}

}  // namespace brenvolt::binomial
