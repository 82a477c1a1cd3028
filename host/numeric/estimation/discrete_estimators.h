// Estimation of the five discrete distributions.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "host/base/almost_equal.h"
#include "host/numeric/estimation/estimation_fault.h"

namespace brenvolt {

// All skip NaN and take the values in any order, but for the histogram. A value is a count when it is whole
// and not below 0 by more than 15 units in the last place: a whole number below 0 always is. kNoValues, also
// where every value is NaN; of those that count, kFraction and kNegativeCount.

struct BinomialEstimate {
  double proportion = kNotSet;
  std::int32_t trials = kNotSetCount;
};
// Proportion = mean / trials. Without `trials` the greatest value is taken as their number. kInvalidTrials;
// kAboveTrials; kAllZero where they are estimated.
EstimationResult<BinomialEstimate> EstimateBinomial(std::span<const double> data,
                                                    std::optional<std::int32_t> trials);
// The mean, by maximum likelihood. kAllZero.
EstimationResult<double> EstimatePoisson(std::span<const double> data);
// The proportion 1 / (1 + mean) of successes, where a value counts the failures before the first success.
EstimationResult<double> EstimateGeometric(std::span<const double> data);
// The proportion of ones among zeros and ones. kNeitherZeroNorOne for any other value.
EstimationResult<double> EstimateBernoulli(std::span<const double> data);
// {code, proportion} of each distinct value (any real), ascending. `sorted` ascends, NaN last.
EstimationResult<std::vector<double>> EstimateHistogram(std::span<const double> sorted);

}  // namespace brenvolt
