// The estimate of a distribution from a sample, in one shape for all.
#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "host/base/almost_equal.h"
#include "host/numeric/estimation/estimators.h"

namespace brenvolt {

// What an estimator may look at. Each takes what it needs.
struct EstimationInput {
  std::span<const double> sorted;  // ascending, finite, at least one value
  double offset = 0;
  // Of the sample, with divisor n - 1 and corrected for n; kNotSet if n is too small.
  double mean = kNotSet;
  double standardDeviation = kNotSet;
  double skewness = kNotSet;
  double kurtosis = kNotSet;
  std::int32_t components = 2;              // of a mixture
  std::optional<std::int32_t> trials = {};  // of a binomial; without, they are estimated
  bool isByPercentiles = false;             // Johnson: not by moments
  const EstimationPoll& poll;               // not empty

  double Count() const { return static_cast<double>(sorted.size()); }
};

// Without values where the fit failed.
struct DistributionEstimate {
  std::vector<double> values;          // in the order of the parameters
  std::vector<double> standardErrors;  // empty if the estimator gives none
  std::vector<double> covariance;      // row by row
  int estimatedParameters = 0;
  double logLikelihood = kNotSet;  // where the estimator knows it
};

inline DistributionEstimate EstimateWithCovariance(std::vector<double> values,
                                                   std::vector<double> covariance) {
  const std::size_t count = values.size();
  DistributionEstimate estimate{std::move(values), {}, std::move(covariance), static_cast<int>(count)};
  for (std::size_t i = 0; i < count; ++i)
    estimate.standardErrors.push_back(std::sqrt(estimate.covariance[i * count + i]));
  return estimate;
}

// Of mean and standard deviation of normal values, which are uncorrelated, with variances s^2 / n and s^2 /
// (2 n).
inline DistributionEstimate EstimateOfNormalValues(const std::array<double, 2>& p, double count) {
  const double variance = p[1] * p[1] / count;
  return EstimateWithCovariance({p[0], p[1]}, {variance, 0, 0, variance / 2});
}

// Of a scale, its standard error and the log-likelihood.
inline DistributionEstimate EstimateOfScale(const std::array<double, 3>& results) {
  return {{results[0]}, {results[1]}, {results[1] * results[1]}, 1, results[2]};
}

}  // namespace brenvolt
