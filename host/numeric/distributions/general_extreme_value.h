// The generalized extreme value distribution. A positive shape means a heavy upper tail, a negative one a
// finite upper end; smooth through shape 0, the Gumbel distribution.
#pragma once

#include "host/numeric/distributions/common/distribution.h"

namespace brenvolt {

struct GeneralExtremeValue {
  static constexpr DistributionFacts kFacts{
      .code = DistributionCode::kGeneralExtremeValue,
      .name = "GeneralExtremeValue",
      .longName = "GeneralizedExtremeValue",
      .macroName = "GenExtreme",
      .shortName = "GEV",
      .otherName = "genextreme",
      .parameters = {{{"location", ParameterRange::kFinite},
                      {"scale", ParameterRange::kPositive},
                      {"shape", ParameterRange::kFinite, ParameterUnit::kNone}}},
      .curves = {"GEV", "IGEV"},
      .estimation = {.copiesSample = true, .slowness = 4},
      .censored = CensoredForm::kExtremeValue};
};

extern template class Distribution<GeneralExtremeValue>;

}  // namespace brenvolt
