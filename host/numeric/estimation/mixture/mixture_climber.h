// Climbing from a mixture to a maximum of the likelihood of a sample: a few steps of expectation and maximisation
// (Dempster, Laird & Rubin 1977), then Newton's method.
//
// Values are in units in which their squares are far from overflow.
#pragma once

#include <limits>
#include <span>
#include <vector>

#include "host/numeric/estimation/estimators.h"
#include "host/numeric/estimation/mixture/mixture_expectation.h"

namespace brenvolt::mixture {

using Component = MixtureComponent;
using Mixture = std::vector<Component>;

// Steps of expectation and maximisation over one sample, with the space that they need.
class Climber {
 public:
  // `deviation` is the standard deviation of the values; `poll`, called before every step, has to outlive the
  // climber.
  Climber(std::span<const double> values, std::size_t components, double deviation,
          const EstimationPoll& poll);

  // Replaces the mixture by the next one and returns the mean log-likelihood of the one given.
  double Step(Mixture& mixture);

  // The log-likelihood with its derivatives, all as means over the values.
  MixtureDerivatives Differentiate(const Mixture& mixture);

  // Whether a component holds fewer than two values or its standard deviation is below 1e-6 of that of the
  // values.
  bool IsCollapsed(const Mixture& mixture) const;

 private:
  std::span<const double> values_;
  const EstimationPoll& poll_;
  double leastDeviation_;
  MixtureExpectation expectation_;
  std::vector<ResponsibilitySums> sums_;
};

struct Candidate {
  Mixture mixture;
  double logLikelihood = -std::numeric_limits<double>::infinity();  // mean
};

// A few plain steps; minus infinity as likelihood where the mixture collapses.
Candidate RunShort(Climber& climber, Mixture mixture);

// The maximum that Newton's method reaches; minus infinity as likelihood where the mixture collapses or no maximum is found.
Candidate RunToTheEnd(Climber& climber, const Mixture& start);

}  // namespace brenvolt::mixture
