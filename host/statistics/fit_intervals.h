// Confidence intervals of what is read off a fitted distribution: quantiles, and probabilities of exceeding a value.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "host/numeric/censored/censored_sample.h"
#include "host/numeric/distributions/common/distribution_facts.h"
#include "host/numeric/estimation/distribution_estimate.h"
#include "host/numeric/random/random_stream.h"
#include "host/statistics/proportion.h"

namespace brenvolt {

// A fit with the covariance of its values, row by row; an empty covariance is not known.
struct FittedValues {
  DistributionCode code = DistributionCode::kNormal;
  std::vector<double> values;
  double offset = 0;
  std::vector<double> covariance;

  double Quantile(double p) const;
  double Exceedance(double x) const;
};

// What an estimator takes beside the values.
struct EstimationChoices {
  std::int32_t components = 2;
  bool isByPercentiles = false;
};

// The fit of a distribution to a sample, which is sorted; nothing if there is none.
std::optional<FittedValues> FitSample(DistributionCode code, std::vector<double> sample, double offset,
                                      const EstimationChoices& choices, const EstimationPoll& poll);

// The log-likelihood of a fit's values over the sample that was fitted; -infinity where they cannot have given it.
using LogLikelihood = std::function<double(const FittedValues&)>;
// Of a sample of values that are all known, sorted. `poll` is called at every look and may throw to end the work.
LogLikelihood LikelihoodOf(std::vector<double> sorted, EstimationPoll poll);
// The same of censored values, for the distributions that can be fitted to them.
LogLikelihood LikelihoodOf(CensoredSample sample, EstimationPoll poll);

// By the delta method (Meeker & Escobar 1998, Statistical Methods for Reliability Data, sections 8.4 and B.2): the
// estimate is taken for normal on a scale on which it is nearly so, with the variance g' C g of the gradient g by the values.
// The scale of a quantile is the logarithm of its distance from where the distribution begins; without a beginning, the
// inverse hyperbolic sine of its distance from the median in units of half the distance between the quantiles of 16 % and
// 84 %, which is the distance itself near the middle and its logarithm in the tails. That of a probability is its logit.
// Not set without a covariance, for a variance that is not finite, and for probabilities of 0 and 1.
ConfidenceInterval QuantileInterval(const FittedValues& fit, double p, double confidence);
ConfidenceInterval ExceedanceInterval(const FittedValues& fit, double x, double confidence);

// The same by the profile likelihood (profile_likelihood.h), which needs no scale. Likelihoods of some thousand fits are taken.
ConfidenceInterval ProfileQuantileInterval(const FittedValues& fit, const LogLikelihood& likelihood, double p,
                                           double confidence);
ConfidenceInterval ProfileExceedanceInterval(const FittedValues& fit, const LogLikelihood& likelihood,
                                             double x, double confidence);

// Between the order statistics that leave (1 - confidence) / 2 of the values on either side: the percentile interval of what
// bootstrapped fits give. Not set where the values are too few for that.
ConfidenceInterval PercentileInterval(std::vector<double> values, double confidence);

// The parametric bootstrap: fits to samples drawn from a fit. An interval is that of the bootstrap-t on the scale above (Efron
// & Tibshirani 1993, An Introduction to the Bootstrap, section 12.5): it takes how far the fits lie from the one that they were
// drawn from, in standard errors of their own, for how far that one lies from the truth. Where the fit has no covariance, or
// one in twenty samples has none, it lies between quantiles of what the fits give (section 13.3). Both read order statistics.
class FitBootstrap {
 public:
  // `count` values in each of `samples` samples, which depend on the stream alone. `poll` is called between fits and may
  // throw to end the work.
  FitBootstrap(const FittedValues& fit, std::size_t count, std::size_t samples, const RandomStream& stream,
               const EstimationChoices& choices, const EstimationPoll& poll);

  // Of the samples, how many could be fitted.
  std::size_t Fitted() const { return fits_.size(); }
  const std::vector<FittedValues>& Fits() const { return fits_; }
  // Not set where the samples are too few for an order statistic on both sides.
  ConfidenceInterval Quantile(double p, double confidence) const;
  ConfidenceInterval Exceedance(double x, double confidence) const;

 private:
  FittedValues fit_;
  std::vector<FittedValues> fits_;
};

}  // namespace brenvolt
