// The specification of a response in a job, and what can be wrong with it.
#pragma once

#include <string>

#include "host/jobs/base/job_fault.h"
#include "host/statistics/specification_limits.h"

namespace brenvolt {

struct ResponseSpecification {
  std::string response;
  SpecificationLimits limits;
};

// Adds a fault of the field specifications unless the limits are valid.
void CheckLimits(const std::string& response, const SpecificationLimits& limits, JobFaults& faults);

}  // namespace brenvolt
