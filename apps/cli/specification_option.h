// The specification of a response as words of a call.
#pragma once

#include <string>

#include "host/jobs/base/specification_check.h"

namespace brenvolt::cli {

// "Y=LSL,TARGET,USL", each of which may be empty. Throws WrongJob.
ResponseSpecification ParseSpecification(const std::string& text);

}  // namespace brenvolt::cli
