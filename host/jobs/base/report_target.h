// The reports that jobs are asked for.
#pragma once

#include <filesystem>

#include "host/jobs/base/job_fault.h"
#include "host/jobs/base/job_recorder.h"

namespace brenvolt {

// Adds a fault of the field "report" unless a report may go to `path`, or nothing for an empty path.
void CheckReport(const std::filesystem::path& path, JobFaults& faults);
// Reports are no part of a macro. Throws WrongJob where they would have to be.
void RefuseRecordedReport(const std::filesystem::path& path, const JobRecorder& recorder);

}  // namespace brenvolt
