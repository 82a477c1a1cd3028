// The report of a run of the profiler for programs: for each response its summary, percentiles, sensitivity and
// capability, then the defects of all. Correlations are for programs alone, and the frequencies of a response of many values.
#pragma once

#include <nlohmann/json_fwd.hpp>

#include "host/jobs/profile/profile_job.h"

namespace brenvolt {

nlohmann::ordered_json ProfileJson(const ProfileJob& job, const ProfileFindings& run);

}  // namespace brenvolt
