// The specification of a response as words of a call.
#pragma once

#include <string>
#include <utility>

#include "host/statistics/specification_limits.h"

namespace brenvolt::cli {

// "Y=LSL,TARGET,USL", each of which may be empty. Throws WrongJob.
std::pair<std::string, SpecificationLimits> SpecificationIn(const std::string& text);

}  // namespace brenvolt::cli
