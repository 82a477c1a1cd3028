// The Poisson distribution. P(N <= k) = Q(k + 1, mean), the regularised upper incomplete gamma function.
#include "host/numeric/distributions/poisson.h"

#include "host/numeric/distributions/common/count_memo.h"
#include "host/numeric/distributions/common/distribution_forms.h"
#include "host/numeric/distributions/common/quantile_search.h"
#include "host/numeric/estimation/discrete_estimators.h"
#include "host/numeric/special/incomplete_gamma.h"
#include "host/numeric/special/saddle_point.h"
#include "host/numeric/vector/standard_normal.h"

namespace brenvolt {

template <>
struct FormulasOf<Poisson> {
  double mean;

  static bool IsInSupport(double x) { return x >= 0.0 && x == std::floor(x) && !std::isinf(x); }

  double Density(double x) const {
    if (!IsInSupport(x)) return 0.0;
    if (x == 0.0) return std::exp(-mean);
    return std::exp(-Deviance(x, mean) - StirlingError(x)) * kInverseSqrtTwoPi / std::sqrt(x);
  }

  // Loader (2000), saddle-point form.
  double LogDensity(double x) const {
    if (!IsInSupport(x)) return -kInfinity;
    if (x == 0.0) return -mean;
    return -Deviance(x, mean) - StirlingError(x) - 0.5 * std::log(x) - kLogSqrtTwoPi;
  }

  double Cdf(double x) const {
    if (x < 0.0) return 0.0;
    return std::isinf(x) ? 1.0 : UpperIncompleteGamma(std::floor(x) + 1.0, mean);
  }

  double Complement(double x) const {
    if (x < 0.0) return 1.0;
    return std::isinf(x) ? 0.0 : LowerIncompleteGamma(std::floor(x) + 1.0, mean);
  }

  // Cornish & Fisher (1938) to the second term: a guess at the quantile whose normal counterpart is z.
  double Guess(double z) const {
    if (std::isinf(z)) return 0.0;
    return std::max(0.0, std::floor(mean + std::sqrt(mean) * z + (z * z - 1.0) / 6.0));
  }

  // `cdf`(k): the distribution function at whole numbers.
  template <class Function>
  double QuantileFrom(double p, const Function& cdf) const {
    if (p == 0.0) return 0.0;
    if (p == 1.0) return kInfinity;
    return SmallestReached(Guess(StandardNormalQuantile(p)), [&](double k) { return cdf(k) >= p; });
  }
  double Quantile(double p) const {
    return QuantileFrom(p, [this](double k) { return Cdf(k); });
  }

  // `complement`(k): the same of its complement.
  template <class Function>
  double ComplementQuantileFrom(double tail, const Function& complement) const {
    if (tail == 0.0) return kInfinity;
    if (tail == 1.0) return 0.0;
    return SmallestReached(Guess(-StandardNormalQuantile(tail)),
                           [&](double k) { return complement(k) <= tail; });
  }
  double ComplementQuantile(double tail) const {
    return ComplementQuantileFrom(tail, [this](double k) { return Complement(k); });
  }

  Remembering<FormulasOf> Prepared(std::size_t uses) const { return {*this, uses}; }

  double Mean() const { return mean; }
  double Variance() const { return mean; }

  static EstimateResult Estimate(const EstimationInput& input) {
    const auto mean = EstimatePoisson(input.sorted);
    if (!mean) return mean.Reason();
    return EstimateWithCovariance({*mean}, {*mean / input.Count()});
  }
};

template class Distribution<Poisson>;

}  // namespace brenvolt
