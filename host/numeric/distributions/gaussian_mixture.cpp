// Mixtures of normal distributions. Every probability is a sum of positive terms, each from its own nearer
// tail.
#include <algorithm>
#include <limits>

#include "host/numeric/distributions/law_forms.h"
#include "host/numeric/distributions/quantile_search.h"
#include "host/numeric/vector/standard_normal.h"

namespace brenvolt::gaussian_mixture {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr std::size_t kComponentSize = 3;
constexpr double kTotalTolerance = 2e-5;

struct Component {
  double coefficient;
  double mean;
  double deviation;

  bool IsValid() const { return coefficient >= 0.0 && std::isfinite(mean) && IsPositiveFinite(deviation); }
  double Standardised(double x) const { return (x - mean) / deviation; }
};

struct Law {
  std::span<const double> values;

  // `visit`(component) for the components that have a share.
  template <class Visit>
  void ForEach(const Visit& visit) const {
    for (std::size_t i = 0; i < values.size(); i += kComponentSize) {
      if (values[i] > 0.0) visit(Component{values[i], values[i + 1], values[i + 2]});
    }
  }

  template <class Term>
  double WeightedSum(const Term& term) const {
    double sum = 0.0;
    ForEach([&](const Component& c) { sum += c.coefficient * term(c); });
    return sum;
  }

  double Total() const {
    return WeightedSum([](const Component&) { return 1.0; });
  }

  bool IsValid() const {
    if (values.empty() || values.size() % kComponentSize != 0) return false;
    for (std::size_t i = 0; i < values.size(); i += kComponentSize) {
      if (!Component{values[i], values[i + 1], values[i + 2]}.IsValid()) return false;
    }
    return std::abs(Total() - 1.0) <= kTotalTolerance;
  }

  double Density(double x) const {
    if (std::isinf(x)) return 0.0;
    return WeightedSum(
               [x](const Component& c) { return ExpMinusHalfSquare(c.Standardised(x)) / c.deviation; }) *
           kInverseSqrtTwoPi / Total();
  }

  // Relative to the largest term, so that the logarithm lives where the density underflows.
  double LogDensity(double x) const {
    if (std::isinf(x)) return -kInfinity;
    const auto logTerm = [x](const Component& c) {
      const double z = c.Standardised(x);
      return std::log(c.coefficient / c.deviation) - 0.5 * z * z;
    };
    double largest = -kInfinity;
    ForEach([&](const Component& c) { largest = std::max(largest, logTerm(c)); });
    double rest = 0.0;
    ForEach([&](const Component& c) { rest += std::exp(logTerm(c) - largest); });
    return largest + std::log(rest / Total()) - kLogSqrtTwoPi;
  }

  double Cdf(double x) const {
    if (x == kInfinity) return 1.0;
    return WeightedSum([x](const Component& c) { return StandardNormalCdf(c.Standardised(x)); }) / Total();
  }

  double Complement(double x) const {
    if (x == -kInfinity) return 1.0;
    return WeightedSum([x](const Component& c) { return StandardNormalCdf(-c.Standardised(x)); }) / Total();
  }

  // The quantile lies between the least and the greatest of the components', all at the normal quantile z.
  double Solve(double p, double z, bool isLower) const {
    constexpr double kSlack = 1e-12;
    double low = kInfinity;
    double high = -kInfinity;
    double slack = 0.0;
    ForEach([&](const Component& c) {
      const double x = c.mean + c.deviation * z;
      slack = std::max(slack, kSlack * (std::abs(c.mean) + c.deviation * std::abs(z)));
      low = std::min(low, x);
      high = std::max(high, x);
    });
    if (low == high) return low;
    low -= slack;
    high += slack;
    return SolveTail(
        low, high, low + 0.5 * (high - low), p, isLower,
        [&](double x) { return isLower ? Cdf(x) : Complement(x); }, [&](double x) { return Density(x); });
  }

  double FromLower(double p) const {
    return p == 0.0 ? -kInfinity : Solve(p, StandardNormalQuantile(p), true);
  }
  double FromUpper(double q) const {
    return q == 0.0 ? kInfinity : Solve(q, -StandardNormalQuantile(q), false);
  }

  double Quantile(double p) const { return p <= 0.5 ? FromLower(p) : FromUpper(1.0 - p); }
  double ComplementQuantile(double q) const { return q <= 0.5 ? FromUpper(q) : FromLower(1.0 - q); }

  double Mean() const {
    return WeightedSum([](const Component& c) { return c.mean; }) / Total();
  }

  double Variance() const {
    const double mean = Mean();
    return WeightedSum([mean](const Component& c) {
             return c.deviation * c.deviation + (c.mean - mean) * (c.mean - mean);
           }) /
           Total();
  }
};

}  // namespace

bool IsValid(std::span<const double> components) {
  return Law{components}.IsValid();
}

double Density(double x, std::span<const double> components) {
  return ProbabilityAt(Law{components}, &Law::Density, x);
}

double LogDensity(double x, std::span<const double> components) {
  return ProbabilityAt(Law{components}, &Law::LogDensity, x);
}

double Cdf(double x, std::span<const double> components) {
  return ProbabilityAt(Law{components}, &Law::Cdf, x);
}

double Complement(double x, std::span<const double> components) {
  return ProbabilityAt(Law{components}, &Law::Complement, x);
}

double Quantile(double p, std::span<const double> components) {
  return QuantileAt(Law{components}, &Law::Quantile, p);
}

double ComplementQuantile(double q, std::span<const double> components) {
  return QuantileAt(Law{components}, &Law::ComplementQuantile, q);
}

BRENVOLT_ARRAYS_BY_SCALARS((std::span<const double> components), components);
BRENVOLT_ARRAY_BY_SCALAR(Cdf, (std::span<const double> components), components);
BRENVOLT_ARRAY_BY_SCALAR(Quantile, (std::span<const double> components), components);

double Mean(std::span<const double> components) {
  return MomentAt(Law{components}, &Law::Mean);
}

double Variance(std::span<const double> components) {
  return MomentAt(Law{components}, &Law::Variance);
}

}  // namespace brenvolt::gaussian_mixture
