#include "host/numeric/distributions/distribution_table.h"

#include <array>

#include "host/numeric/distributions/all_distributions.h"

namespace brenvolt {
namespace {

template <class... D>
constexpr bool CodesArePlaces(DistributionList<D...> /*list*/) {
  int place = 0;
  return ((static_cast<int>(D::kFacts.code) == place &&
           D::kFacts.isContinuous == (place < kContinuousCount) && ++place > 0) &&
          ...) &&
         place == kDistributionCount;
}
static_assert(CodesArePlaces(AllDistributions()));

template <class... D>
constexpr std::array<const DistributionEntry*, sizeof...(D)> EntriesOf(DistributionList<D...> /*list*/) {
  return {&Distribution<D>::kEntry...};
}

constexpr auto kEntries = EntriesOf(AllDistributions());

}  // namespace

std::span<const DistributionEntry* const> DistributionTable() {
  return kEntries;
}

const DistributionEntry& EntryOf(DistributionCode code) {
  return *kEntries.at(static_cast<std::size_t>(code));
}

AnyDistribution::AnyDistribution(const DistributionEntry& entry, In parameters)
    : entry_(&entry), values_(parameters), offset_(0.0) {
  const std::size_t count = entry.facts.ParameterCount();
  if (!entry.facts.HasOffset() || parameters.size() != count + 1) return;
  const bool isFirst = entry.facts.offset == OffsetPlace::kFirst;
  offset_ = isFirst ? parameters.front() : parameters.back();
  values_ = isFirst ? parameters.last(count) : parameters.first(count);
}

}  // namespace brenvolt
