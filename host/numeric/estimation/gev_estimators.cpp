// Generalized extreme value. With z = (x - location) / scale and w = ln(1 + shape z) / shape, which is z for
// shape 0,
//   log density = -ln(scale) - (1 + shape) w - exp(-w).
// The likelihood is climbed in (location, ln scale, shape) by Newton's method, held to its region of
// quadratic behaviour by the damping of Levenberg (1944) and Marquardt (1963). Data are centred on their
// median and scaled by a power of two first.
#include "host/numeric/estimation/gev_estimators.h"

#include <algorithm>
#include <array>
#include <boost/math/tools/toms748_solve.hpp>
#include <cmath>
#include <limits>
#include <numbers>
#include <span>
#include <vector>

#include "host/numeric/estimation/centred_sample.h"
#include "host/numeric/estimation/estimator_support.h"
#include "host/numeric/special/bracketed_root.h"
#include "host/numeric/special/log_one_plus.h"
#include "host/numeric/vector/vector_forms.h"

namespace brenvolt {
namespace {

using estimation::Ask;
using estimation::CheckSample;
using estimation::CompensatedSum;
using estimation::kBlock;
using estimation::ScaledSample;
using estimation::ScaleFrom;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kLeastShape = -1.0;     // the likelihood is unbounded beyond
constexpr double kGreatestShape = 20.0;  // beyond, a start is on its way to infinity

using Vector3 = std::array<double, 3>;
using Matrix3 = std::array<Vector3, 3>;

// The mean log-likelihood at a point, with its first derivatives and the negative of its second.
struct Surface {
  double value = -kInfinity;
  Vector3 gradient{};
  Matrix3 information{};
};

struct Point {
  double location = 0.0;
  double logScale = 0.0;
  double shape = 0.0;

  Point Moved(const Vector3& step) const { return {location + step[0], logScale + step[1], shape + step[2]}; }
};

double MeanLogLikelihood(std::span<const double> values, const Point& at) {
  if (!(at.shape > kLeastShape) || !(at.shape < kGreatestShape)) return -kInfinity;
  const double inverseScale = std::exp(-at.logScale);
  CompensatedSum sum;
  for (const double x : values) {
    const double z = (x - at.location) * inverseScale;
    if (!(1.0 + at.shape * z > 0.0)) return -kInfinity;
    const double w = DifferentiateLogOnePlus(z, at.shape).value;
    sum.Add(-(1.0 + at.shape) * w - std::exp(-w));
  }
  const double mean = sum.Value() / static_cast<double>(values.size()) - at.logScale;
  return std::isnan(mean) ? -kInfinity : mean;
}

// Sums over values of the log density's derivatives by z and the shape, the first with the powers of z that
// those by location (l) and scale (s) take.
struct DerivativeSums {
  double l = 0.0;
  double s = 0.0;
  double k = 0.0;
  double ll = 0.0;
  double ls = 0.0;
  double ss = 0.0;
  double lk = 0.0;
  double sk = 0.0;
  double kk = 0.0;

  void Add(double z, double shape, const LogOnePlus& w, double t) {
    const double byW = t - 1.0 - shape;
    // Of the log density by z and the shape, at fixed scale; -t is its second derivative by w.
    const double byZ = byW * w.byZ;
    const double byZZ = byW * w.byZZ - t * w.byZ * w.byZ;
    const double byZK = byW * w.byZK - t * w.byZ * w.byK - w.byZ;
    l -= byZ;
    s -= z * byZ;
    k += byW * w.byK - w.value;
    ll += byZZ;
    ls += z * byZZ + byZ;
    ss += z * (z * byZZ + byZ);
    lk -= byZK;
    sk -= z * byZK;
    kk += byW * w.byKK - t * w.byK * w.byK - 2.0 * w.byK;
  }
};

Surface SurfaceFrom(const DerivativeSums& sums, double value, double inverseScale, double inverseCount) {
  const double byLocation = inverseScale * inverseCount;
  Surface surface;
  surface.value = value;
  surface.gradient = {sums.l * byLocation, sums.s * inverseCount - 1.0, sums.k * inverseCount};
  surface.information[0] = {-sums.ll * byLocation * inverseScale, -sums.ls * byLocation,
                            -sums.lk * byLocation};
  surface.information[1] = {-sums.ls * byLocation, -sums.ss * inverseCount, -sums.sk * inverseCount};
  surface.information[2] = {-sums.lk * byLocation, -sums.sk * inverseCount, -sums.kk * inverseCount};
  return surface;
}

// A value of -infinity and nothing else where a value lies outside the support.
Surface Differentiate(std::span<const double> values, const Point& at) {
  if (!(at.shape > kLeastShape) || !(at.shape < kGreatestShape)) return {};
  const double inverseScale = std::exp(-at.logScale);
  DerivativeSums sums;
  CompensatedSum value;
  double logs[kBlock];
  double exponentials[kBlock];
  LogOnePlus terms[kBlock];
  for (std::size_t begin = 0; begin < values.size(); begin += kBlock) {
    const auto x = values.subspan(begin, std::min(kBlock, values.size() - begin));
    const std::span<double> u(logs, x.size());
    const std::span<double> t(exponentials, x.size());
    double least = 0.0;
    for (std::size_t i = 0; i < x.size(); ++i) {
      u[i] = at.shape * ((x[i] - at.location) * inverseScale);
      least = std::min(least, u[i]);
    }
    if (!(1.0 + least > 0.0)) return {};
    elementary::Log1p(u, u);
    for (std::size_t i = 0; i < x.size(); ++i) {
      terms[i] = DifferentiateLogOnePlus((x[i] - at.location) * inverseScale, at.shape, u[i]);
      t[i] = -terms[i].value;
    }
    elementary::Exp(t, t);
    double here = 0.0;
    for (std::size_t i = 0; i < x.size(); ++i) {
      sums.Add((x[i] - at.location) * inverseScale, at.shape, terms[i], t[i]);
      here -= (1.0 + at.shape) * terms[i].value + t[i];
    }
    value.Add(here);
  }
  const double inverseCount = 1.0 / static_cast<double>(values.size());
  const double mean = value.Value() * inverseCount - at.logScale;
  return std::isfinite(mean) ? SurfaceFrom(sums, mean, inverseScale, inverseCount) : Surface{};
}

// Lower Cholesky factor; false when the matrix is not positive definite. Not the factor of host/numeric/algebra,
// which takes a pivot for positive from some 1e-15 of its diagonal element on: along the ridges that this
// likelihood has where it grows towards an end of the parameters such pivots are what rounding leaves of 0, and
// the climb would end on a ridge as on a maximum. It also runs some hundred times in a fit, where the general
// one would allocate.
bool Factorise(const Matrix3& matrix, Matrix3& lower) {
  lower = {};
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j <= i; ++j) {
      double rest = matrix[i][j];
      for (std::size_t m = 0; m < j; ++m) rest -= lower[i][m] * lower[j][m];
      if (i != j) {
        lower[i][j] = rest / lower[j][j];
      } else if (rest > 1e-14 * std::abs(matrix[i][i])) {
        lower[i][i] = std::sqrt(rest);
      } else {
        return false;
      }
    }
  }
  return true;
}

Vector3 Solve(const Matrix3& lower, Vector3 right) {
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < i; ++j) right[i] -= lower[i][j] * right[j];
    right[i] /= lower[i][i];
  }
  for (std::size_t i = 3; i-- > 0;) {
    for (std::size_t j = i + 1; j < 3; ++j) right[i] -= lower[j][i] * right[j];
    right[i] /= lower[i][i];
  }
  return right;
}

double Dot(const Vector3& a, const Vector3& b) {
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

Matrix3 Damped(Matrix3 matrix, double damping) {
  for (std::size_t i = 0; i < 3; ++i) matrix[i][i] += damping * std::max(std::abs(matrix[i][i]), 1e-3);
  return matrix;
}

// So near the maximum the likelihood no longer tells points apart, but one more step of Newton's method
// doubles the digits of the parameters.
void TakeLastStep(std::span<const double> values, const Matrix3& lower, Point& at, Surface& surface) {
  const Point next = at.Moved(Solve(lower, surface.gradient));
  const Surface there = Differentiate(values, next);
  if (!(there.value > -kInfinity)) return;
  at = next;
  surface = there;
}

// Climbs from `at`. True when it ends at a maximum: information positive definite and nothing left to
// gain.
bool Climb(std::span<const double> values, Point& at, Surface& surface, const EstimationPoll& poll) {
  constexpr int kMaxSteps = 300;
  constexpr double kGain = 1e-15;          // of the mean log-likelihood, by the quadratic model
  constexpr double kRoundingGain = 1e-12;  // what rounding may hide
  constexpr double kMaxDamping = 1e12;
  double damping = 1e-3;
  Ask(poll);
  surface = Differentiate(values, at);
  if (!(surface.value > -kInfinity)) return false;
  for (int step = 0; step < kMaxSteps; ++step) {
    Matrix3 lower;
    double promise = kInfinity;
    if (Factorise(surface.information, lower)) {
      promise = 0.5 * Dot(surface.gradient, Solve(lower, surface.gradient));
      if (promise < kGain) {
        TakeLastStep(values, lower, at, surface);
        return true;
      }
    }
    bool isHigher = false;
    for (; !isHigher && damping < kMaxDamping; damping *= 10.0) {
      if (!Factorise(Damped(surface.information, damping), lower)) continue;
      const Point next = at.Moved(Solve(lower, surface.gradient));
      Ask(poll);
      const Surface there = Differentiate(values, next);
      if (!(there.value > surface.value)) continue;
      at = next;
      surface = there;
      isHigher = true;
    }
    if (!isHigher) return promise < kRoundingGain;
    damping = std::max(damping / 300.0, 1e-16);  // ten of which the loop added after the step that counts
  }
  return false;
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
    if (MeanLogLikelihood(sorted, start) > -kInfinity) return start;
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

// The greatest of the maxima reached from all starts; shape infinite when there is none.
Point SearchMaximum(std::span<const double> sorted, Surface& best, const EstimationPoll& poll) {
  std::vector<Point> starts = {FromProbabilityWeightedMoments(sorted)};
  for (const double shape : {0.1, -0.2, 0.5, -0.5, 1.0, -0.8, 2.0}) {
    Ask(poll);
    starts.push_back(StartWithShape(sorted, shape));
  }
  Point greatest = {0.0, 0.0, kInfinity};
  for (Point at : starts) {
    Surface surface;
    if (!Climb(sorted, at, surface, poll) || !(surface.value > best.value)) continue;
    best = surface;
    greatest = at;
  }
  return greatest;
}

// The same; a large sample is climbed from the maximum of a thinned one, if there is one.
Point GreatestMaximum(std::span<const double> sorted, Surface& best, const EstimationPoll& poll) {
  if (sorted.size() > kLargeSample) {
    std::vector<double> thin = Thinned(sorted, kThinnedSample);
    // With the extremes of all values among them, the thinned ones seldom fit a support that leaves some out.
    thin.front() = sorted.front();
    thin.back() = sorted.back();
    Surface ofThin;
    Point at = SearchMaximum(thin, ofThin, poll);
    if (std::isfinite(at.shape) && !(MeanLogLikelihood(sorted, at) > -kInfinity))
      at = StartWithShape(sorted, at.shape);
    if (std::isfinite(at.shape) && Climb(sorted, at, best, poll)) return at;
    best = {};
  }
  return SearchMaximum(sorted, best, poll);
}

std::array<double, 3> InUnitsOfData(const ScaledSample& sample, const Point& at) {
  return {sample.origin + sample.InUnitsOfData(at.location), sample.InUnitsOfData(std::exp(at.logScale)),
          at.shape};
}

// At a maximum the information in ln(scale) becomes the one in the scale by its derivative alone. Nothing
// where the information is not positive definite.
std::vector<double> CovarianceAt(const Surface& surface, double count, const Vector3& units) {
  Matrix3 lower;
  if (!Factorise(surface.information, lower)) return {};
  std::vector<double> covariance;
  for (std::size_t i = 0; i < 3; ++i) {
    Vector3 unit{};
    unit[i] = 1.0;
    const Vector3 row = Solve(lower, unit);
    for (std::size_t j = 0; j < 3; ++j) covariance.push_back(row[j] / count * units[i] * units[j]);
  }
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
  Surface surface;
  const Point maximum = GreatestMaximum(sample->values, surface, poll);
  if (!std::isfinite(maximum.shape)) return Fault{EstimationFault::kNoMaximum};
  const auto parameters = InUnitsOfData(*sample, maximum);
  return IfFinite({parameters, CovarianceAt(surface, static_cast<double>(data.size()),
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
