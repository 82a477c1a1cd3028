// The normal distribution: mean `location`, standard deviation `scale`.
#pragma once

#include "host/numeric/distributions/common/distribution.h"

namespace brenvolt {

struct Normal {
  static constexpr DistributionFacts kFacts{
      .code = DistributionCode::kNormal,
      .name = "Normal",
      .shortName = "norm",
      .parameters = {{{"location", ParameterRange::kFinite}, {"scale", ParameterRange::kPositive}}},
      .curves = {"Normal", "iNormal"},
      .censored = CensoredForm::kNormal};
};

extern template class Distribution<Normal>;

}  // namespace brenvolt
