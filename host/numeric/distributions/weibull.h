// The Weibull distribution: `scale` is the characteristic life.
#pragma once

#include "host/numeric/distributions/common/distribution.h"

namespace brenvolt {

struct Weibull {
  static constexpr DistributionFacts kFacts{
      .code = DistributionCode::kWeibull,
      .name = "Weibull",
      .offset = OffsetPlace::kLast,
      .parameters = {{{"scale", ParameterRange::kPositive},
                      {"shape", ParameterRange::kPositive, ParameterUnit::kNone}}},
      .curves = {"weibull", "iWeibull"},
      .estimation = {.copiesSample = true},
      .censored = CensoredForm::kPowerHazard};
};

extern template class Distribution<Weibull>;

}  // namespace brenvolt
