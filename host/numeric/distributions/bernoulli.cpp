// The Bernoulli distribution: 1 with probability `proportion`, otherwise 0.
#include "host/numeric/distributions/bernoulli.h"

#include <cmath>

#include "host/numeric/distributions/common/distribution_forms.h"
#include "host/numeric/estimation/discrete_estimators.h"

namespace brenvolt {

template <>
struct FormulasOf<Bernoulli> {
  double p;

  double Density(double x) const {
    if (x == 1.0) return p;
    return x == 0.0 ? 1.0 - p : 0.0;
  }
  double LogDensity(double x) const { return x == 0.0 ? std::log1p(-p) : std::log(Density(x)); }

  double Cdf(double x) const {
    if (x < 0.0) return 0.0;
    return x < 1.0 ? 1.0 - p : 1.0;
  }
  double Complement(double x) const {
    if (x < 0.0) return 1.0;
    return x < 1.0 ? p : 0.0;
  }

  // The ends of the support, 0 and 1, are one point if the proportion is 0 or 1.
  double Lowest() const { return p == 1.0 ? 1.0 : 0.0; }
  double Highest() const { return p == 0.0 ? 0.0 : 1.0; }

  // A proportion so small that 1 - p rounds to 1 still leaves 1 in the support.
  double Quantile(double probability) const {
    return probability <= 1.0 - p && probability < 1.0 ? Lowest() : Highest();
  }
  double ComplementQuantile(double tail) const { return tail >= p && tail > 0.0 ? Lowest() : Highest(); }

  double Mean() const { return p; }
  double Variance() const { return p * (1.0 - p); }

  static EstimateResult Estimate(const EstimationInput& input) {
    const auto proportion = EstimateBernoulli(input.sorted);
    if (!proportion) return proportion.Reason();
    return EstimateWithCovariance({*proportion}, {*proportion * (1 - *proportion) / input.Count()});
  }
};

template class Distribution<Bernoulli>;

}  // namespace brenvolt
