#include "host/numeric/estimation/discrete_estimators.h"

#include <cmath>
#include <limits>

namespace brenvolt {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

struct CountSummary {
  double mean = 0;
  double greatest = 0;
};

// The running mean and the greatest value of counts that are at most `limit`.
EstimationResult<CountSummary> Summarise(std::span<const double> data, double limit = kInfinity) {
  CountSummary summary;
  double accepted = 0;
  for (const double x : data) {
    if (std::isnan(x)) continue;
    if (x != std::floor(x)) return FaultAbout(EstimationFault::kFraction, x);
    if (x < 0 && !AlmostEqual(x, 0)) return FaultAbout(EstimationFault::kNegativeCount, x);
    if (x > limit) return FaultAbout(EstimationFault::kAboveTrials, x, limit);
    ++accepted;
    summary.mean += (x - summary.mean) / accepted;
    if (x > summary.greatest && !AlmostEqual(x, summary.greatest)) summary.greatest = x;
  }
  if (accepted == 0) return Fault{EstimationFault::kNoValues};
  return summary;
}

}  // namespace

EstimationResult<BinomialEstimate> EstimateBinomial(std::span<const double> data,
                                                    std::optional<std::int32_t> trials) {
  if (trials && *trials < 1) return FaultAbout(EstimationFault::kInvalidTrials, *trials);
  const auto counts = Summarise(data, trials.value_or(std::numeric_limits<std::int32_t>::max()));
  if (!counts) return counts.Reason();
  const double n = trials ? static_cast<double>(*trials) : counts->greatest;
  if (n < 1) return Fault{EstimationFault::kAllZero};
  return BinomialEstimate{counts->mean / n, static_cast<std::int32_t>(n)};
}

EstimationResult<double> EstimatePoisson(std::span<const double> data) {
  const auto counts = Summarise(data);
  if (!counts) return counts.Reason();
  if (!(counts->mean > 0)) return Fault{EstimationFault::kAllZero};
  return counts->mean;
}

EstimationResult<double> EstimateGeometric(std::span<const double> data) {
  const auto counts = Summarise(data);
  if (!counts) return counts.Reason();
  return 1 / (1 + counts->mean);
}

EstimationResult<double> EstimateBernoulli(std::span<const double> data) {
  for (const double x : data) {
    if (!std::isnan(x) && x != 0 && x != 1) return FaultAbout(EstimationFault::kNeitherZeroNorOne, x);
  }
  const auto counts = Summarise(data);
  if (!counts) return counts.Reason();
  return counts->mean;
}

EstimationResult<std::vector<double>> EstimateHistogram(std::span<const double> sorted) {
  std::size_t count = sorted.size();
  while (count > 0 && std::isnan(sorted[count - 1])) --count;
  if (count == 0) return Fault{EstimationFault::kNoValues};
  const auto n = static_cast<double>(count);
  std::vector<double> classes;
  for (std::size_t i = 0; i < count;) {
    std::size_t end = i + 1;
    while (end < count && sorted[end] == sorted[i]) ++end;
    classes.push_back(sorted[i]);
    classes.push_back(static_cast<double>(end - i) / n);
    i = end;
  }
  return classes;
}

}  // namespace brenvolt
