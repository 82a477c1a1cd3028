// The distribution function of censored values without a distribution: that of Kaplan & Meier (1958, Nonparametric
// estimation from incomplete observations, Journal of the American Statistical Association 53) where no value is left or
// interval censored, else that of Turnbull (1976, The empirical distribution function with arbitrarily grouped, censored and
// truncated data, Journal of the Royal Statistical Society B 38).
#pragma once

#include <vector>

#include "host/numeric/censored/censored_sample.h"

namespace brenvolt {

// Where the function rises, from `before` to `after`: at a value, or anywhere in an interval of which `from` is no part.
struct SurvivalStep {
  double from;
  double to;  // may be infinite: what is known to lie beyond the last value
  double before;
  double after;
};

// In ascending order. Turnbull's is the maximum of the likelihood by self-consistency, until no step moves by 1e-12.
std::vector<SurvivalStep> SurvivalCurve(const CensoredSample& sample);

// The points of a probability plot: values, or the middles of intervals, with the probabilities midway up their steps
// (Meeker & Escobar 1998, Statistical Methods for Reliability Data, section 6.4).
struct PlottingPosition {
  double value;
  double probability;
};
std::vector<PlottingPosition> PlottingPositions(const std::vector<SurvivalStep>& curve);

}  // namespace brenvolt
