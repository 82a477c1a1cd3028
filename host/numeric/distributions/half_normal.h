// The half normal distribution: the magnitude of a normal variable about 0, shifted by the threshold.
#pragma once

#include <span>

#include "host/numeric/distributions/common/distribution.h"

namespace brenvolt {

struct HalfNormal {
  static constexpr DistributionFacts kFacts{.code = DistributionCode::kHalfNormal,
                                            .name = "HalfNormal",
                                            .otherName = "halfnorm",
                                            .offset = OffsetPlace::kWithX,
                                            .parameters = {{{"scale", ParameterRange::kPositive}}},
                                            .curves = {"HalfNormal", "iHalfNormal"},
                                            .estimation = {.copiesSample = true},
                                            .censored = CensoredForm::kNormalMagnitude};
};

// The scale is the root of the mean square of x - offset, in closed form; its standard error is scale / sqrt(2
// n). A value equal to the offset is within the support. kNoSpread when all are.
EstimationResult<ScaleEstimate> EstimateHalfNormal(std::span<const double> data, double offset);

extern template class Distribution<HalfNormal>;

}  // namespace brenvolt
