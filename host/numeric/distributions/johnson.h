// The four families of Johnson (1949): z = gamma + delta g((x - xi) / lambda) is standard normal; g is ln
// (type 1, SL), asinh (2, SU), logit (3, SB), the identity (4, SN). Mean and variance of SB are by
// quadrature; see johnson_bounded_moments.h.
#pragma once

#include <array>
#include <string_view>

#include "host/numeric/distributions/common/distribution.h"

namespace brenvolt {

struct Johnson {
  static constexpr DistributionFacts kFacts{
      .code = DistributionCode::kJohnson,
      .name = "Johnson",
      .parameters = {{{"type", ParameterRange::kJohnsonFamily, ParameterUnit::kNone},
                      {"gamma", ParameterRange::kFinite, ParameterUnit::kNone},
                      {"delta", ParameterRange::kPositive, ParameterUnit::kNone},
                      {"lambda", ParameterRange::kPositive},
                      {"xi", ParameterRange::kFinite}}},
      .curves = {"Johnson", "iJohnson"},
      .estimation = {.copiesSample = true, .slowness = 1}};
};

// What the families 1 to 4 are called.
inline constexpr std::array<std::string_view, 4> kJohnsonFamilies{"SL", "SU", "SB", "SN"};

extern template class Distribution<Johnson>;

}  // namespace brenvolt
