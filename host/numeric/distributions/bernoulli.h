// The Bernoulli distribution: 1 with probability `proportion`, otherwise 0.
#pragma once

#include "host/numeric/distributions/common/distribution.h"

namespace brenvolt {

struct Bernoulli {
  static constexpr DistributionFacts kFacts{
      .code = DistributionCode::kBernoulli,
      .name = "Bernoulli",
      .isContinuous = false,
      .parameters = {{{"proportion", ParameterRange::kProportion, ParameterUnit::kNone}}}};
};

extern template class Distribution<Bernoulli>;

}  // namespace brenvolt
