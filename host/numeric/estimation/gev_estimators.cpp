// Generalized extreme value. With z = (x - location) / scale and w = ln(1 + shape z) / shape, which is z for
// shape 0,
//   log density = -ln(scale) - (1 + shape) w - exp(-w).
// The likelihood is climbed in (location, ln scale, shape). Data are centred on their median and scaled by a power of
// two first.
#include "host/numeric/estimation/gev_estimators.h"

#include <algorithm>
#include <array>
#include <boost/math/tools/toms748_solve.hpp>
#include <cmath>
#include <functional>
#include <limits>
#include <numbers>
#include <optional>
#include <span>
#include <vector>

#include "host/numeric/estimation/centred_sample.h"
#include "host/numeric/estimation/damped_newton.h"
#include "host/numeric/estimation/estimator_support.h"
#include "host/numeric/estimation/likelihood_sums.h"
#include "host/numeric/special/bracketed_root.h"

namespace brenvolt {
namespace {

using estimation::Ask;
using estimation::CheckSample;
using estimation::CompensatedSum;
using estimation::ScaledSample;
using estimation::ScaleFrom;
using estimation::Surface;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kLeastShape = -1.0;     // the likelihood is unbounded beyond
constexpr double kGreatestShape = 20.0;  // beyond, a start is on its way to infinity

struct Point {
  double location = 0.0;
  double logScale = 0.0;
  double shape = 0.0;
};

Surface SurfaceFrom(const ExtremeValueSums& sums, double value, double inverseScale, double inverseCount) {
  const double byLocation = inverseScale * inverseCount;
  Surface surface;
  surface.value = value;
  surface.gradient = {sums.l * byLocation, sums.s * inverseCount - 1.0, sums.k * inverseCount};
  const double ll = -sums.ll * byLocation * inverseScale;
  const double ls = -sums.ls * byLocation;
  const double lk = -sums.lk * byLocation;
  const double ss = -sums.ss * inverseCount;
  const double sk = -sums.sk * inverseCount;
  const double kk = -sums.kk * inverseCount;
  surface.information = {ll, ls, lk, ls, ss, sk, lk, sk, kk};
  return surface;
}

// A value of -infinity and nothing else where a value lies outside the support.
Surface Differentiate(std::span<const double> sorted, const Point& at) {
  if (!(at.shape > kLeastShape) || !(at.shape < kGreatestShape)) return {};
  const double inverseScale = std::exp(-at.logScale);
  const auto sums = SumExtremeValue(sorted, at.location, inverseScale, at.shape);
  if (!sums) return {};
  const double inverseCount = 1.0 / static_cast<double>(sorted.size());
  const double mean = sums->value * inverseCount - at.logScale;
  return std::isfinite(mean) ? SurfaceFrom(*sums, mean, inverseScale, inverseCount) : Surface{};
}

bool Climb(std::span<const double> sorted, Point& at, Surface& surface, const EstimationPoll& poll) {
  const auto surfaceAt = [&](std::span<const double> place) {
    Ask(poll);
    return Differentiate(sorted, {place[0], place[1], place[2]});
  };
  std::vector<double> place = {at.location, at.logScale, at.shape};
  const bool isMaximum = estimation::Climb(surfaceAt, place, surface);
  at = {place[0], place[1], place[2]};
  return isMaximum;
}

double SortedQuantile(std::span<const double> sorted, double p) {
  const double place = p * static_cast<double>(sorted.size() - 1);
  const auto below = static_cast<std::size_t>(place);
  const std::size_t above = std::min(below + 1, sorted.size() - 1);
  return sorted[below] + (place - static_cast<double>(below)) * (sorted[above] - sorted[below]);
}

// Location and scale that, with the given shape, meet the median and the spread of the sample, the scale
// widened until every value is within the support.
Point StartWithShape(std::span<const double> sorted, double shape) {
  const auto standardQuantile = [shape](double p) {
    const double y = -std::log(-std::log(p));
    return std::abs(shape) < 1e-9 ? y : std::expm1(shape * y) / shape;
  };
  // Ties can make the quartiles equal; the extremes are not.
  const double quartiles = SortedQuantile(sorted, 0.75) - SortedQuantile(sorted, 0.25);
  const double low = quartiles > 0.0 ? 0.25 : 0.5 / static_cast<double>(sorted.size());
  const double spread = quartiles > 0.0 ? quartiles : sorted.back() - sorted.front();
  double scale = spread / (standardQuantile(1.0 - low) - standardQuantile(low));
  for (int widening = 0; widening < 200; ++widening, scale *= 1.3) {
    const Point start = {SortedQuantile(sorted, 0.5) - scale * standardQuantile(0.5), std::log(scale), shape};
    if (Differentiate(sorted, start).value > -kInfinity) return start;
  }
  return {0.0, 0.0, kInfinity};
}

// The shape of the extreme value distribution whose unbiased probability-weighted moments have (3 b2 - b0) /
// (2 b1 - b0) equal to `ratio`: with k = -shape it is (1 - 3^-k) / (1 - 2^-k). NaN when the ratio is out of
// reach.
double ShapeOfMomentRatio(double ratio) {
  const auto ratioOf = [](double k) {
    return std::abs(k) < 1e-12 ? std::log(3.0) / std::numbers::ln2
                               : std::expm1(-k * std::log(3.0)) / std::expm1(-k * std::numbers::ln2);
  };
  constexpr double kLow = -1.0 + 1e-12;
  constexpr double kHigh = 60.0;
  if (!(ratio < ratioOf(kLow)) || !(ratio > ratioOf(kHigh))) return std::numeric_limits<double>::quiet_NaN();
  std::uintmax_t steps = 200;
  const auto bracket =
      boost::math::tools::toms748_solve([&](double k) { return ratioOf(k) - ratio; }, kLow, kHigh,
                                        boost::math::tools::eps_tolerance<double>(52), steps);
  return -0.5 * (bracket.first + bracket.second);
}

// Hosking, Wallis & Wood (1985), eqs. 8 and 14 to 16, on sorted values.
Point FromProbabilityWeightedMoments(std::span<const double> sorted) {
  const auto n = static_cast<double>(sorted.size());
  CompensatedSum b0;
  CompensatedSum b1;
  CompensatedSum b2;
  for (std::size_t i = 0; i < sorted.size(); ++i) {
    const auto j = static_cast<double>(i);
    b0.Add(sorted[i] / n);
    b1.Add(sorted[i] / n * (j / (n - 1.0)));
    b2.Add(sorted[i] / n * (j * (j - 1.0) / ((n - 1.0) * (n - 2.0))));
  }
  const double spread = 2.0 * b1.Value() - b0.Value();
  const double k = -ShapeOfMomentRatio((3.0 * b2.Value() - b0.Value()) / spread);
  if (std::abs(k) < 1e-9) {
    const double scale = spread / std::numbers::ln2;
    return {b0.Value() - std::numbers::egamma * scale, std::log(scale), -k};
  }
  const double scale = spread * k / (std::tgamma(1.0 + k) * -std::expm1(-k * std::numbers::ln2));
  return {b0.Value() + scale * (std::tgamma(1.0 + k) - 1.0) / k, std::log(scale), -k};
}

struct Maximum {
  Point at;
  Surface surface;
};

// The maxima reached from all starts, each once, the greatest first.
std::vector<Maximum> SearchMaxima(std::span<const double> sorted, const EstimationPoll& poll) {
  constexpr double kSame = 1e-6;  // between places that are one maximum
  std::vector<Maximum> maxima;
  const auto climbFrom = [&](Point at) {
    Surface surface;
    if (!Climb(sorted, at, surface, poll)) return;
    const auto isSame = [&](const Maximum& other) {
      const double distance = std::max(std::abs(at.location - other.at.location) * std::exp(-at.logScale),
                                       std::abs(at.logScale - other.at.logScale));
      return std::max(distance, std::abs(at.shape - other.at.shape)) < kSame;
    };
    if (std::ranges::none_of(maxima, isSame)) maxima.push_back({at, surface});
  };
  climbFrom(FromProbabilityWeightedMoments(sorted));
  for (const double shape : {0.1, -0.2, 0.5, -0.5, 1.0, -0.8, 2.0}) {
    Ask(poll);
    climbFrom(StartWithShape(sorted, shape));
  }
  std::ranges::stable_sort(maxima, std::greater(),
                           [](const Maximum& maximum) { return maximum.surface.value; });
  return maxima;
}

// The greatest maximum, if there is one. A sample of more than some values is climbed from the maxima of a thinned one.
std::optional<Maximum> GreatestMaximum(std::span<const double> sorted, const EstimationPoll& poll) {
  std::optional<Maximum> greatest;
  if (sorted.size() > kLargeSample) {
    std::vector<double> thin = Thinned(sorted, kThinnedSample);
    // With the extremes of all values among them, the thinned ones seldom fit a support that leaves some out.
    thin.front() = sorted.front();
    thin.back() = sorted.back();
    for (Maximum& maximum : SearchMaxima(thin, poll)) {
      if (!(Differentiate(sorted, maximum.at).value > -kInfinity))
        maximum.at = StartWithShape(sorted, maximum.at.shape);
      if (!Climb(sorted, maximum.at, maximum.surface, poll)) continue;
      if (!greatest || maximum.surface.value > greatest->surface.value) greatest = maximum;
    }
  }
  if (greatest) return greatest;
  const std::vector<Maximum> maxima = SearchMaxima(sorted, poll);
  return maxima.empty() ? std::nullopt : std::optional(maxima.front());
}

std::array<double, 3> InUnitsOfData(const ScaledSample& sample, const Point& at) {
  return {sample.origin + sample.InUnitsOfData(at.location), sample.InUnitsOfData(std::exp(at.logScale)),
          at.shape};
}

// At a maximum the information in ln(scale) becomes the one in the scale by its derivative alone. Nothing
// where the information is not positive definite.
std::vector<double> CovarianceAt(const Surface& surface, double count, const std::array<double, 3>& units) {
  std::vector<double> covariance = estimation::InverseOf(surface.information, units.size());
  for (std::size_t i = 0; i < covariance.size(); ++i)
    covariance[i] *= units[i / units.size()] * units[i % units.size()] / count;
  return covariance;
}

EstimationResult<ScaledSample> Prepare(std::span<const double> data) {
  if (auto checked = CheckSample(data, 3); !checked) return checked.Reason();
  return estimation::SortedAndCentred(data);
}

EstimationResult<ExtremeValueEstimate> IfFinite(ExtremeValueEstimate estimate) {
  if (estimation::IsAnyNotFinite(estimate.parameters)) return Fault{EstimationFault::kNotFinite};
  return estimate;
}

}  // namespace

EstimationResult<ExtremeValueEstimate> EstimateExtremeValue(std::span<const double> data,
                                                            const EstimationPoll& poll) {
  const auto sample = Prepare(data);
  if (!sample) return sample.Reason();
  const std::optional<Maximum> maximum = GreatestMaximum(sample->values, poll);
  if (!maximum) return Fault{EstimationFault::kNoMaximum};
  const auto parameters = InUnitsOfData(*sample, maximum->at);
  return IfFinite({parameters, CovarianceAt(maximum->surface, static_cast<double>(data.size()),
                                            {sample->InUnitsOfData(1.0), parameters[1], 1.0})});
}

EstimationResult<ExtremeValueEstimate> EstimateExtremeValueByMoments(std::span<const double> data) {
  const auto sample = Prepare(data);
  if (!sample) return sample.Reason();
  const Point fit = FromProbabilityWeightedMoments(sample->values);
  if (!std::isfinite(fit.shape)) return Fault{EstimationFault::kNoSolution};
  return IfFinite({InUnitsOfData(*sample, fit), {}});
}

}  // namespace brenvolt
