#include "host/numeric/distributions/distribution_types.h"

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
constexpr std::array<const DistributionType*, sizeof...(D)> TypesOf(DistributionList<D...> /*list*/) {
  return {&Distribution<D>::kType...};
}

constexpr auto kTypes = TypesOf(AllDistributions());

}  // namespace

std::span<const DistributionType* const> DistributionTypes() {
  return kTypes;
}

const DistributionType& TypeOf(DistributionCode code) {
  return *kTypes.at(static_cast<std::size_t>(code));
}

AnyDistribution::AnyDistribution(const DistributionType& type, In parameters)
    : type_(&type), values_(parameters), offset_(0.0) {
  const std::size_t count = type.facts.ParameterCount();
  if (!type.facts.HasOffset() || parameters.size() != count + 1) return;
  const bool isFirst = type.facts.offset == OffsetPlace::kFirst;
  offset_ = isFirst ? parameters.front() : parameters.back();
  values_ = isFirst ? parameters.last(count) : parameters.first(count);
}

}  // namespace brenvolt
