// Jobs as the command that repeats them, whoever ran them.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

#include "host/jobs/fit_job.h"
#include "host/jobs/measured/capability_job.h"
#include "host/jobs/measured/censored_fit_job.h"
#include "host/jobs/profile/profile_job.h"
#include "host/jobs/simulate_job.h"

namespace brenvolt {

// "brenvolt fit data.csv --rank-by aic"; empty where no command can say it: for data without a file, matrices and functions
// of a program, and names with commas in a list of names. Methods and seeds are those that were chosen.
std::string CommandOf(const FitJob& job);
std::string CommandOf(const CensoredFitJob& job);
std::string CommandOf(const CapabilityJob& job);
std::string CommandOf(const SimulateJob& job, const std::string& method, std::int32_t seed);
std::string CommandOf(const ProfileJob& job, std::int32_t seed);
// Of a project and the name of one of its sheets, which may be empty.
std::string ShowCommandOf(const std::filesystem::path& project, const std::string& sheet,
                          const std::filesystem::path& report);

}  // namespace brenvolt
