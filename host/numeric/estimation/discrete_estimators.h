// Estimation of the five discrete types.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "host/base/almost_equal.h"

namespace brenvolt {

enum class DiscreteStatus : std::int32_t {
  kSuccess = 0,
  kInvalidTrials = 1,     // the number of trials is given and below 1
  kNoValues = 2,          // no values at all
  kNotACount = 3,         // a value that is negative or not a whole number
  kAboveGreatest = 4,     // a value above the number of trials (binomial) or above 1 (Bernoulli)
  kNothingToEstimate = 5  // every value is NaN, or all are 0 where the type needs a positive mean
};

struct BinomialEstimate {
  double proportion = kNotSet;
  std::int32_t trials = kNotSetCount;
  DiscreteStatus status = DiscreteStatus::kNoValues;
};

struct RateEstimate {
  double value = kNotSet;
  DiscreteStatus status = DiscreteStatus::kNoValues;
};

struct HistogramEstimate {
  std::vector<double> classes;  // {code, proportion} of each distinct value, ascending
  DiscreteStatus status = DiscreteStatus::kNoValues;
};

// All skip NaN and take the values in any order, but for the histogram. A value is a count when it is whole
// and not below 0 by more than 15 units in the last place: a whole number below 0 always is.

// Proportion = mean / trials. With `estimateTrials` the greatest value is taken as the number of trials, and
// `trials` is ignored.
BinomialEstimate EstimateBinomial(std::span<const double> data, std::int32_t trials, bool estimateTrials);
// The mean, by maximum likelihood.
RateEstimate EstimatePoisson(std::span<const double> data);
// The proportion 1 / (1 + mean) of successes, where a value counts the failures before the first success.
RateEstimate EstimateGeometric(std::span<const double> data);
// The proportion of ones among zeros and ones.
RateEstimate EstimateBernoulli(std::span<const double> data);
// Each distinct value (any real) with its share of the values. `sorted` ascends, NaN last.
HistogramEstimate EstimateHistogram(std::span<const double> sorted);

}  // namespace brenvolt
