// The estimators and the Kolmogorov-Smirnov test under the names, argument orders and numbers that modules
// compiled apart from the host know (module_contract.h says what this folder is). What they compute stands with
// the plain names: host/numeric/estimation, host/numeric/goodness_of_fit.
#pragma once

#include <cstdint>
#include <span>

#include "host/numeric/estimation/discrete_estimators.h"
#include "host/numeric/estimation/weibull_estimator.h"

namespace brenvolt {

// Estimators return 0, or a number that is not 0 and that `error` also takes; the parameters are then kNotSet.
// `flag` is reserved and must be 0.

// {mean, standard deviation}; of ln(x - offset).
std::int32_t FitNormalDistribution(std::int32_t flag, std::span<const double> data,
                                   std::span<double, 2> parameters, std::int32_t& error);
std::int32_t FitLognormalDistribution(std::int32_t flag, std::span<const double> data, double offset,
                                      std::span<double, 2> parameters, std::int32_t& error);

// {scale, its standard error, the greatest log-likelihood}.
std::int32_t FitHalfNormalDistribution(std::int32_t flag, std::span<const double> data, double offset,
                                       std::span<double, 3> parameters, std::int32_t& error);
std::int32_t FitRayleighDistribution(std::int32_t flag, std::span<const double> data, double offset,
                                     std::span<double, 3> parameters, std::int32_t& error);

// {location, scale, shape}; the covariance row by row, kNotSet if there is none.
std::int32_t GEV_MLE(std::span<const double> data, std::span<double, 3> parameters,
                     std::span<double, 9> covariance, std::int32_t& error);
std::int32_t GEV_ProbWeightMoments(std::span<const double> data, std::span<double, 3> parameters,
                                   std::int32_t& error);

// {threshold, scale, shape}, the threshold as given.
std::int32_t FitGPDMaximumLikelihood(std::span<const double> data, double threshold,
                                     std::span<double, 3> parameters, std::int32_t& error);
std::int32_t FitGPDProbabilityWeightedMoments(std::span<const double> data, double threshold,
                                              std::span<double, 3> parameters, std::int32_t& error);

// Non-zero: success. Zero: `statistic` is kNotSet.
std::int32_t ComputeKolmogorovSmirnovTest(std::int32_t testCode, std::span<const double> parameters,
                                          std::span<const double> sortedData, double& statistic);
std::int32_t ComputeKolmogorovSmirnovTest(std::int32_t testCode, std::span<const double> parameters,
                                          std::span<const double> sortedData, double offset,
                                          double& statistic);
// `error` is 0, or 1 where the result is kNotSet.
double ComputeKolmogorovSmirnovPvalue(std::int64_t n, double d, std::int32_t& error);

// How an estimate ended. Weibull: 0 success, 1 a value equals the offset, 2 no convergence, 3 the sum of powers
// vanishes, 4 a power overflows. Binomial: 0 success, 1 the number of trials is below 1, 2 no values, 3 a value is
// no count, 4 a value is above the number of trials, 5 nothing to estimate.
std::int32_t WeibullStatus(const EstimationResult<WeibullEstimate>& estimate);
std::int32_t BinomialStatus(const EstimationResult<BinomialEstimate>& estimate, std::span<const double> data);

}  // namespace brenvolt
