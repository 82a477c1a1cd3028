// The triangular distribution: min <= mode <= max. Where all three are equal it is the point of them all.
#pragma once

#include "host/numeric/distributions/common/distribution.h"

namespace brenvolt {

struct Triangular {
  static constexpr DistributionFacts kFacts{.code = DistributionCode::kTriangular,
                                            .name = "Triangular",
                                            .shortName = "triang",
                                            .otherName = "tri",
                                            .parameters = {{{"min", ParameterRange::kFinite},
                                                            {"max", ParameterRange::kFinite},
                                                            {"mode", ParameterRange::kFinite}}},
                                            .curves = {"Triangular", "iTriangular"}};
};

extern template class Distribution<Triangular>;

}  // namespace brenvolt
