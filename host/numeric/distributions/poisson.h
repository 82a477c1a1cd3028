// The Poisson distribution of counts 0, 1, 2, …
#pragma once

#include "host/numeric/distributions/common/distribution.h"

namespace brenvolt {

struct Poisson {
  static constexpr DistributionFacts kFacts{.code = DistributionCode::kPoisson,
                                            .name = "Poisson",
                                            .shortName = "pois",
                                            .isContinuous = false,
                                            .parameters = {{{"mean", ParameterRange::kPositive}}},
                                            .curves = {"Poisson", "iPoisson"}};
};

extern template class Distribution<Poisson>;

}  // namespace brenvolt
