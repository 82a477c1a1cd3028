#include "host/numeric/distributions/rules/value_rules.h"

#include <array>
#include <cmath>
#include <limits>
#include <set>

#include "host/numeric/distributions/distribution_table.h"
#include "host/numeric/distributions/gaussian_mixture.h"

namespace brenvolt {

GroupCounts GroupCountsOf(DistributionCode code) {
  if (code == DistributionCode::kGaussianMixture) return {kFewestMixtures, kMostMixtures};
  return {0, std::numeric_limits<std::size_t>::max()};  // none has no proportions that add up
}

double TotalProportion(DistributionCode code, std::span<const double> values) {
  const DistributionFacts& facts = EntryOf(code).facts;
  double total = 0;
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (facts.parameters[i % facts.ParameterCount()].range == ParameterRange::kProportion) total += values[i];
  }
  return total;
}

std::optional<std::size_t> RepeatedLevel(DistributionCode code, std::span<const double> values) {
  if (code != DistributionCode::kHistogram) return std::nullopt;
  std::set<double> seen;
  for (std::size_t i = 0; i < values.size(); i += 2) {  // codes and proportions in turn
    if (!seen.insert(values[i]).second) return i;
  }
  return std::nullopt;
}

std::optional<ValueRule> BrokenRule(DistributionCode code, std::span<const double> values) {
  const DistributionEntry& entry = EntryOf(code);
  const bool isOfGroups = entry.facts.isUserDefined;
  if (isOfGroups && !GroupCountsOf(code).Contains(values.size() / entry.facts.ParameterCount()))
    return ValueRule::kGroupCount;
  if (entry.isValid(values, 0.0)) return std::nullopt;
  if (code == DistributionCode::kTriangular) {
    const auto [min, max, mode] = std::array{values[0], values[1], values[2]};
    if (min > mode) return ValueRule::kMinUpToMode;
    return mode > max ? ValueRule::kModeUpToMax : ValueRule::kOther;
  }
  const bool isTotalWrong = isOfGroups && !(std::abs(TotalProportion(code, values) - 1) <= kTotalTolerance);
  return isTotalWrong ? ValueRule::kTotalProportion : ValueRule::kOther;
}

}  // namespace brenvolt
