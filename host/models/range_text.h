// Ranges of numbers in words.
#pragma once

#include <span>
#include <string>

#include "host/models/prediction_model.h"

namespace brenvolt {

// " without 3 to 5, 7 to 8", behind what has these gaps; nothing if there are none.
std::string GapsText(std::span<const NumberRange> gaps);

}  // namespace brenvolt
