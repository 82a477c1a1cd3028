// Estimation of the generalized extreme value distribution.
#pragma once

#include <array>
#include <span>
#include <vector>

#include "host/numeric/estimation/estimators.h"

namespace brenvolt {

struct ExtremeValueEstimate {
  std::array<double, 3> parameters{};  // location, scale, shape > 0 for a heavy upper tail
  std::vector<double> covariance;      // row by row, or none
};

// Maximum likelihood for shape > -1, by Newton's method with exact second derivatives from several starts
// (Prescott & Walden 1980 for the likelihood, Hosking 1985 for the iteration). Converged when the gain that the
// next step promises is below 1e-15 per value. The covariance is the inverse of the observed information. The
// likelihood has no global maximum: it grows without bound for shape < -1 and for shape towards infinity (Smith
// 1985). The greatest local one is the estimate; if there is none, kNoMaximum. Needs three values.
EstimationResult<ExtremeValueEstimate> EstimateExtremeValue(std::span<const double> data,
                                                            const EstimationPoll& poll = {});

// From the probability-weighted moments of Hosking, Wallis & Wood (1985), unbiased forms, their equation (14)
// for the shape solved exactly instead of by the approximation. Needs three values. kNoSolution when the
// skewness of the sample is at its end (shape 1 or minus infinity).
EstimationResult<ExtremeValueEstimate> EstimateExtremeValueByMoments(std::span<const double> data);

}  // namespace brenvolt
