#include "brv_sra/profiler/defect_profile.h"

#include <algorithm>
#include <cmath>

#include "host/statistics/equal_count_classes.h"

namespace brenvolt::sra {
namespace {

std::size_t RunCount(std::span<const ProfiledResponse> responses) {
  return responses.empty() ? 0 : responses.front().values.size();
}

std::vector<DefectClass> ProfileOf(const ProfiledResponse& response, const OrderedCases& runs) {
  std::vector<DefectClass> profile;
  for (const EqualCountClass& one : runs.classes) {
    DefectClass counted{one.minimum, one.median, one.maximum, 0, 0};
    for (std::size_t rank = one.begin; rank < one.end; ++rank) {
      const double value = response.values[runs.order[rank]];
      counted.runs += std::isnan(value) ? 0 : 1;
      counted.defects += response.limits.IsDefect(value) ? 1 : 0;
    }
    if (counted.runs > 0) profile.push_back(counted);
  }
  return profile;
}

}  // namespace

DefectCounts CountDefects(std::span<const ProfiledResponse> responses) {
  const std::size_t runs = RunCount(responses);
  DefectCounts result;
  result.exact.resize(responses.size() + 1);
  result.runs.resize(responses.size() + 1);
  std::vector<char> predicted(runs);
  std::vector<char> defective(runs);
  for (std::size_t k = 0; k < responses.size(); ++k) {
    const ProfiledResponse& response = responses[k];
    if (!response.limits.IsValid()) continue;
    for (std::size_t i = 0; i < runs; ++i) {
      const bool present = !std::isnan(response.values[i]);
      const bool defect = response.limits.IsDefect(response.values[i]);
      result.runs[k] += present ? 1 : 0;
      result.exact[k] += defect ? 1 : 0;
      predicted[i] = present ? 1 : predicted[i];
      defective[i] = defect ? 1 : defective[i];
    }
  }
  result.runs.back() = std::ranges::count(predicted, 1);
  result.exact.back() = std::ranges::count(defective, 1);
  for (const std::int64_t count : result.exact) {
    result.counts.push_back(static_cast<std::int16_t>(std::min(count, kMostDefects)));
  }
  return result;
}

std::vector<DefectProfile> ProfileDefects(std::span<const ProfiledResponse> responses,
                                          std::span<const ProfiledPredictor> predictors,
                                          std::size_t classes) {
  std::vector<OrderedCases> ordered;
  for (const ProfiledPredictor& predictor : predictors) {
    ordered.push_back(OrderCases(predictor.values, classes));
  }
  std::vector<DefectProfile> profiles;
  for (std::size_t k = 0; k < responses.size(); ++k) {
    if (!responses[k].limits.IsValid()) continue;
    for (std::size_t j = 0; j < predictors.size(); ++j) {
      profiles.push_back({k, j, ProfileOf(responses[k], ordered[j])});
    }
  }
  return profiles;
}

}  // namespace brenvolt::sra
