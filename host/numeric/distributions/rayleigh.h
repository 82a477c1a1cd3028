// The Rayleigh distribution: the length of a plane normal vector with deviation `scale` along each axis.
#pragma once

#include "host/numeric/distributions/shared/distribution.h"

namespace brenvolt {

struct Rayleigh {
  static constexpr DistributionFacts kFacts{.code = DistributionCode::kRayleigh,
                                            .name = "Rayleigh",
                                            .offset = OffsetPlace::kWithX,
                                            .parameters = {{{"scale", ParameterRange::kPositive}}},
                                            .curves = {"Rayl", "IRayl"},
                                            .estimation = {.copiesSample = true}};
};

extern template class Distribution<Rayleigh>;

}  // namespace brenvolt
