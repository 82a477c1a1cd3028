// The histogram: a distribution given by its classes, each a code and the proportion of it, codes in any
// order; codes that appear twice add up. The proportions add up to 1 within kTotalTolerance and count
// relative to their sum.
#pragma once

#include "host/numeric/distributions/common/distribution.h"

namespace brenvolt {

struct Histogram {
  static constexpr DistributionFacts kFacts{
      .code = DistributionCode::kHistogram,
      .name = "Histogram",
      .longName = "Discrete",
      .macroName = "Discrete",
      .shortName = "discrete",
      .isContinuous = false,
      .isUserDefined = true,
      .parameters = {{{"code", ParameterRange::kFinite, ParameterUnit::kNone},
                      {"proportion", ParameterRange::kProportion, ParameterUnit::kNone}}}};
};

extern template class Distribution<Histogram>;

}  // namespace brenvolt
