#include "host/numeric/estimation/discrete_estimators.h"

#include <cmath>
#include <limits>

namespace brenvolt {
namespace {

struct CountSummary {
  double mean = 0;
  double greatest = 0;
  DiscreteStatus status = DiscreteStatus::kSuccess;
};

// The running mean and the greatest value of counts that are at most `limit`.
CountSummary Summarise(std::span<const double> data, double limit) {
  CountSummary summary;
  const auto failed = [&summary](DiscreteStatus status) {
    summary.status = status;
    return summary;
  };
  if (data.empty()) return failed(DiscreteStatus::kNoValues);
  double accepted = 0;
  for (const double x : data) {
    if (std::isnan(x)) continue;
    if (x != std::floor(x) || (x < 0 && !AlmostEqual(x, 0))) return failed(DiscreteStatus::kNotACount);
    if (x > limit) return failed(DiscreteStatus::kAboveGreatest);
    ++accepted;
    summary.mean += (x - summary.mean) / accepted;
    if (x > summary.greatest && !AlmostEqual(x, summary.greatest)) summary.greatest = x;
  }
  return accepted == 0 ? failed(DiscreteStatus::kNothingToEstimate) : summary;
}

}  // namespace

BinomialEstimate EstimateBinomial(std::span<const double> data, std::int32_t trials, bool estimateTrials) {
  BinomialEstimate estimate;
  estimate.status = DiscreteStatus::kInvalidTrials;
  if (!estimateTrials && trials < 1) return estimate;
  constexpr auto kMostTrials = static_cast<double>(std::numeric_limits<std::int32_t>::max());
  const CountSummary counts = Summarise(data, estimateTrials ? kMostTrials : static_cast<double>(trials));
  estimate.status = counts.status;
  if (counts.status != DiscreteStatus::kSuccess) return estimate;
  const double n = estimateTrials ? counts.greatest : static_cast<double>(trials);
  if (n < 1) {
    estimate.status = DiscreteStatus::kNothingToEstimate;
    return estimate;
  }
  estimate.proportion = counts.mean / n;
  estimate.trials = static_cast<std::int32_t>(n);
  return estimate;
}

RateEstimate EstimatePoisson(std::span<const double> data) {
  const CountSummary counts = Summarise(data, std::numeric_limits<double>::infinity());
  if (counts.status != DiscreteStatus::kSuccess) return {kNotSet, counts.status};
  if (!(counts.mean > 0)) return {kNotSet, DiscreteStatus::kNothingToEstimate};
  return {counts.mean, DiscreteStatus::kSuccess};
}

RateEstimate EstimateGeometric(std::span<const double> data) {
  const CountSummary counts = Summarise(data, std::numeric_limits<double>::infinity());
  if (counts.status != DiscreteStatus::kSuccess) return {kNotSet, counts.status};
  return {1 / (1 + counts.mean), DiscreteStatus::kSuccess};
}

RateEstimate EstimateBernoulli(std::span<const double> data) {
  const CountSummary counts = Summarise(data, 1);
  if (counts.status != DiscreteStatus::kSuccess) return {kNotSet, counts.status};
  return {counts.mean, DiscreteStatus::kSuccess};
}

HistogramEstimate EstimateHistogram(std::span<const double> sorted) {
  HistogramEstimate estimate;
  if (sorted.empty()) return estimate;
  std::size_t count = sorted.size();
  while (count > 0 && std::isnan(sorted[count - 1])) --count;
  estimate.status = count == 0 ? DiscreteStatus::kNothingToEstimate : DiscreteStatus::kSuccess;
  const auto n = static_cast<double>(count);
  for (std::size_t i = 0; i < count;) {
    std::size_t end = i + 1;
    while (end < count && sorted[end] == sorted[i]) ++end;
    estimate.classes.push_back(sorted[i]);
    estimate.classes.push_back(static_cast<double>(end - i) / n);
    i = end;
  }
  return estimate;
}

}  // namespace brenvolt
