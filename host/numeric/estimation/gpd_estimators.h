// Estimation of the generalized Pareto distribution.
#pragma once

#include <span>

#include "host/base/almost_equal.h"
#include "host/numeric/estimation/estimators.h"

namespace brenvolt {

// Of x - threshold; shape > 0 for a heavy upper tail. A value equal to the threshold is within the support.
struct ParetoEstimate {
  double scale = kNotSet;
  double shape = kNotSet;
};

// Maximum likelihood for shape > -1 after Grimshaw (1993): the likelihood reduced to shape / scale; its
// stationary points are bracketed on a grid and solved to the last bits. The greatest local maximum is the
// estimate; kNoMaximum if there is none, as the likelihood grows without bound for shape < -1.
EstimationResult<ParetoEstimate> EstimatePareto(std::span<const double> data, double threshold,
                                                const EstimationPoll& poll = {});

// From the probability-weighted moments of Hosking & Wallis (1987), unbiased forms. kNoSolution.
EstimationResult<ParetoEstimate> EstimateParetoByMoments(std::span<const double> data, double threshold);

}  // namespace brenvolt
