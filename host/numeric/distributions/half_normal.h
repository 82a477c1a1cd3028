// The half normal distribution: the magnitude of a normal variable about 0, shifted by the threshold.
#pragma once

#include "host/numeric/distributions/shared/distribution.h"

namespace brenvolt {

struct HalfNormal {
  static constexpr DistributionFacts kFacts{.code = DistributionCode::kHalfNormal,
                                            .name = "HalfNormal",
                                            .offset = OffsetPlace::kWithX,
                                            .parameters = {{{"scale", ParameterRange::kPositive}}},
                                            .curves = {"HalfNormal", "iHalfNormal"},
                                            .estimation = {.copiesSample = true}};
};

extern template class Distribution<HalfNormal>;

}  // namespace brenvolt
