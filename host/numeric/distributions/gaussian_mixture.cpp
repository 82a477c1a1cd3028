// Mixtures of normal distributions. Every probability is a sum of positive terms, each from its own nearer
// tail.
#include "host/numeric/distributions/gaussian_mixture.h"

#include <algorithm>
#include <array>
#include <vector>

#include "host/numeric/distributions/common/distribution_forms.h"
#include "host/numeric/distributions/common/quantile_search.h"
#include "host/numeric/estimation/mixture/gaussian_mixture_estimator.h"
#include "host/numeric/vector/standard_normal.h"
#include "host/numeric/vector/vector_forms.h"

namespace brenvolt {
namespace {

constexpr std::size_t kComponentSize = 3;

struct Component {
  double proportion;
  double mean;
  double deviation;

  double Standardised(double x) const { return (x - mean) / deviation; }
};

}  // namespace

template <>
struct FormulasOf<GaussianMixture> {
  In values;

  Component At(std::size_t i) const {
    const In component = values.subspan(kComponentSize * i, kComponentSize);
    return {component[0], component[1], component[2]};
  }

  // `visit`(component) for the components that have a share.
  template <class Visit>
  void ForEach(const Visit& visit) const {
    for (std::size_t i = 0; i < values.size() / kComponentSize; ++i) {
      if (At(i).proportion > 0.0) visit(At(i));
    }
  }

  template <class Term>
  double WeightedSum(const Term& term) const {
    double sum = 0.0;
    ForEach([&](const Component& c) { sum += c.proportion * term(c); });
    return sum;
  }

  double Total() const {
    return WeightedSum([](const Component&) { return 1.0; });
  }

  bool AreConsistent() const { return std::abs(Total() - 1.0) <= kTotalTolerance; }

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
      return std::log(c.proportion / c.deviation) - 0.5 * z * z;
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

  // The same over arrays, of the standardised values times `sign`; a piece at a time, as `out` may be `x`.
  void OfStandardised(In x, double sign, Out out) const {
    constexpr std::size_t kPiece = 512;
    std::array<double, kPiece> sums;
    std::array<double, kPiece> terms;
    const double total = Total();
    for (std::size_t begin = 0; begin < x.size(); begin += kPiece) {
      const In piece = x.subspan(begin, std::min(kPiece, x.size() - begin));
      const Out term = Out(terms).first(piece.size());
      sums.fill(0.0);
      ForEach([&](const Component& c) {
        for (std::size_t i = 0; i < piece.size(); ++i) term[i] = sign * c.Standardised(piece[i]);
        vector_forms::NormalCdf(term, 0.0, 1.0, term);
        for (std::size_t i = 0; i < piece.size(); ++i) sums[i] += c.proportion * term[i];
      });
      for (std::size_t i = 0; i < piece.size(); ++i) out[begin + i] = sums[i] / total;
    }
  }
  void Cdf(In x, Out out) const { OfStandardised(x, 1.0, out); }
  void Complement(In x, Out out) const { OfStandardised(x, -1.0, out); }

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

  // ln of the sum of the components' densities, the greatest taken out before the exponentials.
  double LogLikelihood(In sorted) const {
    using estimation::kBlock;
    const std::size_t components = values.size() / kComponentSize;
    std::vector<double> rows(components * kBlock);
    std::array<double, kBlock> greatest;
    return estimation::SumOverBlocks(sorted, [&](In x, Out out) {
      std::fill_n(greatest.begin(), x.size(), -kInfinity);
      for (std::size_t c = 0; c < components; ++c) {
        const Out row(&rows[c * kBlock], x.size());
        const Component component = At(c);
        const double constant = std::log(component.proportion / component.deviation) - kLogSqrtTwoPi;
        HalfSquares(x, component.mean, component.deviation, row);
        for (std::size_t i = 0; i < x.size(); ++i) {
          row[i] += constant;
          greatest[i] = std::max(greatest[i], row[i]);
        }
      }
      std::ranges::fill(out, 0.0);
      for (std::size_t c = 0; c < components; ++c) {
        const Out row(&rows[c * kBlock], x.size());
        for (std::size_t i = 0; i < x.size(); ++i) row[i] -= greatest[i];
        elementary::Exp(row, row);
        for (std::size_t i = 0; i < x.size(); ++i) out[i] += row[i];
      }
      elementary::Log(out, out);
      for (std::size_t i = 0; i < x.size(); ++i) out[i] += greatest[i];
    });
  }

  // No standard errors: the likelihood of a mixture is too far from quadratic for them at usual sizes.
  static EstimateResult Estimate(const EstimationInput& input) {
    auto values = EstimateGaussianMixture(input.sorted, input.components, input.poll);
    if (!values) return values.Reason();
    for (std::size_t i = 2; i < values->size(); i += kComponentSize) {
      if (AlmostEqual((*values)[i], 0)) return FaultAbout(EstimationFault::kNoMaximum, input.components);
    }
    auto estimate = EstimateOfValues(*std::move(values), EstimateOrigin::kLikelihood);
    --estimate.estimatedParameters;  // the proportions add up to 1
    return estimate;
  }
};

template class Distribution<GaussianMixture>;

}  // namespace brenvolt
