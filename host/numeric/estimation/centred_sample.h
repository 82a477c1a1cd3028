// Samples as estimators of location and scale take them.
#pragma once

#include <algorithm>
#include <span>
#include <vector>

#include "host/numeric/estimation/estimator_support.h"

namespace brenvolt::estimation {

// Sorted, centred on the median, scaled; for a sample that has passed CheckSample.
inline EstimationResult<ScaledSample> SortedAndCentred(std::span<const double> data) {
  std::vector<double> sorted;
  if (!std::ranges::is_sorted(data)) {
    sorted.assign(data.begin(), data.end());
    std::ranges::sort(sorted);
    data = sorted;
  }
  if (data.front() == data.back()) return Fault{EstimationFault::kNoSpread};
  ScaledSample sample = ScaleFrom(data, data[data.size() / 2]);
  if (IsAnyNotFinite(sample.values)) return Fault{EstimationFault::kNotFinite};
  return sample;
}

}  // namespace brenvolt::estimation
