// The report of a simulation for programs: what it was drawn by and from, a summary of the variables, the correlations
// asked for beside those reached.
#pragma once

#include <nlohmann/json_fwd.hpp>

#include "host/jobs/simulate_job.h"

namespace brenvolt {

nlohmann::ordered_json SimulationJson(const SimulateJob& job, const SimulationFindings& run);

}  // namespace brenvolt
