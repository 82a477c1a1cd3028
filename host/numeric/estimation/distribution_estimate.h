// The estimate of a distribution from a sample, in one shape for all.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "host/base/almost_equal.h"
#include "host/numeric/estimation/estimators.h"
#include "host/numeric/estimation/normal_estimator.h"

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

// What the values of an estimate come from.
enum class EstimateOrigin : std::uint8_t {
  kNone,        // no estimate
  kLikelihood,  // its maximum
  kMoments,     // for the generalized distributions, as the likelihood has no maximum
  kPercentiles,
  kExtremes  // the ends or the number of trials are extremes of the sample
};

struct DistributionEstimate {
  std::vector<double> values = {};  // in the order of the parameters
  EstimateOrigin origin = EstimateOrigin::kLikelihood;
  std::vector<double> standardErrors = {};  // empty if the estimator gives none
  std::vector<double> covariance = {};      // row by row
  int estimatedParameters = 0;
  double logLikelihood = kNotSet;  // where the estimator knows it
};
using EstimateResult = EstimationResult<DistributionEstimate>;

// Without standard errors, every value estimated.
inline DistributionEstimate EstimateOfValues(std::vector<double> values, EstimateOrigin origin) {
  const int count = static_cast<int>(values.size());
  return {.values = std::move(values), .origin = origin, .estimatedParameters = count};
}

// By maximum likelihood.
inline DistributionEstimate EstimateWithCovariance(std::vector<double> values,
                                                   std::vector<double> covariance) {
  const std::size_t count = values.size();
  DistributionEstimate estimate = EstimateOfValues(std::move(values), EstimateOrigin::kLikelihood);
  estimate.covariance = std::move(covariance);
  for (std::size_t i = 0; i < count; ++i)
    estimate.standardErrors.push_back(std::sqrt(estimate.covariance[i * count + i]));
  return estimate;
}

// Of mean and standard deviation of normal values, which are uncorrelated, with variances s^2 / n and s^2 /
// (2 n).
inline EstimateResult EstimateOfNormalValues(const EstimationResult<NormalEstimate>& fit, double count) {
  if (!fit) return fit.Reason();
  const double variance = fit->standardDeviation * fit->standardDeviation / count;
  return EstimateWithCovariance({fit->mean, fit->standardDeviation}, {variance, 0, 0, variance / 2});
}

// A distribution whose only parameter is its scale.
struct ScaleEstimate {
  double scale = kNotSet;
  double standardError = kNotSet;
  double logLikelihood = kNotSet;  // the greatest
};

inline EstimateResult EstimateOfScale(const EstimationResult<ScaleEstimate>& fit) {
  if (!fit) return fit.Reason();
  DistributionEstimate estimate =
      EstimateWithCovariance({fit->scale}, {fit->standardError * fit->standardError});
  estimate.standardErrors = {fit->standardError};
  estimate.logLikelihood = fit->logLikelihood;
  return estimate;
}

}  // namespace brenvolt
