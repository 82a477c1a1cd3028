#include "host/contract/estimation_contract.h"

#include <algorithm>
#include <array>

#include "host/numeric/distributions/half_normal.h"
#include "host/numeric/distributions/log_normal.h"
#include "host/numeric/distributions/rayleigh.h"
#include "host/numeric/estimation/gev_estimators.h"
#include "host/numeric/estimation/gpd_estimators.h"
#include "host/numeric/estimation/normal_estimator.h"
#include "host/numeric/goodness_of_fit/kolmogorov_smirnov.h"

namespace brenvolt {
namespace {

// Writes the numbers of an estimate, or kNotSet and the number of its fault.
template <class T, std::size_t kCount, class Numbers>
std::int32_t Report(const EstimationResult<T>& estimate, std::span<double, kCount> slots, std::int32_t& error,
                    const Numbers& numbers) {
  std::ranges::fill(slots, kNotSet);
  error = estimate ? 0 : static_cast<std::int32_t>(estimate.Reason().identifier) + 1;
  if (estimate) std::ranges::copy(std::array<double, kCount>(numbers(*estimate)), slots.begin());
  return error;
}

constexpr auto kOfNormal = [](const NormalEstimate& fit) {
  return std::array{fit.mean, fit.standardDeviation};
};
constexpr auto kOfScale = [](const ScaleEstimate& fit) {
  return std::array{fit.scale, fit.standardError, fit.logLikelihood};
};
constexpr auto kOfExtremeValue = [](const ExtremeValueEstimate& fit) { return fit.parameters; };

std::int32_t ReportPareto(const EstimationResult<ParetoEstimate>& estimate, double threshold,
                          std::span<double, 3> parameters, std::int32_t& error) {
  return Report(estimate, parameters, error, [threshold](const ParetoEstimate& fit) {
    return std::array{threshold, fit.scale, fit.shape};
  });
}

}  // namespace

std::int32_t FitNormalDistribution(std::int32_t /*flag*/, std::span<const double> data,
                                   std::span<double, 2> parameters, std::int32_t& error) {
  return Report(EstimateNormal(data), parameters, error, kOfNormal);
}

std::int32_t FitLognormalDistribution(std::int32_t /*flag*/, std::span<const double> data, double offset,
                                      std::span<double, 2> parameters, std::int32_t& error) {
  return Report(EstimateLogNormal(data, offset), parameters, error, kOfNormal);
}

std::int32_t FitHalfNormalDistribution(std::int32_t /*flag*/, std::span<const double> data, double offset,
                                       std::span<double, 3> parameters, std::int32_t& error) {
  return Report(EstimateHalfNormal(data, offset), parameters, error, kOfScale);
}

std::int32_t FitRayleighDistribution(std::int32_t /*flag*/, std::span<const double> data, double offset,
                                     std::span<double, 3> parameters, std::int32_t& error) {
  return Report(EstimateRayleigh(data, offset), parameters, error, kOfScale);
}

std::int32_t GEV_MLE(std::span<const double> data, std::span<double, 3> parameters,
                     std::span<double, 9> covariance, std::int32_t& error) {
  const auto estimate = EstimateExtremeValue(data);
  std::ranges::fill(covariance, kNotSet);
  if (estimate) std::ranges::copy(estimate->covariance, covariance.begin());
  return Report(estimate, parameters, error, kOfExtremeValue);
}

std::int32_t GEV_ProbWeightMoments(std::span<const double> data, std::span<double, 3> parameters,
                                   std::int32_t& error) {
  return Report(EstimateExtremeValueByMoments(data), parameters, error, kOfExtremeValue);
}

std::int32_t FitGPDMaximumLikelihood(std::span<const double> data, double threshold,
                                     std::span<double, 3> parameters, std::int32_t& error) {
  return ReportPareto(EstimatePareto(data, threshold), threshold, parameters, error);
}

std::int32_t FitGPDProbabilityWeightedMoments(std::span<const double> data, double threshold,
                                              std::span<double, 3> parameters, std::int32_t& error) {
  return ReportPareto(EstimateParetoByMoments(data, threshold), threshold, parameters, error);
}

std::int32_t ComputeKolmogorovSmirnovTest(std::int32_t testCode, std::span<const double> parameters,
                                          std::span<const double> sortedData, double offset,
                                          double& statistic) {
  // In the order of DistributionCode.
  constexpr std::array<std::int32_t, kDistributionCount> kTestCodes{1,  9,  13, 14, 12, 10, 15, 16,
                                                                    17, 18, 19, 21, 20, 22, 23, 24};
  static_assert(kTestCodes.back() != 0, "a distribution that is added needs a number here");
  statistic = kNotSet;
  const auto found = std::ranges::find(kTestCodes, testCode);
  if (found == kTestCodes.end()) return 0;
  const auto code = static_cast<DistributionCode>(found - kTestCodes.begin());
  const auto result = TestKolmogorovSmirnov(AnyDistribution(EntryOf(code), parameters), sortedData, offset);
  if (result) statistic = *result;
  return result ? 1 : 0;
}

std::int32_t ComputeKolmogorovSmirnovTest(std::int32_t testCode, std::span<const double> parameters,
                                          std::span<const double> sortedData, double& statistic) {
  return ComputeKolmogorovSmirnovTest(testCode, parameters, sortedData, 0.0, statistic);
}

double ComputeKolmogorovSmirnovPvalue(std::int64_t n, double d, std::int32_t& error) {
  const auto pValue = KolmogorovSmirnovPValue(n, d);
  error = pValue ? 0 : 1;
  return pValue ? *pValue : kNotSet;
}

std::int32_t WeibullStatus(const EstimationResult<WeibullEstimate>& estimate) {
  if (estimate) return 0;
  switch (estimate.Reason().identifier) {
    case EstimationFault::kValueAtOffset:
      return 1;
    case EstimationFault::kSumVanishes:
      return 3;
    case EstimationFault::kPowerOverflows:
      return 4;
    default:  // a value below the offset has no logarithm, with which the iteration could converge
      return 2;
  }
}

std::int32_t BinomialStatus(const EstimationResult<BinomialEstimate>& estimate,
                            std::span<const double> data) {
  if (estimate) return 0;
  switch (estimate.Reason().identifier) {
    case EstimationFault::kInvalidTrials:
      return 1;
    case EstimationFault::kFraction:
    case EstimationFault::kNegativeCount:
      return 3;
    case EstimationFault::kAboveTrials:
      return 4;
    default:
      return data.empty() ? 2 : 5;
  }
}

}  // namespace brenvolt
