// What the functions of every distribution return if they have no answer.
#pragma once

#include "host/base/almost_equal.h"

namespace brenvolt {

// What a density or distribution function returns for invalid parameters.
inline constexpr double kInvalidProbability = kNotSet;
// What a quantile returns for invalid parameters or an invalid probability.
inline constexpr double kInvalidQuantile = -3e30;

}  // namespace brenvolt
