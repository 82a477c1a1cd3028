// The graphs of a profile: made by the open dialog of the profiler when they are asked for.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "host/jobs/base/analysis_session.h"
#include "host/jobs/profile/profile_job.h"

namespace brenvolt {

// Makes the graphs of each response, unless the findings have them. The session has the dialog open whose runs they tell of.
// No macro has these as steps. Throws JobFailed and Error.
void MakeGraphs(AnalysisSession& session, ProfileFindings& found);

// Writes the data of graphs that were made as one JSON object. Throws Error.
void WriteGraphs(const std::filesystem::path& path, const ProfileFindings& found);

}  // namespace brenvolt
