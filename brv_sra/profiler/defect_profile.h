// How many of the simulated runs fall outside specification: counts, and the defect profile of the responses
// against the predictors.
//
// A run is a defect of a response when its value lies strictly outside the response's limits. NaN is a
// prediction that is missing: such a run counts neither as a defect nor among the response's runs.
// A response whose specification is not valid (SpecificationLimits::IsValid) takes no part.
#pragma once

#include <cstdint>
#include <limits>
#include <span>
#include <string>
#include <vector>

#include "host/statistics/specification_limits.h"

namespace brenvolt::sra {

// A simulated column: of a dependent with its specification, or of a predictor.
struct ProfiledResponse {
  std::string name;
  std::span<const double> values;
  SpecificationLimits limits;
};
struct ProfiledPredictor {
  std::string name;
  std::span<const double> values;
};

// The largest number that a defect count of the table holds.
inline constexpr std::int64_t kMostDefects = std::numeric_limits<std::int16_t>::max();

// One entry for each response in order, and a last one for the runs in which at least one response is a
// defect. The counts have sixteen bits, as the table of defect rates reads them; where a number does not fit,
// they hold kMostDefects, and only the exact count tells.
struct DefectCounts {
  std::vector<std::int16_t> counts;
  std::vector<std::int64_t> exact;
  std::vector<std::int64_t> runs;  // with a prediction; of the last: of any response that takes part
};
// The columns are of one length.
DefectCounts CountDefects(std::span<const ProfiledResponse> responses);

// A class of the runs by the values of a predictor.
struct DefectClass {
  double minimum = 0;
  double median = 0;
  double maximum = 0;
  std::int64_t runs = 0;  // in which the response has a prediction, 1 at least
  std::int64_t defects = 0;
  double Rate() const { return static_cast<double>(defects) / static_cast<double>(runs); }
};
struct DefectProfile {
  std::size_t response = 0;  // indices among those given
  std::size_t predictor = 0;
  std::vector<DefectClass> classes;  // ascending
};
// For each response that takes part, by each predictor in order. Up to `classes` classes hold equally many
// runs, but runs of equal values stay together; 0 stands for the usual number (equal_count_classes.h).
std::vector<DefectProfile> ProfileDefects(std::span<const ProfiledResponse> responses,
                                          std::span<const ProfiledPredictor> predictors,
                                          std::size_t classes = 0);

}  // namespace brenvolt::sra
