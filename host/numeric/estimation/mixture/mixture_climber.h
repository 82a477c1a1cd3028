// Climbing from a mixture to a maximum of the likelihood of a sample: steps of expectation and maximisation
// (Dempster, Laird & Rubin 1977), accelerated by squared extrapolation (Varadhan & Roland 2008, scheme S3) in
// the logarithms of proportions and standard deviations and in the means; an extrapolation that loses
// likelihood is taken back, so that the likelihood never falls. Near a maximum Newton's method for the fixed
// point of the step finishes the run.
//
// Values are in units in which their squares are far from overflow.
#pragma once

#include <limits>
#include <optional>
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

// Newton's method for the mixture that a step leaves where it is, from one near: the slopes come from
// `sketch`, whose values may be a thinned sample of those of `climber` (the iteration then converges by a
// constant factor). Nothing when a move is long, loses likelihood or collapses, or when the moves do not
// vanish.
std::optional<Candidate> Polish(Climber& sketch, Climber& climber, Mixture at);

// Until a cycle of two steps and an extrapolation gains nothing to speak of, or until Newton's method, tried
// ever more seldom, converges. Returns nothing for a run that collapses, or that climbs so slowly that it
// will not reach the mean log-likelihood `known`. After `mostCycles` it stands as it is.
Candidate RunToTheEnd(Climber& climber, const Mixture& start, double known, int mostCycles);

}  // namespace brenvolt::mixture
