#include "brv_sra/fitting/estimation.h"

#include <array>
#include <cmath>

#include "brv_sra/fitting/weibull_estimation.h"
#include "host/numeric/distributions.h"
#include "host/numeric/estimators.h"
#include "host/numeric/kolmogorov_smirnov.h"

namespace brenvolt::sra {
namespace {

// A Newton step of the shape below this ends the Weibull estimation: convergence is quadratic, so the shape
// is then good to rounding.
constexpr double kWeibullTolerance = 1e-9;

using Values = std::vector<double>;

struct Input {
  std::span<const double> sorted;
  double offset;
};

// How one distribution is estimated and tested. An estimator answers no values for a fit that failed.
struct Step {
  DistributionCode code;
  TestCode testCode;
  Values (*estimate)(const Input& input);
  double (*logDensity)(double x, const Values& values, double offset);
};

Values EstimateNormal(const Input& input) {
  std::array<double, 2> parameters{};
  EstimationError error{};
  if (FitNormalDistribution(0, input.sorted, parameters, error) != 0) return {};
  return {parameters[0], parameters[1]};
}

Values EstimateLogNormal(const Input& input) {
  std::array<double, 2> parameters{};
  EstimationError error{};
  if (FitLognormalDistribution(0, input.sorted, input.offset, parameters, error) != 0) return {};
  return {parameters[0], parameters[1]};
}

Values EstimateWeibullValues(const Input& input) {
  const WeibullEstimate estimate = EstimateWeibull(input.sorted, input.offset, kWeibullTolerance);
  if (estimate.status != WeibullStatus::kSuccess) return {};
  return {estimate.scale, estimate.shape};
}

Values EstimatePoisson(const Input& input) {
  double mean = kNotSet;
  if (EstimatePoissonMean(input.sorted, mean) != 0) return {};
  return {mean};
}

constexpr std::array<Step, 3> kContinuousSteps{{
    {DistributionCode::kNormal, TestCode::kNormal, EstimateNormal,
     [](double x, const Values& v, double) { return normal::LogDensity(x, v[0], v[1]); }},
    {DistributionCode::kLogNormal, TestCode::kLogNormal, EstimateLogNormal,
     [](double x, const Values& v, double offset) { return lognormal::LogDensity(x, v[0], v[1], offset); }},
    {DistributionCode::kWeibull, TestCode::kWeibull, EstimateWeibullValues,
     [](double x, const Values& v, double offset) { return weibull::LogDensity(x, v[0], v[1], offset); }},
}};

constexpr std::array<Step, 1> kDiscreteSteps{{
    {DistributionCode::kPoisson, TestCode::kPoisson, EstimatePoisson,
     [](double x, const Values& v, double) { return poisson::LogDensity(x, v[0]); }},
}};

template <std::size_t N>
constexpr std::array<DistributionCode, N> CodesOf(const std::array<Step, N>& steps) {
  std::array<DistributionCode, N> codes{};
  for (std::size_t i = 0; i < N; ++i) codes[i] = steps[i].code;
  return codes;
}
constexpr auto kContinuousCodes = CodesOf(kContinuousSteps);
constexpr auto kDiscreteCodes = CodesOf(kDiscreteSteps);

double LogLikelihood(const Step& step, const Input& input, const Values& values) {
  double sum = 0;
  double lost = 0;  // Neumaier (1974)
  for (const double x : input.sorted) {
    const double term = step.logDensity(x, values, input.offset);
    const double total = sum + term;
    lost += std::abs(sum) >= std::abs(term) ? (sum - total) + term : (term - total) + sum;
    sum = total;
  }
  return sum + lost;
}

TestResult TestKolmogorovSmirnov(const Step& step, const Input& input, const Values& values, bool hasOffset) {
  TestResult result;
  const auto tested =
      hasOffset
          ? ComputeKolmogorovSmirnovTest(step.testCode, values, input.sorted, input.offset, result.statistic)
          : ComputeKolmogorovSmirnovTest(step.testCode, values, input.sorted, result.statistic);
  std::int32_t error = 0;
  if (tested == 0) return {};
  result.pValue =
      ComputeKolmogorovSmirnovPvalue(static_cast<std::int64_t>(input.sorted.size()), result.statistic, error);
  return error == 0 ? result : TestResult{};
}

bool AllFinite(const Values& values) {
  for (const double value : values) {
    if (!std::isfinite(value)) return false;
  }
  return true;
}

DistributionFit FailedFit(DistributionCode code, double offset) {
  DistributionFit fit;
  fit.specification.code = code;
  fit.specification.offset = offset;
  fit.specification.values = {kNotSet};
  return fit;
}

DistributionFit RunStep(const Step& step, std::span<const double> sorted, double offset) {
  DistributionFit fit = FailedFit(step.code, offset);
  const bool hasOffset = !IsNotSet(offset);
  const Input input{sorted, hasOffset ? offset : 0.0};
  Values values = step.estimate(input);
  if (values.empty() || !AllFinite(values)) return fit;
  fit.specification.values = std::move(values);
  fit.logLikelihood = LogLikelihood(step, input, fit.specification.values);
  fit.kolmogorovSmirnov = TestKolmogorovSmirnov(step, input, fit.specification.values, hasOffset);
  return fit;
}

}  // namespace

std::span<const DistributionCode> FittedContinuous() {
  return kContinuousCodes;
}
std::span<const DistributionCode> FittedDiscrete() {
  return kDiscreteCodes;
}

std::vector<DistributionFit> FitContinuousDistributions(std::span<const double> sorted,
                                                        const Moments& moments,
                                                        const ContinuousSpecification& specification,
                                                        CKroProgressBar& progress) {
  std::vector<DistributionFit> fits;
  for (const Step& step : kContinuousSteps) {
    progress.Step(0);
    if (!specification.fit[static_cast<std::size_t>(FlagOfContinuous(step.code))]) continue;
    const auto index = OffsetIndex(step.code);
    const double offset = index ? specification.offsets[*index] : kNotSet;
    // A value without a logarithm rules the log-normal out, whatever its offset.
    const bool excluded = step.code == DistributionCode::kLogNormal && IsNotSet(moments.logMean);
    fits.push_back(excluded ? FailedFit(step.code, offset) : RunStep(step, sorted, offset));
  }
  return fits;
}

std::vector<DistributionFit> FitDiscreteDistributions(std::span<const double> sorted,
                                                      const DiscreteSpecification& specification,
                                                      CKroProgressBar& progress) {
  std::vector<DistributionFit> fits;
  for (const Step& step : kDiscreteSteps) {
    progress.Step(0);
    if (!specification.fit[static_cast<std::size_t>(FlagOfDiscrete(step.code))]) continue;
    fits.push_back(RunStep(step, sorted, kNotSet));
  }
  return fits;
}

int EstimatePoissonMean(std::span<const double> data, double& mean) {
  constexpr int kNoValues = 2;
  constexpr int kNotACount = 3;
  constexpr int kNothingAccepted = 5;
  if (data.empty()) return kNoValues;
  double running = 0;
  double accepted = 0;
  for (const double x : data) {
    if (std::isnan(x)) continue;
    if (x != std::floor(x) || (x < 0 && !AlmostEqual(x, 0))) return kNotACount;
    ++accepted;
    running += (x - running) / accepted;
  }
  if (accepted == 0 || running <= 0) return kNothingAccepted;
  mean = running;
  return 0;
}

}  // namespace brenvolt::sra
