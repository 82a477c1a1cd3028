// The predictions of a model for programs, and why cases have none.
#pragma once

#include <nlohmann/json_fwd.hpp>

#include "host/jobs/score_job.h"

namespace brenvolt {

nlohmann::ordered_json ScoreJson(const ScoreJob& job, const ScoreRun& run);

}  // namespace brenvolt
