// The capability of a measured process as a report for people.
#pragma once

#include <string>

#include "host/jobs/measured/capability_results.h"

namespace brenvolt::cli {

// Whether the process is stable comes before any index.
std::string CapabilityText(const CapabilityFindings& found);

}  // namespace brenvolt::cli
