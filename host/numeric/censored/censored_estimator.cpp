#include "host/numeric/censored/censored_estimator.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <optional>
#include <vector>

#include "host/numeric/distributions/distribution_table.h"

namespace brenvolt {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr std::size_t kMostParameters = 3;
using Point = std::array<double, kMostParameters>;
using Matrix = std::array<Point, kMostParameters>;

constexpr DistributionCode kCensored[] = {
    DistributionCode::kNormal,   DistributionCode::kLogNormal, DistributionCode::kHalfNormal,
    DistributionCode::kRayleigh, DistributionCode::kWeibull,   DistributionCode::kGeneralExtremeValue};

double SumOfLogarithms(std::span<const double> probabilities) {
  double sum = 0;
  for (const double p : probabilities) sum += std::log(p);
  return sum;
}

// The log-likelihood of a distribution of some parameters.
class Likelihood {
 public:
  Likelihood(DistributionCode code, const CensoredSample& sample, double offset)
      : code_(code), sample_(sample), offset_(offset) {
    const std::size_t most =
        std::max({sample.exact.size(), sample.right.size(), sample.left.size(), sample.from.size()});
    for (std::vector<double>& buffer : buffers_) buffer.resize(most);
  }

  // -infinity where the values are impossible.
  double At(std::span<const double> values) {
    const AnyDistribution distribution(code_, values, offset_);
    if (!distribution.IsValid()) return -kInfinity;
    double sum = 0;
    const auto exact = std::span(buffers_[0]).first(sample_.exact.size());
    distribution.LogDensity(sample_.exact, exact);
    for (const double logDensity : exact) sum += logDensity;
    const auto right = std::span(buffers_[0]).first(sample_.right.size());
    distribution.Complement(sample_.right, right);
    sum += SumOfLogarithms(right);
    const auto left = std::span(buffers_[0]).first(sample_.left.size());
    distribution.Cdf(sample_.left, left);
    sum += SumOfLogarithms(left) + OfIntervals(distribution);
    return std::isfinite(sum) ? sum : -kInfinity;
  }

 private:
  // By the tail in which the probabilities are smaller, so that their difference keeps its digits.
  double OfIntervals(const AnyDistribution& distribution) {
    const std::size_t n = sample_.from.size();
    std::array<std::span<double>, 4> p;
    for (std::size_t i = 0; i < p.size(); ++i) p[i] = std::span(buffers_[i]).first(n);
    distribution.Cdf(sample_.from, p[0]);
    distribution.Cdf(sample_.to, p[1]);
    distribution.Complement(sample_.from, p[2]);
    distribution.Complement(sample_.to, p[3]);
    double sum = 0;
    for (std::size_t i = 0; i < n; ++i)
      sum += std::log(p[1][i] < p[2][i] ? p[1][i] - p[0][i] : p[2][i] - p[3][i]);
    return sum;
  }

  DistributionCode code_;
  const CensoredSample& sample_;
  double offset_;
  std::array<std::vector<double>, 4> buffers_;
};

// Where a search begins, and the coordinates in which it goes: logarithms of positive parameters, others in a unit near
// their standard error.
struct Start {
  std::vector<double> values;
  std::vector<double> units;  // 0 for a logarithm
};

struct Derivatives {
  double value;
  Point gradient;
  Matrix hessian;
};

class Climb {
 public:
  Climb(Likelihood& likelihood, Start start) : likelihood_(likelihood), start_(std::move(start)) {}

  EstimationResult<CensoredEstimate> Run();

 private:
  std::size_t Size() const { return start_.values.size(); }
  std::vector<double> ValuesAt(const Point& point) const {
    std::vector<double> values(Size());
    for (std::size_t i = 0; i < Size(); ++i)
      values[i] = start_.units[i] > 0 ? start_.values[i] + start_.units[i] * point[i]
                                      : start_.values[i] * std::exp(point[i]);
    return values;
  }
  double At(const Point& point) { return likelihood_.At(ValuesAt(point)); }
  double Moved(const Point& point, std::size_t i, double by, std::size_t j = 0, double byOther = 0) {
    Point moved = point;
    moved[i] += by;
    moved[j] += byOther;
    return At(moved);
  }
  Derivatives DerivativesAt(const Point& point);
  std::optional<Point> Ascend(const Point& from, const Point& step, double value);
  CensoredEstimate EstimateAt(const Point& point, const Derivatives& there, double gradient,
                              int iterations) const;

  Likelihood& likelihood_;
  Start start_;
};

Derivatives Climb::DerivativesAt(const Point& point) {
  constexpr double kStep = 1e-3;
  Derivatives found{At(point), {}, {}};
  for (std::size_t i = 0; i < Size(); ++i) {
    const double above = Moved(point, i, kStep);
    const double below = Moved(point, i, -kStep);
    const double farAbove = Moved(point, i, 2 * kStep);
    const double farBelow = Moved(point, i, -2 * kStep);
    found.gradient[i] = (8 * (above - below) - (farAbove - farBelow)) / (12 * kStep);
    found.hessian[i][i] =
        (16 * (above + below) - (farAbove + farBelow) - 30 * found.value) / (12 * kStep * kStep);
    for (std::size_t j = 0; j < i; ++j) {
      const auto mixed = [&](double h) {
        return (Moved(point, i, h, j, h) - Moved(point, i, h, j, -h) - Moved(point, i, -h, j, h) +
                Moved(point, i, -h, j, -h)) /
               (4 * h * h);
      };
      found.hessian[i][j] = found.hessian[j][i] = (4 * mixed(kStep) - mixed(2 * kStep)) / 3;
    }
  }
  return found;
}

// The lower Cholesky factor of -hessian + ridge; nothing unless that is positive definite.
std::optional<Matrix> FactorOf(const Matrix& hessian, std::size_t n, double ridge) {
  Matrix factor{};
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = 0; j <= i; ++j) {
      double sum = -hessian[i][j] + (i == j ? ridge : 0);
      for (std::size_t k = 0; k < j; ++k) sum -= factor[i][k] * factor[j][k];
      if (i != j) {
        factor[i][j] = sum / factor[j][j];
      } else if (sum > 0 && std::isfinite(sum)) {
        factor[i][i] = std::sqrt(sum);
      } else {
        return std::nullopt;
      }
    }
  }
  return factor;
}

Point SolveLower(const Matrix& factor, std::size_t n, Point right) {
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t k = 0; k < i; ++k) right[i] -= factor[i][k] * right[k];
    right[i] /= factor[i][i];
  }
  return right;
}

Point SolveUpper(const Matrix& factor, std::size_t n, Point right) {
  for (std::size_t i = n; i-- > 0;) {
    for (std::size_t k = i + 1; k < n; ++k) right[i] -= factor[k][i] * right[k];
    right[i] /= factor[i][i];
  }
  return right;
}

double LengthOf(const Point& point, std::size_t n) {
  double squares = 0;
  for (std::size_t i = 0; i < n; ++i) squares += point[i] * point[i];
  return std::sqrt(squares);
}

// The point behind a step, halved until the likelihood has not fallen.
std::optional<Point> Climb::Ascend(const Point& from, const Point& step, double value) {
  constexpr int kMostHalvings = 40;
  double share = 1;
  for (int i = 0; i < kMostHalvings; ++i, share /= 2) {
    Point to = from;
    for (std::size_t k = 0; k < Size(); ++k) to[k] += share * step[k];
    if (At(to) >= value) return to;
  }
  return std::nullopt;
}

CensoredEstimate Climb::EstimateAt(const Point& point, const Derivatives& there, double gradient,
                                   int iterations) const {
  const std::size_t n = Size();
  const Matrix factor = *FactorOf(there.hessian, n, 0);
  const std::vector<double> values = ValuesAt(point);
  std::vector<double> covariance(n * n);
  for (std::size_t j = 0; j < n; ++j) {
    Point one{};
    one[j] = 1;
    const Point column = SolveUpper(factor, n, SolveLower(factor, n, one));
    const auto scale = [&](std::size_t i) { return start_.units[i] > 0 ? start_.units[i] : values[i]; };
    for (std::size_t i = 0; i < n; ++i) covariance[i * n + j] = column[i] * scale(i) * scale(j);
  }
  CensoredEstimate found{EstimateWithCovariance(values, std::move(covariance)), iterations, gradient};
  found.estimate.logLikelihood = there.value;
  return found;
}

EstimationResult<CensoredEstimate> Climb::Run() {
  constexpr int kMostIterations = 200;
  constexpr double kFlat = 1e-9;    // gradient in standard errors at which the search ends
  constexpr double kAtEnd = 1e-6;   // and that of a maximum
  constexpr double kFarthest = 60;  // the logarithm of a parameter that runs away
  constexpr double kLongest = 2;    // step
  Point point{};
  if (!std::isfinite(At(point))) return FaultAbout(EstimationFault::kNoMaximum, 0);
  const std::size_t n = Size();
  for (int iteration = 0; iteration < kMostIterations; ++iteration) {
    const Derivatives here = DerivativesAt(point);
    const auto information = FactorOf(here.hessian, n, 0);
    auto factor = information;
    for (double ridge = 1e-3; !factor && ridge < 1e20; ridge *= 10) factor = FactorOf(here.hessian, n, ridge);
    if (!factor) return FaultAbout(EstimationFault::kNoMaximum, 0);
    const Point score = SolveLower(*factor, n, here.gradient);
    const double gradient = LengthOf(score, n);
    if (information && gradient < kFlat) return EstimateAt(point, here, gradient, iteration);
    Point step = SolveUpper(*factor, n, score);
    const double length = LengthOf(step, n);
    if (length > kLongest) std::ranges::for_each(step, [&](double& x) { x *= kLongest / length; });
    const auto next = Ascend(point, step, here.value);
    if (!next || *next == point) {
      if (information && gradient < kAtEnd) return EstimateAt(point, here, gradient, iteration);
      return FaultAbout(EstimationFault::kNoConvergence, 0);
    }
    point = *next;
    if (LengthOf(point, n) > kFarthest) return FaultAbout(EstimationFault::kNoMaximum, 0);
  }
  return FaultAbout(EstimationFault::kNoConvergence, 0);
}

// Mean and deviation of what is known, bounds taken for values.
struct Rough {
  double mean = 0;
  double deviation = 0;
};

Rough RoughOf(const CensoredSample& sample, double offset, bool logarithmic) {
  std::vector<double> values;
  for (const auto* part : {&sample.exact, &sample.right, &sample.left})
    values.insert(values.end(), part->begin(), part->end());
  for (std::size_t i = 0; i < sample.from.size(); ++i) values.push_back((sample.from[i] + sample.to[i]) / 2);
  std::erase_if(values, [&](double x) { return logarithmic && !(x > offset); });
  Rough rough;
  for (double& x : values) {
    x = logarithmic ? std::log(x - offset) : x;
    rough.mean += x / static_cast<double>(values.size());
  }
  for (const double x : values)
    rough.deviation += (x - rough.mean) * (x - rough.mean) / static_cast<double>(values.size());
  rough.deviation = std::sqrt(rough.deviation);
  return rough;
}

// Moments of the Gumbel distribution: its standard deviation is pi / sqrt(6) scales, its mean Euler's constant scales above
// its location.
constexpr double kGumbelScale = 0.7796968012336761;

std::vector<Start> StartsOf(DistributionCode code, const CensoredSample& sample, double offset) {
  const bool logarithmic = code == DistributionCode::kLogNormal || code == DistributionCode::kWeibull;
  const Rough rough = RoughOf(sample, offset, logarithmic);
  const double spread = rough.deviation > 0 ? rough.deviation : std::max(1e-3 * std::abs(rough.mean), 1e-300);
  switch (code) {
    case DistributionCode::kNormal:
    case DistributionCode::kLogNormal:
      return {{{rough.mean, spread}, {spread, 0}}};
    case DistributionCode::kWeibull: {
      const double scale = kGumbelScale * spread;
      return {{{std::exp(rough.mean + std::numbers::egamma * scale), 1 / scale}, {0, 0}}};
    }
    case DistributionCode::kRayleigh:
    case DistributionCode::kHalfNormal:
      return {{{std::hypot(rough.mean - offset, spread) / std::numbers::sqrt2}, {0}}};
    case DistributionCode::kGeneralExtremeValue: {
      const double scale = kGumbelScale * spread;
      std::vector<Start> starts;
      for (const double shape : {0.1, -0.2, 0.5})
        starts.push_back({{rough.mean - std::numbers::egamma * scale, scale, shape}, {spread, 0, 1}});
      return starts;
    }
    default:
      return {};
  }
}

// Values that the distribution cannot have taken.
std::optional<Fault<EstimationFault>> ImpossibleValue(DistributionCode code, const CensoredSample& sample,
                                                      double offset) {
  if (!EntryOf(code).facts.HasOffset()) return std::nullopt;
  const bool mayTouch = code == DistributionCode::kHalfNormal;
  for (const auto* part : {&sample.exact, &sample.left, &sample.to}) {
    for (const double x : *part) {
      if (x < offset || (x == offset && !(mayTouch && part == &sample.exact)))
        return x < offset ? FaultAbout(EstimationFault::kValueBelowOffset, x, offset)
                          : FaultAbout(EstimationFault::kValueAtOffset, offset);
    }
  }
  return std::nullopt;
}

}  // namespace

std::span<const DistributionCode> CensoredDistributions() {
  return kCensored;
}

EstimationResult<CensoredEstimate> EstimateCensored(DistributionCode code, const CensoredSample& sample,
                                                    double offset) {
  if (sample.Count() < 2)
    return FaultAbout(EstimationFault::kTooFewValues, static_cast<double>(sample.Count()), 2);
  if (auto fault = ImpossibleValue(code, sample, offset)) return *std::move(fault);
  const bool isBoundedAbove = sample.right.size() < sample.Count();
  const bool isBoundedBelow = sample.left.size() < sample.Count();
  if (!isBoundedAbove || !isBoundedBelow) return FaultAbout(EstimationFault::kNoMaximum, 0);
  Likelihood likelihood(code, sample, offset);
  EstimationResult<CensoredEstimate> best = FaultAbout(EstimationFault::kNoMaximum, 0);
  for (Start& start : StartsOf(code, sample, offset)) {
    auto found = Climb(likelihood, std::move(start)).Run();
    // Below a shape of -1 the density is infinite at the end, and the likelihood has no maximum.
    if (found && code == DistributionCode::kGeneralExtremeValue && found->estimate.values.back() <= -1)
      continue;
    if (!found ? !best : !best || found->estimate.logLikelihood > best->estimate.logLikelihood)
      best = std::move(found);
  }
  return best;
}

}  // namespace brenvolt
