#include "host/numeric/censored/censored_estimator.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <optional>
#include <vector>

#include "host/numeric/censored/censored_likelihood.h"
#include "host/numeric/distributions/distribution_table.h"
#include "host/numeric/vector/small_cholesky.h"

namespace brenvolt {
namespace {

using Point = Coordinates;

// Where a search begins, and the coordinates in which it goes: logarithms of positive parameters, others in a unit near
// their standard error.
struct Start {
  std::vector<double> values;
  std::vector<double> units;  // 0 for a logarithm
};

// Maximises the log-likelihood of a distribution's parameters.
class Climb {
 public:
  Climb(DistributionCode code, const CensoredSample& sample, double offset, Start start)
      : code_(code), sample_(sample), offset_(offset), start_(std::move(start)) {}

  EstimationResult<CensoredEstimate> Run();

 private:
  struct Place {
    Point point;
    SecondOrder likelihood;  // by the coordinates of the search
  };

  std::size_t Size() const { return start_.values.size(); }
  double UnitOf(std::size_t i) const { return start_.units[i] > 0 ? start_.units[i] : 1; }
  std::vector<double> ValuesAt(const Point& point) const {
    std::vector<double> values(Size());
    for (std::size_t i = 0; i < Size(); ++i)
      values[i] = start_.units[i] > 0 ? start_.values[i] + start_.units[i] * point[i]
                                      : start_.values[i] * std::exp(point[i]);
    return values;
  }
  Place At(const Point& point) const;
  std::optional<Place> Ascend(const Place& from, const Point& step) const;
  CensoredEstimate EstimateAt(const Place& place, double gradient, int iterations) const;

  DistributionCode code_;
  const CensoredSample& sample_;
  double offset_;
  Start start_;
};

Climb::Place Climb::At(const Point& point) const {
  Place place{point, CensoredLogLikelihood(code_, ValuesAt(point), sample_, offset_)};
  for (std::size_t i = 0; i < Size(); ++i) {
    place.likelihood.first[i] *= UnitOf(i);
    for (std::size_t j = 0; j < Size(); ++j) place.likelihood.second[i][j] *= UnitOf(i) * UnitOf(j);
  }
  return place;
}

// The lower Cholesky factor of -hessian + ridge; nothing unless that is positive definite.
using Factor = std::array<double, kMostCoordinates * kMostCoordinates>;
std::optional<Factor> FactorOf(const CoordinateMatrix& hessian, std::size_t n, double ridge) {
  Factor matrix{};
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = 0; j <= i; ++j) matrix[i * n + j] = -hessian[i][j] + (i == j ? ridge : 0);
  }
  Factor factor;
  return SmallCholesky(matrix, n, 0, factor) ? std::optional(factor) : std::nullopt;
}

double LengthOf(const Point& point, std::size_t n) {
  double squares = 0;
  for (std::size_t i = 0; i < n; ++i) squares += point[i] * point[i];
  return std::sqrt(squares);
}

// The place behind a step, halved until the likelihood has not fallen by more than its sum may be rounded.
std::optional<Climb::Place> Climb::Ascend(const Place& from, const Point& step) const {
  constexpr int kMostHalvings = 40;
  constexpr double kRounding = 1e-13;
  const double least = from.likelihood.value -
                       kRounding * (std::abs(from.likelihood.value) + static_cast<double>(sample_.Count()));
  double share = 1;
  for (int i = 0; i < kMostHalvings; ++i, share /= 2) {
    Point to = from.point;
    for (std::size_t k = 0; k < Size(); ++k) to[k] += share * step[k];
    Place place = At(to);
    if (place.likelihood.value >= least) return place;
  }
  return std::nullopt;
}

CensoredEstimate Climb::EstimateAt(const Place& place, double gradient, int iterations) const {
  const std::size_t n = Size();
  const Factor factor = *FactorOf(place.likelihood.second, n, 0);
  const std::vector<double> values = ValuesAt(place.point);
  std::vector<double> covariance(n * n);
  for (std::size_t j = 0; j < n; ++j) {
    Point column{};
    column[j] = 1;
    SolveLower(factor, n, column);
    SolveUpper(factor, n, column);
    const auto scale = [&](std::size_t i) { return start_.units[i] > 0 ? start_.units[i] : values[i]; };
    for (std::size_t i = 0; i < n; ++i) covariance[i * n + j] = column[i] * scale(i) * scale(j);
  }
  CensoredEstimate found{EstimateWithCovariance(values, std::move(covariance)), iterations, gradient};
  found.estimate.logLikelihood = place.likelihood.value;
  return found;
}

EstimationResult<CensoredEstimate> Climb::Run() {
  constexpr int kMostIterations = 200;
  constexpr double kFlat = 1e-9;    // gradient in standard errors at which the search ends
  constexpr double kAtEnd = 1e-6;   // and that of a maximum, where rounding lets it fall no further
  constexpr double kFarthest = 60;  // the logarithm of a parameter that runs away
  constexpr double kLongest = 2;    // step
  Place here = At({});
  if (!std::isfinite(here.likelihood.value)) return FaultAbout(EstimationFault::kNoMaximum, 0);
  const std::size_t n = Size();
  double former = std::numeric_limits<double>::infinity();
  for (int iteration = 0; iteration < kMostIterations; ++iteration) {
    const CoordinateMatrix& hessian = here.likelihood.second;
    const auto information = FactorOf(hessian, n, 0);
    auto factor = information;
    for (double ridge = 1e-3; !factor && ridge < 1e20; ridge *= 10) factor = FactorOf(hessian, n, ridge);
    if (!factor) return FaultAbout(EstimationFault::kNoMaximum, 0);
    Point step = here.likelihood.first;
    SolveLower(*factor, n, step);
    const double gradient = LengthOf(step, n);
    const bool isEnd = gradient < kFlat || (gradient < kAtEnd && gradient > former / 2);
    if (information && isEnd) return EstimateAt(here, gradient, iteration);
    SolveUpper(*factor, n, step);
    const double length = LengthOf(step, n);
    if (length > kLongest) std::ranges::for_each(step, [&](double& x) { x *= kLongest / length; });
    auto next = Ascend(here, step);
    if (!next || next->point == here.point) {
      if (information && gradient < kAtEnd) return EstimateAt(here, gradient, iteration);
      return FaultAbout(EstimationFault::kNoConvergence, 0);
    }
    here = *std::move(next);
    former = gradient;
    if (LengthOf(here.point, n) > kFarthest) return FaultAbout(EstimationFault::kNoMaximum, 0);
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

std::vector<Start> StartsOf(CensoredForm form, const CensoredSample& sample, double offset) {
  const bool logarithmic = form == CensoredForm::kNormalOfLogarithm || form == CensoredForm::kPowerHazard;
  const Rough rough = RoughOf(sample, offset, logarithmic);
  const double spread = rough.deviation > 0 ? rough.deviation : std::max(1e-3 * std::abs(rough.mean), 1e-300);
  switch (form) {
    case CensoredForm::kNormal:
    case CensoredForm::kNormalOfLogarithm:
      return {{{rough.mean, spread}, {spread, 0}}};
    case CensoredForm::kPowerHazard: {
      const double scale = kGumbelScale * spread;
      return {{{std::exp(rough.mean + std::numbers::egamma * scale), 1 / scale}, {0, 0}}};
    }
    case CensoredForm::kSquareHazard:
    case CensoredForm::kNormalMagnitude:
      return {{{std::hypot(rough.mean - offset, spread) / std::numbers::sqrt2}, {0}}};
    case CensoredForm::kExtremeValue: {
      const double scale = kGumbelScale * spread;
      std::vector<Start> starts;
      for (const double shape : {0.1, -0.2, 0.5})
        starts.push_back({{rough.mean - std::numbers::egamma * scale, scale, shape}, {spread, 0, 1}});
      return starts;
    }
    case CensoredForm::kNone:
      break;
  }
  return {};
}

// Values that the distribution cannot have taken.
std::optional<Fault<EstimationFault>> ImpossibleValue(const DistributionFacts& facts,
                                                      const CensoredSample& sample, double offset) {
  if (!facts.HasOffset()) return std::nullopt;
  const bool mayTouch = facts.censored == CensoredForm::kNormalMagnitude;
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
  static const auto kCodes = [] {
    std::vector<DistributionCode> codes;
    for (const DistributionEntry* entry : DistributionTable()) {
      if (entry->facts.censored != CensoredForm::kNone) codes.push_back(entry->facts.code);
    }
    return codes;
  }();
  return kCodes;
}

EstimationResult<CensoredEstimate> EstimateCensored(DistributionCode code, const CensoredSample& sample,
                                                    double offset) {
  if (sample.Count() < 2)
    return FaultAbout(EstimationFault::kTooFewValues, static_cast<double>(sample.Count()), 2);
  const DistributionFacts& facts = EntryOf(code).facts;
  if (auto fault = ImpossibleValue(facts, sample, offset)) return *std::move(fault);
  const bool isBoundedAbove = sample.right.size() < sample.Count();
  const bool isBoundedBelow = sample.left.size() < sample.Count();
  if (!isBoundedAbove || !isBoundedBelow) return FaultAbout(EstimationFault::kNoMaximum, 0);
  EstimationResult<CensoredEstimate> best = FaultAbout(EstimationFault::kNoMaximum, 0);
  for (Start& start : StartsOf(facts.censored, sample, offset)) {
    auto found = Climb(code, sample, offset, std::move(start)).Run();
    // Below a shape of -1 the density is infinite at the end, and the likelihood has no maximum.
    if (found && facts.censored == CensoredForm::kExtremeValue && found->estimate.values.back() <= -1)
      continue;
    if (!found ? !best : !best || found->estimate.logLikelihood > best->estimate.logLikelihood)
      best = std::move(found);
  }
  return best;
}

}  // namespace brenvolt
