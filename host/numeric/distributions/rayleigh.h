// The Rayleigh distribution: the length of a plane normal vector with deviation `scale` along each axis.
#pragma once

#include <span>

#include "host/numeric/distributions/common/distribution.h"

namespace brenvolt {

struct Rayleigh {
  static constexpr DistributionFacts kFacts{.code = DistributionCode::kRayleigh,
                                            .name = "Rayleigh",
                                            .offset = OffsetPlace::kWithX,
                                            .parameters = {{{"scale", ParameterRange::kPositive}}},
                                            .curves = {"Rayl", "IRayl"},
                                            .estimation = {.copiesSample = true},
                                            .censored = CensoredForm::kSquareHazard};
};

// The scale is the root of half the mean square of x - offset, in closed form; its standard error is scale /
// sqrt(4 n). The density is zero at the offset: kValueAtOffset.
EstimationResult<ScaleEstimate> EstimateRayleigh(std::span<const double> data, double offset);

extern template class Distribution<Rayleigh>;

}  // namespace brenvolt
