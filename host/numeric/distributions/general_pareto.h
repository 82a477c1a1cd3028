// The generalized Pareto distribution. A positive shape means a heavy upper tail, a negative one a finite
// upper end; smooth through shape 0, the exponential distribution.
#pragma once

#include "host/numeric/distributions/common/distribution.h"

namespace brenvolt {

struct GeneralPareto {
  static constexpr DistributionFacts kFacts{
      .code = DistributionCode::kGeneralPareto,
      .name = "GeneralPareto",
      .longName = "GeneralizedPareto",
      .macroName = "GenPareto",
      .shortName = "GPD",
      .otherName = "genpareto",
      .offset = OffsetPlace::kFirst,
      .parameters = {{{"scale", ParameterRange::kPositive},
                      {"shape", ParameterRange::kFinite, ParameterUnit::kNone}}},
      .curves = {"GPD", "IGPD"},
      .estimation = {.copiesSample = true, .slowness = 3}};
};

extern template class Distribution<GeneralPareto>;

}  // namespace brenvolt
