#include "host/statistics/profile_likelihood.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

#include "host/numeric/distributions/distribution_table.h"
#include "host/numeric/distributions/normal.h"
#include "host/numeric/estimation/damped_newton.h"
#include "host/numeric/special/bracketed_root.h"
#include "host/numeric/vector/small_cholesky.h"

namespace brenvolt {
namespace {

using estimation::Climb;
using estimation::Surface;
using Vector = std::vector<double>;
using VectorFunction = std::function<double(const Vector&)>;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
// Of differences, in standard errors: the likelihood is nearly quadratic over such a step, and differs by far more than its
// rounding.
constexpr double kStep = 0.01;

// A function with its derivatives by differences; of value minus infinity where one of the points has no value.
Surface Differentiate(const VectorFunction& function, std::span<const double> point) {
  const std::size_t n = point.size();
  Vector at(point.begin(), point.end());
  Surface surface{function(at), Vector(n), Vector(n * n)};
  bool isFinite = std::isfinite(surface.value);
  const auto moved = [&](std::size_t i, double first, std::size_t j, double second) {
    const Vector former = at;
    at[i] += first;
    at[j] += second;
    const double value = function(at);
    at = former;
    isFinite = isFinite && std::isfinite(value);
    return value;
  };
  for (std::size_t i = 0; isFinite && i < n; ++i) {
    const double above = moved(i, kStep, i, 0);
    const double below = moved(i, -kStep, i, 0);
    // Of fourth order: where this slope is 0 the value must be greatest to its rounding, or no step ends the climb.
    const double farAbove = moved(i, 2 * kStep, i, 0);
    const double farBelow = moved(i, -2 * kStep, i, 0);
    surface.gradient[i] = (8 * (above - below) - (farAbove - farBelow)) / (12 * kStep);
    surface.information[i * n + i] = -(above - 2 * surface.value + below) / (kStep * kStep);
    for (std::size_t j = 0; isFinite && j < i; ++j) {
      const double mixed = moved(i, kStep, j, kStep) - moved(i, kStep, j, -kStep) -
                           moved(i, -kStep, j, kStep) + moved(i, -kStep, j, -kStep);
      surface.information[i * n + j] = surface.information[j * n + i] = -mixed / (4 * kStep * kStep);
    }
  }
  if (!isFinite) surface.value = -kInfinity;
  return surface;
}

// What Newton's method promises of the greatest value beyond the one at a point.
double PromiseOf(const Surface& surface) {
  const std::size_t n = surface.gradient.size();
  const Vector inverse = estimation::InverseOf(surface.information, n);
  if (inverse.empty()) return kInfinity;
  double promise = 0;
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = 0; j < n; ++j)
      promise += surface.gradient[i] * inverse[i * n + j] * surface.gradient[j] / 2;
  }
  return promise;
}

// The greatest value of a function, near `point`, which is left there; nothing where there is none.
std::optional<double> Maximise(const VectorFunction& function, Vector& point) {
  constexpr double kEnough = 1e-7;  // which the rounding of large likelihoods may hide, and no interval shows
  if (point.empty()) return function(point);
  Surface surface;
  const auto at = [&](std::span<const double> one) { return Differentiate(function, one); };
  if (!Climb(at, point, surface) && (!std::isfinite(surface.value) || PromiseOf(surface) > kEnough))
    return std::nullopt;
  return surface.value;
}

// The profile of a likelihood over what a function gives, in coordinates in which the errors of the values, of positive ones those
// of their logarithms, are those of independent standard normal numbers.
class Profile {
 public:
  Profile(const FittedValues& fit, const LogLikelihood& likelihood, const FitFunction& function)
      : fit_(fit),
        likelihood_(likelihood),
        function_(function),
        factor_(fit.values.size() * fit.values.size()) {}

  // Whether the likelihood has a maximum, and the function a slope there.
  bool Begin() {
    constexpr double kLeastPivot = 1e-14;
    const std::size_t n = fit_.values.size();
    if (fit_.covariance.size() != n * n) return false;
    Vector covariance = fit_.covariance;
    for (std::size_t i = 0; i < n * n; ++i) covariance[i] /= UnitOf(i / n) * UnitOf(i % n);
    if (!SmallCholesky(covariance, n, kLeastPivot, factor_)) return false;
    centre_ = Vector(n);
    const auto greatest = Maximise([this](const Vector& point) { return likelihood_(At(point)); }, centre_);
    const Surface slope =
        Differentiate([this](const Vector& point) { return function_(At(point)); }, centre_);
    if (!greatest || !std::isfinite(slope.value)) return false;
    greatest_ = *greatest;
    estimate_ = slope.value;
    double squares = 0;
    for (const double one : slope.gradient) squares += one * one;
    error_ = std::sqrt(squares);
    if (!(error_ > 0)) return false;
    SetAxes(slope.gradient);
    return true;
  }

  // Where the root of the likelihood ratio reaches `reach` on the side of the sign; nothing where it does not.
  std::optional<double> End(double sign, double reach) {
    constexpr int kMostSteps = 40;
    constexpr double kGrowth = 1.5;
    constexpr int kBits = 32;
    inner_ = Vector(fit_.values.size() - 1);
    along_ = 0;
    at_ = estimate_;
    const auto excess = [&](double distance) { return RootAt(estimate_ + sign * distance, reach) - reach; };
    double low = 0;
    double high = reach * error_;
    double atLow = -reach;
    double atHigh = excess(high);
    for (int step = 0; atHigh < 0; ++step) {
      if (step == kMostSteps) return std::nullopt;
      low = std::exchange(high, kGrowth * high);
      atLow = std::exchange(atHigh, excess(high));
    }
    const double end = SolveBracketed(excess, low, high, atLow, atHigh, kBits);
    // A jump is where the search found no values, and no end.
    constexpr double kNear = 1e-4;
    if (!(std::abs(excess(end)) < kNear)) return std::nullopt;
    return estimate_ + sign * end;
  }

 private:
  bool IsPositive(std::size_t i) const {
    return EntryOf(fit_.code).facts.parameters[i].range == ParameterRange::kPositive;
  }
  double UnitOf(std::size_t i) const { return IsPositive(i) ? fit_.values[i] : 1; }

  FittedValues At(const Vector& point) const {
    const std::size_t n = point.size();
    FittedValues fit{fit_.code, fit_.values, fit_.offset, {}};
    for (std::size_t i = 0; i < n; ++i) {
      double moved = 0;
      for (std::size_t j = 0; j <= i; ++j) moved += factor_[i * n + j] * point[j];
      fit.values[i] = IsPositive(i) ? fit.values[i] * std::exp(moved) : fit.values[i] + moved;
    }
    return fit;
  }

  // The first axis along the gradient, the others at right angles to it, by Gram and Schmidt.
  void SetAxes(const Vector& gradient) {
    const std::size_t n = gradient.size();
    const auto add = [this, n](Vector axis) {
      constexpr double kShort = 0.1;  // of a unit vector that lies nearly in the span of the others
      for (const Vector& other : axes_) {
        double shared = 0;
        for (std::size_t i = 0; i < n; ++i) shared += axis[i] * other[i];
        for (std::size_t i = 0; i < n; ++i) axis[i] -= shared * other[i];
      }
      double squares = 0;
      for (const double one : axis) squares += one * one;
      if (squares < kShort) return;
      for (double& one : axis) one /= std::sqrt(squares);
      axes_.push_back(std::move(axis));
    };
    Vector first = gradient;
    for (double& one : first) one /= error_;
    add(std::move(first));
    for (std::size_t i = 0; i < n && axes_.size() < n; ++i) {
      Vector unit(n);
      unit[i] = 1;
      add(std::move(unit));
    }
  }

  Vector PointAt(double along, const Vector& inner) const {
    Vector point = centre_;
    for (std::size_t i = 0; i < point.size(); ++i) {
      point[i] += along * axes_[0][i];
      for (std::size_t k = 0; k < inner.size(); ++k) point[i] += inner[k] * axes_[k + 1][i];
    }
    return point;
  }

  // The coordinate along the gradient at which the function gives `target` beside the others; nothing if there is none near.
  std::optional<double> AlongFor(double target, const Vector& inner, double guess) const {
    constexpr double kReach = 0.1;
    constexpr double kFarthest = 1000;
    constexpr double kSteepest = 1e6;
    bool isKnown = true;
    const auto beyond = [&](double along) {
      const double value = (function_(At(PointAt(along, inner))) - target) / error_;
      isKnown = isKnown && !std::isnan(value);
      return std::clamp(value, -kSteepest, kSteepest);
    };
    double from = guess;
    double atFrom = beyond(from);
    if (atFrom == 0) return from;
    const double direction = atFrom < 0 ? 1 : -1;
    for (double step = std::max(kReach, 2 * std::abs(atFrom)); isKnown && step < kFarthest; step *= 2) {
      const double to = from + direction * step;
      const double atTo = beyond(to);
      if (!isKnown) break;
      if ((atTo < 0) != (atFrom < 0)) {
        const bool rises = direction > 0;
        return SolveBracketed(beyond, rises ? from : to, rises ? to : from, rises ? atFrom : atTo,
                              rises ? atTo : atFrom);
      }
      from = to;
      atFrom = atTo;
    }
    return std::nullopt;
  }

  // The root of twice the logarithm of the likelihood ratio; beyond `reach` where no values give the target.
  double RootAt(double target, double reach) {
    double along = along_ + (target - at_) / error_;
    const VectorFunction profiled = [&](const Vector& inner) {
      const auto found = AlongFor(target, inner, along);
      if (!found) return -kInfinity;
      along = *found;
      return likelihood_(At(PointAt(*found, inner)));
    };
    Vector inner = inner_;
    const auto greatest = Maximise(profiled, inner);
    if (!greatest || !std::isfinite(*greatest)) return reach + 1;
    inner_ = std::move(inner);
    along_ = along;
    at_ = target;
    return std::sqrt(std::max(0.0, 2 * (greatest_ - *greatest)));
  }

  const FittedValues& fit_;
  const LogLikelihood& likelihood_;
  const FitFunction& function_;
  Vector factor_;  // the lower Cholesky factor of the covariance
  Vector centre_;  // where the likelihood is greatest
  double greatest_ = 0;
  double estimate_ = 0;
  double error_ = 0;  // the standard error of the function
  std::vector<Vector> axes_;
  // Where the last search ended, at which the next begins.
  Vector inner_;
  double along_ = 0;
  double at_ = 0;
};

}  // namespace

ConfidenceInterval ProfileInterval(const FittedValues& fit, const LogLikelihood& likelihood,
                                   const FitFunction& function, double confidence) {
  Profile profile(fit, likelihood, function);
  if (!profile.Begin()) return {};
  const double reach = Distribution<Normal>(0, 1).ComplementQuantile((1 - confidence) / 2);
  const auto lower = profile.End(-1, reach);
  if (!lower) return {};
  const auto upper = profile.End(1, reach);
  if (!upper) return {};
  return {*lower, *upper};
}

}  // namespace brenvolt
