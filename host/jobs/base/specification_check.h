// What can be wrong with the specification of a response.
#pragma once

#include <string>

#include "host/jobs/base/job_fault.h"
#include "host/statistics/specification_limits.h"

namespace brenvolt {

// Adds a fault of the field specifications unless the limits are valid.
void CheckLimits(const std::string& response, const SpecificationLimits& limits, JobFaults& faults);

}  // namespace brenvolt
