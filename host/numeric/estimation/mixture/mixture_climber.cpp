#include "host/numeric/estimation/mixture/mixture_climber.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

#include "host/numeric/estimation/damped_newton.h"
#include "host/numeric/estimation/estimator_support.h"

namespace brenvolt::mixture {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kLeastRelativeDeviation = 1e-6;
constexpr double kLeastCount = 2.0;

// A mixture as a point seen from another one: ln(proportion) relative to that of its largest component, mean and ln(standard
// deviation) of each component, the means in units of the standard deviations there.
class Coordinates {
 public:
  explicit Coordinates(const Mixture& origin) : origin_(origin) {
    const auto isSmaller = [](const Component& a, const Component& b) { return a.proportion < b.proportion; };
    largest_ = static_cast<std::size_t>(std::ranges::max_element(origin_, isSmaller) - origin_.begin());
  }

  std::size_t Count() const { return 3 * origin_.size() - 1; }

  Mixture At(std::span<const double> point) const {
    Mixture mixture = origin_;
    double total = 0.0;
    for (std::size_t c = 0; c < mixture.size(); ++c) {
      const auto at = [&](std::size_t k) { return point[Without(3 * c + k)]; };
      if (c != largest_) mixture[c].proportion *= std::exp(at(0));
      mixture[c].mean += at(1) * mixture[c].deviation;
      mixture[c].deviation *= std::exp(at(2));
      total += mixture[c].proportion;
    }
    for (Component& component : mixture) component.proportion /= total;
    return mixture;
  }

  // The derivatives at a mixture in these coordinates.
  estimation::Surface SurfaceOf(const MixtureDerivatives& derivatives, const Mixture& at) const {
    const std::size_t all = 3 * origin_.size();
    std::vector<double> units(all, 1.0);
    for (std::size_t c = 0; c < at.size(); ++c) units[3 * c + 1] = origin_[c].deviation / at[c].deviation;
    estimation::Surface surface{derivatives.logLikelihood, {}, {}};
    for (std::size_t a = 0; a < all; ++a) {
      if (a == 3 * largest_) continue;
      surface.gradient.push_back(derivatives.gradient[a] * units[a]);
      for (std::size_t b = 0; b < all; ++b)
        if (b != 3 * largest_)
          surface.information.push_back(derivatives.information[a * all + b] * units[a] * units[b]);
    }
    return surface;
  }

 private:
  std::size_t Without(std::size_t k) const { return k > 3 * largest_ ? k - 1 : k; }

  const Mixture& origin_;
  std::size_t largest_;
};

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

MixtureDerivatives Climber::Differentiate(const Mixture& mixture) {
  estimation::Ask(poll_);
  MixtureDerivatives derivatives = expectation_.Differentiate(values_, mixture);
  const double share = 1.0 / static_cast<double>(values_.size());
  derivatives.logLikelihood *= share;
  for (double& x : derivatives.gradient) x *= share;
  for (double& x : derivatives.information) x *= share;
  return derivatives;
}

bool Climber::IsCollapsed(const Mixture& mixture) const {
  const double leastProportion = kLeastCount / static_cast<double>(values_.size());
  return std::any_of(mixture.begin(), mixture.end(), [&](const Component& c) {
    return !(c.proportion >= leastProportion * (1.0 - 1e-9)) || !(c.deviation > leastDeviation_);
  });
}

Candidate RunShort(Climber& climber, Mixture mixture) {
  constexpr int kSteps = 12;
  Candidate candidate;
  for (int step = 0; step < kSteps; ++step) {
    if (climber.IsCollapsed(mixture)) return {};
    candidate.mixture = mixture;
    candidate.logLikelihood = climber.Step(mixture);
  }
  return candidate;
}

Candidate RunToTheEnd(Climber& climber, const Mixture& start) {
  constexpr double kLongestStep = 0.7;
  const Coordinates coordinates(start);
  std::vector<double> point(coordinates.Count());
  const auto surfaceAt = [&](std::span<const double> place) {
    const Mixture mixture = coordinates.At(place);
    if (climber.IsCollapsed(mixture)) return estimation::Surface();
    return coordinates.SurfaceOf(climber.Differentiate(mixture), mixture);
  };
  estimation::Surface surface;
  if (!estimation::Climb(surfaceAt, point, surface, kLongestStep)) return {};
  return {coordinates.At(point), surface.value};
}

}  // namespace brenvolt::mixture
