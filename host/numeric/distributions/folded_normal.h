// The folded normal distribution: the magnitude of a normal variable, shifted by the threshold.
#pragma once

#include "host/numeric/distributions/common/distribution.h"

namespace brenvolt {

struct FoldedNormal {
  static constexpr DistributionFacts kFacts{
      .code = DistributionCode::kFoldedNormal,
      .name = "FoldedNormal",
      .otherName = "foldnorm",
      .offset = OffsetPlace::kWithX,
      .parameters = {{{"location", ParameterRange::kFinite}, {"scale", ParameterRange::kPositive}}},
      .curves = {"FoldedNormal", "iFoldedNormal", "FoldeNormal"},
      .estimation = {.copiesSample = true, .slowness = 2}};
};

extern template class Distribution<FoldedNormal>;

}  // namespace brenvolt
