// The rules over several values of a distribution, which whoever takes values from people judges by.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "host/numeric/distributions/common/distribution_facts.h"

namespace brenvolt {

enum class ValueRule : std::uint8_t {
  kGroupCount,       // as many groups as the distribution may have
  kMinUpToMode,      // of the triangular one
  kModeUpToMax,      // of the triangular one
  kTotalProportion,  // proportions of groups add up to 1
  kOther
};

// The numbers of groups that a distribution of groups may have, as people enter it.
struct GroupCounts {
  std::size_t fewest;
  std::size_t most;

  bool Contains(std::size_t count) const { return count >= fewest && count <= most; }
};
GroupCounts GroupCountsOf(DistributionCode code);

// The sum of the proportions of groups.
double TotalProportion(DistributionCode code, std::span<const double> values);

// The place, among the values of a histogram, of the first code that stands before it already; nothing where all differ,
// and for any other distribution. No rule about the distribution itself, whose functions add such levels up: a person
// who writes a level twice means something else.
std::optional<std::size_t> RepeatedLevel(DistributionCode code, std::span<const double> values);

// The first rule that is broken by values each of which is in its range; nothing where they make a distribution.
std::optional<ValueRule> BrokenRule(DistributionCode code, std::span<const double> values);

}  // namespace brenvolt
