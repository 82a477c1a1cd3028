// The binomial distribution. Probabilities after Loader (2000). A tail is the probability at its edge times
// the sum of what the others are relative to it, which has no cancellation at any size: term by term where
// they are few, otherwise as an integral that a Gauss rule of fixed order resolves to the last digits.
#include "host/numeric/distributions/binomial.h"

#include <algorithm>
#include <boost/math/quadrature/gauss.hpp>

#include "host/numeric/distributions/common/count_memo.h"
#include "host/numeric/distributions/common/distribution_forms.h"
#include "host/numeric/distributions/common/quantile_search.h"
#include "host/numeric/estimation/discrete_estimators.h"
#include "host/numeric/special/exact_sums.h"
#include "host/numeric/special/saddle_point.h"
#include "host/numeric/vector/standard_normal.h"

namespace brenvolt {
namespace {

// Up to this many trials the coefficients and what leads to them are whole doubles, and probabilities are
// plain products: those that are doubles come out exactly, so that quantiles at them find the jump.
constexpr double kMostTrialsByProducts = 40.0;
// The variance from which a tail is an integral.
constexpr double kIntegralFrom = 5000.0;

}  // namespace

template <>
struct FormulasOf<Binomial> {
  double p;
  double n;

  bool IsPoint() const { return p == 0.0 || p == 1.0; }
  bool IsSmall() const { return n <= kMostTrialsByProducts && !IsPoint(); }
  bool IsInSupport(double k) const { return k >= 0.0 && k <= n && k == std::floor(k); }

  // n p and n (1 - p) with their rounding errors.
  TwoPartSum ExpectedSuccesses() const { return ExactProduct(n, p); }
  TwoPartSum ExpectedFailures() const {
    const TwoPartSum q = ExactDifference(1.0, p);
    const TwoPartSum failures = ExactProduct(n, q.high);
    return {failures.high, failures.low + n * q.low};
  }

  // The deviance of a count from an expectation known beyond a double.
  static double DevianceFrom(double count, const TwoPartSum& expected) {
    constexpr double kTiny = 1e-280;  // below it the rounding error may underflow
    if (expected.high < kTiny) return Deviance(count, expected.high);
    return Deviance(count, expected.high) + (1.0 - count / expected.high) * expected.low;
  }

  // The exponent of the saddle-point form, for 0 < k < n.
  double Exponent(double k) const {
    return StirlingError(n) - StirlingError(k) - StirlingError(n - k) - DevianceFrom(k, ExpectedSuccesses()) -
           DevianceFrom(n - k, ExpectedFailures());
  }

  // ln P(N = k) at k = 0 and k = n, and at any k if p is 0 or 1.
  double LogAtEnd(double k) const {
    if (IsPoint()) return k == n * p ? 0.0 : -kInfinity;
    return k == 0.0 ? n * std::log1p(-p) : n * std::log(p);
  }

  bool IsEnd(double k) const { return k == 0.0 || k == n || IsPoint(); }

  // The probability of the counts from first to last.
  double SumOfProducts(double first, double last) const {
    const TwoPartSum q = ExactDifference(1.0, p);
    double coefficient = 1.0;
    double sum = 0.0;
    for (double k = 0.0; k <= last; ++k) {
      const double failures = n - k;
      if (k >= first) {
        const double missing = 1.0 + failures * (q.low / q.high);
        sum += coefficient * std::pow(p, k) * std::pow(q.high, failures) * missing;
      }
      coefficient = coefficient * failures / (k + 1.0);
    }
    return sum;
  }

  double Density(double k) const {
    if (!IsInSupport(k)) return 0.0;
    if (IsSmall()) return SumOfProducts(k, k);
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

  // The same sum from the incomplete beta function, (n - k) times the integral of (1 - v)^(n - k - 1) (1 +
  // odds v)^k over v from 0 to 1, k = `first`. The logarithm of the integrand falls from 0, at first with
  // `slope` = n - k - 1 - k odds, and ever faster.
  double IntegralOfRatios(double first, double odds, double slope) const {
    constexpr int kOrder = 30;
    constexpr double kDepth = 45.0;       // where the parabola of the logarithm ends
    constexpr double kNegligible = 40.0;  // where the logarithm itself may end
    const double power = n - first - 1.0;
    const auto depth = [&](double v) {
      return slope * v + power * ExcessOverLog(-v) + first * ExcessOverLog(odds * v);
    };
    const double bend = power + first * odds * odds;
    double reach = 2.0 * kDepth / (slope + std::sqrt(slope * slope + 2.0 * kDepth * bend));
    while (reach < 1.0 && depth(reach) < kNegligible) reach *= 1.25;
    const auto integrand = [&](double v) { return std::exp(-depth(v)); };
    return (n - first) *
           boost::math::quadrature::gauss<double, kOrder>::integrate(integrand, 0.0, std::min(reach, 1.0));
  }

  bool IsWide() const { return n * p * (1.0 - p) >= kIntegralFrom; }

  // P(N <= k) for k below the mean, P(N >= k) for k above it.
  double LowerTail(double k) const {
    if (IsSmall()) return SumOfProducts(0.0, k);
    const TwoPartSum odds = Odds(true);
    if (!IsWide()) return Density(k) * SumOfRatios(k, odds);
    return Density(k) * IntegralOfRatios(k, odds.high, std::fma(n - 1.0, p, -k) / p);
  }
  double UpperTail(double k) const {
    if (IsSmall()) return SumOfProducts(k, n);
    const TwoPartSum odds = Odds(false);
    if (!IsWide()) return Density(k) * SumOfRatios(n - k, odds);
    return Density(k) * IntegralOfRatios(n - k, odds.high, std::fma(-(n - 1.0), p, k - 1.0) / (1.0 - p));
  }

  // Whether P(N <= k) is the one to sum. Half a count from the mean, neither tail is near 1, not even where
  // the mean is near 0 or n.
  bool IsLower(double k) const { return k + 0.5 < n * p; }

  double Cdf(double x) const {
    if (x < 0.0) return 0.0;
    if (x >= n) return 1.0;
    if (IsPoint()) return 1.0 - p;
    const double k = std::floor(x);
    return IsLower(k) ? LowerTail(k) : 1.0 - UpperTail(k + 1.0);
  }

  double Complement(double x) const {
    if (x < 0.0) return 1.0;
    if (x >= n) return 0.0;
    if (IsPoint()) return p;
    const double k = std::floor(x);
    return IsLower(k) ? 1.0 - LowerTail(k) : UpperTail(k + 1.0);
  }

  // Cornish & Fisher (1938) to the second term: a guess at the quantile whose normal counterpart is z.
  double Guess(double z) const {
    const double deviation = std::sqrt(n * p * (1.0 - p));
    const double guess = n * p + deviation * z + (1.0 - 2.0 * p) * (z * z - 1.0) / 6.0;
    return std::clamp(std::floor(guess), 0.0, n);
  }

  // `cdf`(k): the distribution function at whole numbers.
  template <class Function>
  double QuantileFrom(double probability, const Function& cdf) const {
    if (IsPoint()) return n * p;
    if (probability == 0.0) return 0.0;
    if (probability == 1.0) return n;
    return SmallestReached(Guess(StandardNormalQuantile(probability)),
                           [&](double k) { return cdf(k) >= probability; });
  }
  double Quantile(double probability) const {
    return QuantileFrom(probability, [this](double k) { return Cdf(k); });
  }

  // `complement`(k): the same of its complement.
  template <class Function>
  double ComplementQuantileFrom(double tail, const Function& complement) const {
    if (IsPoint()) return n * p;
    if (tail == 0.0) return n;
    if (tail == 1.0) return 0.0;
    return SmallestReached(Guess(-StandardNormalQuantile(tail)),
                           [&](double k) { return complement(k) <= tail; });
  }
  double ComplementQuantile(double tail) const {
    return ComplementQuantileFrom(tail, [this](double k) { return Complement(k); });
  }

  Remembering<FormulasOf> Prepared(std::size_t uses) const { return {*this, uses}; }

  double Mean() const { return n * p; }
  double Variance() const { return n * p * (1.0 - p); }

  // The error of an estimated number of trials has no closed form; that of the proportion would be too small
  // without it.
  static EstimateResult Estimate(const EstimationInput& input) {
    const auto fit = EstimateBinomial(input.sorted, input.trials);
    if (!fit) return fit.Reason();
    const double p = fit->proportion;
    const auto trials = static_cast<double>(fit->trials);
    if (!input.trials) return EstimateOfValues({p, trials}, EstimateOrigin::kExtremes);
    auto estimate = EstimateWithCovariance({p, trials}, {p * (1 - p) / (input.Count() * trials), 0, 0, 0});
    estimate.estimatedParameters = 1;
    return estimate;
  }
};

template class Distribution<Binomial>;

}  // namespace brenvolt
