// The geometric distribution of the failures before the first success: P(N > k) = (1 - p)^(k + 1).
#include "host/numeric/distributions/geometric.h"

#include <algorithm>

#include "host/numeric/distributions/common/distribution_forms.h"
#include "host/numeric/distributions/common/quantile_search.h"
#include "host/numeric/estimation/discrete_estimators.h"
#include "host/numeric/special/exact_sums.h"

namespace brenvolt {
template <>
struct FormulasOf<Geometric> {
  double p;

  static bool IsInSupport(double k) { return k >= 0.0 && k == std::floor(k) && !std::isinf(k); }

  // count times ln(1 - p), also where that is -infinity and the count 0.
  double LogOfFailures(double count) const { return count == 0.0 ? 0.0 : count * std::log1p(-p); }

  // (1 - p)^count. Where 1 - p is a double, a power that is also one comes out exactly, so that quantiles at
  // such probabilities find the jump.
  double Failures(double count) const {
    const TwoPartSum q = ExactDifference(1.0, p);
    return q.low == 0.0 ? std::pow(q.high, count) : std::exp(LogOfFailures(count));
  }

  double Density(double k) const { return IsInSupport(k) ? p * Failures(k) : 0.0; }
  double LogDensity(double k) const { return IsInSupport(k) ? std::log(p) + LogOfFailures(k) : -kInfinity; }

  double Cdf(double x) const {
    constexpr double kFewDigitsLost = 0.99;
    if (!(x >= 0.0)) return 0.0;
    if (x < 1.0) return p;
    const double tail = Complement(x);
    return tail <= kFewDigitsLost ? 1.0 - tail : -std::expm1(LogOfFailures(std::floor(x) + 1.0));
  }
  double Complement(double x) const { return x >= 0.0 ? Failures(std::floor(x) + 1.0) : 1.0; }

  // The k at which ln P(N > k) has fallen to logTail, give or take rounding.
  double Guess(double logTail) const { return std::max(0.0, std::ceil(logTail / std::log1p(-p)) - 1.0); }

  double Quantile(double probability) const {
    if (p == 1.0 || probability == 0.0) return 0.0;
    if (probability == 1.0) return kInfinity;
    return SmallestReached(Guess(std::log1p(-probability)), [&](double k) { return Cdf(k) >= probability; });
  }

  double ComplementQuantile(double tail) const {
    if (p == 1.0 || tail == 1.0) return 0.0;
    if (tail == 0.0) return kInfinity;
    return SmallestReached(Guess(std::log(tail)), [&](double k) { return Complement(k) <= tail; });
  }

  double Mean() const { return (1.0 - p) / p; }
  double Variance() const { return (1.0 - p) / p / p; }

  static EstimateResult Estimate(const EstimationInput& input) {
    const auto proportion = EstimateGeometric(input.sorted);
    if (!proportion) return proportion.Reason();
    return EstimateWithCovariance({*proportion},
                                  {*proportion * *proportion * (1 - *proportion) / input.Count()});
  }
};

template class Distribution<Geometric>;

}  // namespace brenvolt
