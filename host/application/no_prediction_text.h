// Why a case has no prediction, in words.
#pragma once

#include <string_view>

#include "host/models/unpredicted_cases.h"

namespace brenvolt {

// "the value is missing".
std::string_view NoPredictionText(NoPrediction reason);

}  // namespace brenvolt
