#include "host/numeric/estimation/mixture/mixture_climber.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

#include "host/numeric/estimation/estimator_support.h"

namespace brenvolt::mixture {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kLeastRelativeDeviation = 1e-6;
constexpr double kLeastCount = 2.0;

// x0 + 2 a r + a^2 v in the coordinates of the extrapolation, with r = x1 - x0 and v = (x2 - x1) - r.
class Extrapolation {
 public:
  Extrapolation(const Mixture& x0, const Mixture& x1, const Mixture& x2) : x0_(x0) {
    double rr = 0.0;
    double vv = 0.0;
    for (std::size_t c = 0; c < x0.size(); ++c) {
      const auto add = [&](double a, double b, double d, double unit) {
        r_.push_back(b - a);
        v_.push_back(d - b - (b - a));
        rr += r_.back() * r_.back() / (unit * unit);
        vv += v_.back() * v_.back() / (unit * unit);
      };
      add(std::log(x0[c].proportion), std::log(x1[c].proportion), std::log(x2[c].proportion), 1.0);
      add(x0[c].mean, x1[c].mean, x2[c].mean, x0[c].deviation);
      add(std::log(x0[c].deviation), std::log(x1[c].deviation), std::log(x2[c].deviation), 1.0);
    }
    length_ = vv > 0.0 ? std::sqrt(rr / vv) : 1.0;
  }

  double Length() const { return length_; }

  Mixture At(double length) const {
    Mixture mixture = x0_;
    double total = 0.0;
    for (std::size_t c = 0; c < mixture.size(); ++c) {
      const auto move = [&](std::size_t k) {
        return 2.0 * length * r_[3 * c + k] + length * length * v_[3 * c + k];
      };
      mixture[c].proportion *= std::exp(move(0));
      mixture[c].mean += move(1);
      mixture[c].deviation *= std::exp(move(2));
      total += mixture[c].proportion;
    }
    for (Component& component : mixture) component.proportion /= total;
    return mixture;
  }

 private:
  const Mixture& x0_;
  std::vector<double> r_;
  std::vector<double> v_;
  double length_ = 1.0;
};

// A mixture as a point: ln proportion, mean and ln standard deviation of each component. The means' unit is
// the component's standard deviation in the mixture that the point is seen from.
using Coordinates = std::vector<double>;

// To - from, in the coordinates seen from `from`.
Coordinates Displacement(const Mixture& from, const Mixture& to) {
  Coordinates moved;
  for (std::size_t c = 0; c < from.size(); ++c) {
    moved.push_back(std::log(to[c].proportion / from[c].proportion));
    moved.push_back((to[c].mean - from[c].mean) / from[c].deviation);
    moved.push_back(std::log(to[c].deviation / from[c].deviation));
  }
  return moved;
}

Mixture Moved(Mixture mixture, const Coordinates& step) {
  double total = 0.0;
  for (std::size_t c = 0; c < mixture.size(); ++c) {
    mixture[c].proportion *= std::exp(step[3 * c]);
    mixture[c].mean += step[3 * c + 1] * mixture[c].deviation;
    mixture[c].deviation *= std::exp(step[3 * c + 2]);
    total += mixture[c].proportion;
  }
  for (Component& component : mixture) component.proportion /= total;
  return mixture;
}

// Solves the system of `rows` (each with its right-hand side as the last entry) by elimination with row
// pivots; false when it is singular.
bool SolveSystem(std::vector<Coordinates>& rows, Coordinates& solution) {
  const std::size_t n = rows.size();
  for (std::size_t k = 0; k < n; ++k) {
    const auto pivot = std::max_element(
        rows.begin() + static_cast<std::ptrdiff_t>(k), rows.end(),
        [k](const Coordinates& a, const Coordinates& b) { return std::abs(a[k]) < std::abs(b[k]); });
    std::swap(rows[k], *pivot);
    if (!(std::abs(rows[k][k]) > 1e-12)) return false;
    for (std::size_t i = k + 1; i < n; ++i) {
      const double factor = rows[i][k] / rows[k][k];
      for (std::size_t j = k; j <= n; ++j) rows[i][j] -= factor * rows[k][j];
    }
  }
  solution.assign(n, 0.0);
  for (std::size_t i = n; i-- > 0;) {
    double rest = rows[i][n];
    for (std::size_t j = i + 1; j < n; ++j) rest -= rows[i][j] * solution[j];
    solution[i] = rest / rows[i][i];
  }
  return true;
}

// Identity minus the derivative of a step at `mixture`, by differences over the climber's values, with room
// for a right-hand side.
std::vector<Coordinates> SlopesOfStep(Climber& climber, const Mixture& mixture) {
  constexpr double kDifference = 1e-6;
  const std::size_t n = 3 * mixture.size();
  Mixture image = mixture;
  climber.Step(image);
  const Coordinates there = Displacement(mixture, image);
  std::vector<Coordinates> rows(n, Coordinates(n + 1, 0.0));
  for (std::size_t j = 0; j < n; ++j) {
    // Not through Moved, which would bring the proportions back to a sum of 1.
    Mixture shifted = mixture;
    Component& component = shifted[j / 3];
    if (j % 3 == 0) component.proportion *= std::exp(kDifference);
    if (j % 3 == 1) component.mean += kDifference * component.deviation;
    if (j % 3 == 2) component.deviation *= std::exp(kDifference);
    climber.Step(shifted);
    const Coordinates moved = Displacement(mixture, shifted);
    for (std::size_t i = 0; i < n; ++i) {
      rows[i][j] = (i == j ? 1.0 : 0.0) - (moved[i] - there[i]) / kDifference;
    }
  }
  return rows;
}

}  // namespace

Climber::Climber(std::span<const double> values, std::size_t components, double deviation,
                 const EstimationPoll& poll)
    : values_(values),
      poll_(poll),
      leastDeviation_(kLeastRelativeDeviation * deviation),
      expectation_(components),
      sums_(components) {}

double Climber::Step(Mixture& mixture) {
  estimation::Ask(poll_);
  const double logLikelihood = expectation_.Run(values_, mixture, sums_);
  const auto n = static_cast<double>(values_.size());
  for (std::size_t c = 0; c < mixture.size(); ++c) {
    const double shift = sums_[c].first / sums_[c].weight;
    mixture[c].proportion = sums_[c].weight / n;
    mixture[c].mean += shift;
    mixture[c].deviation = std::sqrt(std::max(0.0, sums_[c].second / sums_[c].weight - shift * shift));
  }
  return std::isnan(logLikelihood) ? -kInfinity : logLikelihood / n;
}

bool Climber::IsCollapsed(const Mixture& mixture) const {
  const double leastProportion = kLeastCount / static_cast<double>(values_.size());
  return std::any_of(mixture.begin(), mixture.end(), [&](const Component& c) {
    return !(c.proportion >= leastProportion * (1.0 - 1e-9)) || !(c.deviation > leastDeviation_);
  });
}

Candidate RunShort(Climber& climber, Mixture mixture) {
  constexpr int kSteps = 40;
  Candidate candidate;
  for (int step = 0; step < kSteps; ++step) {
    if (climber.IsCollapsed(mixture)) return {};
    candidate.mixture = mixture;
    candidate.logLikelihood = climber.Step(mixture);
  }
  return candidate;
}

std::optional<Candidate> Polish(Climber& sketch, Climber& climber, Mixture at) {
  constexpr int kMaxMoves = 12;
  constexpr double kLongMove = 0.5;
  constexpr double kLastMove = 1e-7;  // the likelihood then lacks about its square
  constexpr double kRounding = 1e-13;
  constexpr double kLeastProgress = 0.7;  // from a length to the next; slower moves lead nowhere
  const bool isOwnSketch = &sketch == &climber;
  double previous = kLongMove;
  std::vector<Coordinates> slopes = SlopesOfStep(sketch, at);
  Mixture image = at;
  double logLikelihood = climber.Step(image);
  for (int move = 0; move < kMaxMoves; ++move) {
    const Coordinates displacement = Displacement(at, image);
    std::vector<Coordinates> rows = slopes;
    for (std::size_t i = 0; i < rows.size(); ++i) rows[i].back() = displacement[i];
    Coordinates step;
    if (!SolveSystem(rows, step)) return std::nullopt;
    double length = 0.0;
    for (const double x : step) length = std::max(length, std::abs(x));
    if (!(length < (isOwnSketch && move > 0 ? kLeastProgress * previous : kLongMove))) return std::nullopt;
    previous = length;
    at = Moved(at, step);
    if (climber.IsCollapsed(at)) return std::nullopt;
    image = at;
    const double next = climber.Step(image);
    if (!(next >= logLikelihood - kRounding * std::abs(logLikelihood))) return std::nullopt;
    logLikelihood = next;
    if (length < kLastMove) return Candidate{at, logLikelihood};
    if (isOwnSketch) slopes = SlopesOfStep(sketch, at);
  }
  return std::nullopt;
}

Candidate RunToTheEnd(Climber& climber, const Mixture& start, double known, int mostCycles) {
  constexpr double kGain = 1e-12;
  constexpr int kIdleCycles = 3;   // one idle cycle may be an extrapolation that was taken back
  constexpr int kStage = 15;       // cycles after which Newton's method is tried and the hope is judged
  constexpr double kHope = 100.0;  // stages at the pace of the last one that a run may lie behind
  Mixture x0 = start;
  Candidate last;
  int idle = 0;
  int nextPolish = kStage;
  double atStage = -kInfinity;
  for (int cycle = 0; cycle < mostCycles; ++cycle) {
    if (climber.IsCollapsed(x0)) return {};
    Mixture x1 = x0;
    const double logLikelihood = climber.Step(x1);
    idle = logLikelihood - last.logLikelihood < kGain ? idle + 1 : 0;
    last = {x0, logLikelihood};
    if (idle >= kIdleCycles) return last;
    if (cycle + 1 == nextPolish) {
      if (auto end = Polish(climber, climber, x0)) return *std::move(end);
      nextPolish *= 2;
    }
    if (cycle % kStage == kStage - 1) {
      if (logLikelihood + kHope * (logLikelihood - atStage) < known) return {};
      atStage = logLikelihood;
    }
    if (climber.IsCollapsed(x1)) return {};
    Mixture x2 = x1;
    climber.Step(x2);
    if (climber.IsCollapsed(x2)) return {};

    const Extrapolation extrapolation(x0, x1, x2);
    Mixture plain = x2;
    const double plainLogLikelihood = climber.Step(plain);
    x0 = plain;
    if (extrapolation.Length() <= 1.0) continue;
    Mixture far = extrapolation.At(extrapolation.Length());
    if (climber.IsCollapsed(far)) continue;
    if (climber.Step(far) > plainLogLikelihood && !climber.IsCollapsed(far)) x0 = far;
  }
  return last;
}

}  // namespace brenvolt::mixture
