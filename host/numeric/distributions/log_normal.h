// The log-normal distribution: ln(x - threshold) is normal with mean `scale` and standard deviation `shape`.
#pragma once

#include <span>

#include "host/numeric/distributions/common/distribution.h"

namespace brenvolt {

struct LogNormal {
  static constexpr DistributionFacts kFacts{
      .code = DistributionCode::kLogNormal,
      .name = "LogNormal",
      .shortName = "lognorm",
      .otherName = "lnorm",
      .offset = OffsetPlace::kWithX,
      .parameters = {{{"scale", ParameterRange::kFinite, ParameterUnit::kLogarithmOfData},
                      {"shape", ParameterRange::kPositive, ParameterUnit::kNone}}},
      .curves = {"Lognorm", "iLognorm"},
      .estimation = {.copiesSample = true},
      .censored = CensoredForm::kNormalOfLogarithm};
};

// Mean and standard deviation (divisor n) of ln(x - offset). kValueAtOffset.
EstimationResult<NormalEstimate> EstimateLogNormal(std::span<const double> data, double offset);

extern template class Distribution<LogNormal>;

}  // namespace brenvolt
