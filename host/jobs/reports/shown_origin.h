// What made results that a front end shows.
#pragma once

#include <string>

#include "host/jobs/fit_job.h"
#include "host/jobs/profile/profile_job.h"
#include "host/jobs/simulate_job.h"

namespace brenvolt {

// The command that repeats it, or why none does. Both are empty for what was not asked of a job.
struct ShownOrigin {
  std::string command;
  std::string obstacle;
};

// Jobs with the method and the seed that were chosen; `obstacle` is empty where the file of the data has them as they are.
ShownOrigin OriginOf(const FitJob& job, std::string obstacle);
ShownOrigin OriginOf(const SimulateJob& job, std::string obstacle);
ShownOrigin OriginOf(const ProfileJob& job, std::string obstacle);

}  // namespace brenvolt
