// The graphs of a fit for programs.
#pragma once

#include <filesystem>

#include "host/jobs/base/job_recorder.h"

namespace brenvolt {

// Writes the data of the graphs that the fit results dialog, which is the open one, makes of each variable
// with the fit that is saved first, as one JSON object: histogram, cumulative histogram, P-P, Q-Q, empirical
// distribution and box plot. A variable without a fit has none. See docs/guide/fitting.md for its shape. For
// `job` it is one action. Throws Error, naming the file, when it cannot be written.
void WriteFitGraphs(CAnalysisSupport& analysis, const std::filesystem::path& path, JobRecorder& job);

}  // namespace brenvolt
