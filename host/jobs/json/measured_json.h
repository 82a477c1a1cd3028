// The reports about measured values for programs.
#pragma once

#include <nlohmann/json_fwd.hpp>

#include "host/jobs/measured/capability_results.h"
#include "host/jobs/measured/censored_results.h"

namespace brenvolt {

nlohmann::ordered_json CapabilityJson(const CapabilityFindings& found);
nlohmann::ordered_json CensoredJson(const CensoredFindings& found);

}  // namespace brenvolt
