// What a run of the profiler reports: for each response its summary, percentiles, sensitivity and capability,
// then the defects of all.
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "host/jobs/profile_job.h"

namespace brenvolt::cli {

using ResponseResults = ResponseTables;

struct ProfileResults {
  std::int64_t runs = 0;
  std::vector<ResponseTables> responses;
  Table defects;  // null where no response has a specification
};

std::string ProfileText(const ProfileResults& results);
// Correlations are for programs alone, and the frequencies of a response of many values.
nlohmann::ordered_json ProfileJson(const ProfileResults& results);

}  // namespace brenvolt::cli
