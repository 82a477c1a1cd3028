// The Bernoulli distribution: 1 with probability `proportion`, else 0.
#include <cmath>

#include "host/numeric/distributions/law_forms.h"

namespace brenvolt::bernoulli {

bool IsValid(double proportion) {
  return proportion >= 0.0 && proportion <= 1.0;
}

namespace {

struct Law {
  double p;

  bool IsValid() const { return bernoulli::IsValid(p); }

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

  // The ends of the support, 0 and 1, are one point where the proportion is 0 or 1.
  double Lowest() const { return p == 1.0 ? 1.0 : 0.0; }
  double Highest() const { return p == 0.0 ? 0.0 : 1.0; }

  // A proportion so small that 1 - p rounds to 1 still leaves 1 in the support.
  double Quantile(double probability) const {
    return probability <= 1.0 - p && probability < 1.0 ? Lowest() : Highest();
  }
  double ComplementQuantile(double tail) const { return tail >= p && tail > 0.0 ? Lowest() : Highest(); }
};

}  // namespace

double Mean(double proportion) {
  return IsValid(proportion) ? proportion : kInvalidProbability;
}

double Variance(double proportion) {
  return IsValid(proportion) ? proportion * (1.0 - proportion) : kInvalidProbability;
}

double Density(double x, double proportion) {
  return ProbabilityAt(Law{proportion}, &Law::Density, x);
}

double LogDensity(double x, double proportion) {
  return ProbabilityAt(Law{proportion}, &Law::LogDensity, x);
}

double Cdf(double x, double proportion) {
  return ProbabilityAt(Law{proportion}, &Law::Cdf, x);
}

double Complement(double x, double proportion) {
  return ProbabilityAt(Law{proportion}, &Law::Complement, x);
}

double Quantile(double p, double proportion) {
  return QuantileAt(Law{proportion}, &Law::Quantile, p);
}

double ComplementQuantile(double q, double proportion) {
  return QuantileAt(Law{proportion}, &Law::ComplementQuantile, q);
}

BRENVOLT_ARRAYS_BY_SCALARS((double proportion), proportion);
BRENVOLT_ARRAY_BY_SCALAR(Cdf, (double proportion), proportion);
BRENVOLT_ARRAY_BY_SCALAR(Quantile, (double proportion), proportion);

}  // namespace brenvolt::bernoulli
