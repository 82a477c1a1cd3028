// What a run of the profiler reports: for each response its summary, percentiles, sensitivity and capability,
// then the defects of all.
#pragma once

#include <string>

#include "host/jobs/profile/profile_results.h"

namespace brenvolt::cli {

// `drawn` are lines on what the predictors and the noise follow, after the list of the predictors.
std::string ProfileText(const ProfileResults& results, const std::string& drawn);

}  // namespace brenvolt::cli
