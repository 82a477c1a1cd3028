// What is wrong with a specification, for people.
#pragma once

#include <string_view>

#include "host/statistics/specification_limits.h"

namespace brenvolt {

// What contradicts what in a specification, complete or not; empty if nothing does.
inline std::string_view ContradictionIn(const SpecificationLimits& limits) {
  if (limits.lower >= limits.upper) return "the lower limit must be less than the upper one";
  if (limits.target < limits.lower || limits.target > limits.upper)
    return "the target lies outside the limits";
  return {};
}

}  // namespace brenvolt
