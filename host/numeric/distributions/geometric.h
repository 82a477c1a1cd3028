// The geometric distribution: failures, 0, 1, 2, …, before the first success, of probability `proportion`.
// It does not exist at proportion 0, where no success ever comes.
#pragma once

#include "host/numeric/distributions/common/distribution.h"

namespace brenvolt {

struct Geometric {
  static constexpr DistributionFacts kFacts{
      .code = DistributionCode::kGeometric,
      .name = "Geometric",
      .shortName = "geom",
      .isContinuous = false,
      .parameters = {{{"proportion", ParameterRange::kPositiveProportion, ParameterUnit::kNone}}},
      .curves = {"Geom", "iGeom"}};
};

extern template class Distribution<Geometric>;

}  // namespace brenvolt
