// The capability of a measured process, and fits of censored values, as reports for people.
#pragma once

#include <string>

#include "host/jobs/measured/capability_results.h"
#include "host/jobs/measured/censored_results.h"

namespace brenvolt::cli {

// Whether the process is stable comes before any index.
std::string CapabilityText(const CapabilityFindings& found);
std::string CensoredText(const CensoredFindings& found);

}  // namespace brenvolt::cli
