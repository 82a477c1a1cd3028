// The log-normal distribution: ln(x - threshold) is normal with mean `scale` and standard deviation `shape`.
#pragma once

#include "host/numeric/distributions/shared/distribution.h"

namespace brenvolt {

struct LogNormal {
  static constexpr DistributionFacts kFacts{
      .code = DistributionCode::kLogNormal,
      .name = "LogNormal",
      .offset = OffsetPlace::kWithX,
      .parameters = {{{"scale", ParameterRange::kFinite}, {"shape", ParameterRange::kPositive}}},
      .curves = {"Lognorm", "iLognorm"},
      .estimation = {.copiesSample = true}};
};

extern template class Distribution<LogNormal>;

}  // namespace brenvolt
