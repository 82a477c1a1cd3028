// The folded normal distribution: the magnitude of a normal variable, shifted by the threshold. Leone, Nelson
// & Nottingham (1961).
#include "host/numeric/distributions/folded_normal.h"

#include <algorithm>
#include <array>
#include <boost/math/quadrature/gauss.hpp>

#include "host/numeric/distributions/common/distribution_forms.h"
#include "host/numeric/distributions/common/quantile_search.h"
#include "host/numeric/estimation/folded_normal_estimator.h"
#include "host/numeric/estimation/standard_errors.h"
#include "host/numeric/special/exact_sums.h"
#include "host/numeric/vector/standard_normal.h"
#include "host/numeric/vector/vector_forms.h"

namespace brenvolt {
namespace {

constexpr double kSlack = 1e-12;  // for the rounding of the ends of a bracket, in its size and in scales

}  // namespace

template <>
struct FormulasOf<FoldedNormal> {
  double location;
  double scale;
  double threshold;

  double Centre() const { return std::abs(location); }

  // The distances of x - threshold from the normal variable's location and from its mirror image.
  double Near(double x) const {
    const TwoPartSum y = ExactDifference(x, threshold);
    return ((y.high - Centre()) + y.low) / scale;
  }
  double Far(double x) const { return ((x - threshold) + Centre()) / scale; }

  double Density(double x) const {
    if (x < threshold || std::isinf(x)) return 0.0;
    return (ExpMinusHalfSquare(Near(x)) + ExpMinusHalfSquare(Far(x))) * kInverseSqrtTwoPi / scale;
  }

  double LogDensity(double x) const {
    if (x < threshold || std::isinf(x)) return -kInfinity;
    const double near = Near(x);
    // (far^2 - near^2) / 2, as a product.
    const double apart = 2.0 * ((x - threshold) / scale) * (Centre() / scale);
    return -0.5 * near * near + std::log1p(std::exp(-apart)) - std::log(scale) - kLogSqrtTwoPi;
  }

  bool IsFarFromThreshold(double x) const {
    return (x - threshold) / scale * std::max(1.0, Centre() / scale) > 1.0;
  }

  // Near the threshold the two normal probabilities cancel; there it is the integral of their common
  // density, exp(-m^2 / 2) exp(-t^2 / 2) cosh(m t), over a length at which that is nearly a polynomial.
  double Cdf(double x) const {
    if (!(x > threshold)) return 0.0;
    if (IsFarFromThreshold(x)) return StandardNormalCdf(Near(x)) - StandardNormalCdf(-Far(x));
    const double h = (x - threshold) / scale;
    const double m = Centre() / scale;
    const auto integrand = [m](double t) { return std::exp(-0.5 * t * t) * std::cosh(m * t); };
    return 2.0 * kInverseSqrtTwoPi * ExpMinusHalfSquare(m) *
           boost::math::quadrature::gauss<double, 15>::integrate(integrand, 0.0, h);
  }

  double Complement(double x) const {
    return x > threshold ? StandardNormalCdf(-Near(x)) + StandardNormalCdf(-Far(x)) : 1.0;
  }

  // Over arrays; a piece at a time, as `out` may be `x`.
  void Cdf(In x, Out out) const {
    OverPieces(x, out, 1.0, [this](double at, double near, double far) {
      return std::isnan(at) ? at : IsFarFromThreshold(at) ? near - far : Cdf(at);
    });
  }
  void Complement(In x, Out out) const {
    OverPieces(x, out, -1.0,
               [this](double at, double near, double far) { return at <= threshold ? 1.0 : near + far; });
  }

  // out[i] = combine(x, P(Z <= sign near), P(Z <= -far)) of each x.
  template <class Combine>
  void OverPieces(In x, Out out, double sign, const Combine& combine) const {
    constexpr std::size_t kPiece = 512;
    std::array<double, kPiece> near;
    std::array<double, kPiece> far;
    for (std::size_t begin = 0; begin < x.size(); begin += kPiece) {
      const In piece = x.subspan(begin, std::min(kPiece, x.size() - begin));
      for (std::size_t i = 0; i < piece.size(); ++i) {
        near[i] = sign * Near(piece[i]);
        far[i] = -Far(piece[i]);
      }
      for (auto* z : {&near, &far})
        vector_forms::NormalCdf(In(*z).first(piece.size()), 0.0, 1.0, Out(*z).first(piece.size()));
      for (std::size_t i = 0; i < piece.size(); ++i) out[begin + i] = combine(piece[i], near[i], far[i]);
    }
  }

  // The same without threshold, whose rounding the search must not see.
  FormulasOf Unshifted() const { return {location, scale, 0.0}; }

  // The quantile of a tail lies between the normal one and that of half the upper tail; near 0 the
  // probability grows in a line at first.
  double FromLower(double p) const {
    if (p == 0.0) return threshold;
    const FormulasOf plain = Unshifted();
    const double low = std::max(0.0, Centre() + scale * StandardNormalQuantile(p));
    const double high = Centre() - scale * StandardNormalQuantile(0.5 * (1.0 - p));
    const double flat = p / plain.Density(0.0);
    return threshold + SolveTail(
                           low * (1.0 - kSlack), high * (1.0 + kSlack) + scale * kSlack,
                           std::max(low, std::min(flat, high + scale * kSlack)), p, true,
                           [&](double y) { return plain.Cdf(y); },
                           [&](double y) { return plain.Density(y); });
  }

  double FromUpper(double q) const {
    if (q == 0.0) return kInfinity;
    const FormulasOf plain = Unshifted();
    const double low = std::max(0.0, Centre() - scale * StandardNormalQuantile(q));
    const double high = Centre() - scale * StandardNormalQuantile(0.5 * q);
    return threshold + SolveTail(
                           low * (1.0 - kSlack), high * (1.0 + kSlack), high, q, false,
                           [&](double y) { return plain.Complement(y); },
                           [&](double y) { return plain.Density(y); });
  }

  double Quantile(double p) const { return p < 0.5 ? FromLower(p) : FromUpper(1.0 - p); }
  double ComplementQuantile(double q) const { return q <= 0.5 ? FromUpper(q) : FromLower(1.0 - q); }

  // By how much the mean of the magnitude exceeds that of the normal variable, in units of the scale.
  double ExcessOfMean() const {
    constexpr double kFar = 40.0;  // beyond it folding moves nothing
    const double d = Centre() / scale;
    return d < kFar ? 2.0 * (kInverseSqrtTwoPi * ExpMinusHalfSquare(d) - d * StandardNormalCdf(-d)) : 0.0;
  }

  double Mean() const { return threshold + (Centre() + scale * ExcessOfMean()); }

  double Variance() const {
    const double excess = ExcessOfMean();
    return scale * scale * (excess > 0.0 ? 1.0 - excess * (2.0 * (Centre() / scale) + excess) : 1.0);
  }

  double LogLikelihood(In sorted) const {
    const double apart = -2 * (Centre() / scale) / scale;
    const double sum = estimation::SumOverBlocks(sorted, [&](In x, Out out) {
      for (std::size_t i = 0; i < x.size(); ++i) out[i] = apart * (x[i] - threshold);
      elementary::Exp(out, out);
      elementary::Log1p(out, out);
      for (std::size_t i = 0; i < x.size(); ++i) {
        const double z = ((x[i] - threshold) - Centre()) / scale;
        out[i] -= 0.5 * z * z;
      }
    });
    return sum - static_cast<double>(sorted.size()) * (std::log(scale) + kLogSqrtTwoPi);
  }

  static EstimateResult Estimate(const EstimationInput& input) {
    const auto fit = EstimateFoldedNormal(input.sorted, input.offset, input.poll);
    if (!fit) return fit.Reason();
    const auto covariance = FoldedNormalCovariance(input.sorted, fit->location, fit->scale, input.offset);
    if (!covariance) return EstimateOfValues({fit->location, fit->scale}, EstimateOrigin::kLikelihood);
    return EstimateWithCovariance({fit->location, fit->scale}, {covariance->begin(), covariance->end()});
  }
};

template class Distribution<FoldedNormal>;

}  // namespace brenvolt
