// The reports that jobs are asked for.
#pragma once

#include <cstdint>
#include <filesystem>

#include "host/jobs/base/job_fault.h"
#include "host/jobs/base/job_recorder.h"

namespace brenvolt {

enum class ReportKinds : std::uint8_t { kDocuments, kDocumentsAndWorkbook };

// Adds a fault of the field "report" unless a report of these kinds may go to `path`, or nothing for an empty path.
void CheckReport(const std::filesystem::path& path, JobFaults& faults,
                 ReportKinds kinds = ReportKinds::kDocuments);
// Reports are no part of a macro. Throws WrongJob where they would have to be.
void RefuseRecordedReport(const std::filesystem::path& path, const JobRecorder& recorder);

}  // namespace brenvolt
