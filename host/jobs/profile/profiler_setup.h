// How a job of the profiler enters its dialog.
#pragma once

#include <string>
#include <vector>

#include "host/jobs/profile/profiler_session.h"

namespace brenvolt {

// What is asked for: models and formulas, what the predictors are drawn from, the noise and the limits of the responses.
// Returns the variables given by hand that are no predictors. Throws WrongJob, also if the models reveal that a response
// or predictor is not one, JobFailed, and Error.
std::vector<std::string> SetUpProfiler(const ProfileJob& job, const JobInput& input, JobRecorder& recorder,
                                       ProfilerSession& profiler);

}  // namespace brenvolt
