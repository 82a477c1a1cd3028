// The reports of jobs about measured values, and the jobs with the reports that they ask for.
#pragma once

#include "host/jobs/measured/capability_job.h"
#include "host/jobs/measured/censored_fit_job.h"
#include "host/jobs/reports/report_parts.h"
#include "host/reporting/report.h"

namespace brenvolt {

Report ReportOf(const CapabilityJob& job, const CapabilityFindings& found, const ReportContext& context);
Report ReportOf(const CensoredFitJob& job, const CensoredFindings& found, const ReportContext& context);

// Carry the job out, over its file or a sheet that is open, and write the report that it asks for. Throw as Run.
CapabilityFindings RunReported(const CapabilityJob& job, const JobRecorder& recorder);
CapabilityFindings RunReported(const CapabilityJob& job, Spreadsheet& sheet, const JobRecorder& recorder);
CensoredFindings RunReported(const CensoredFitJob& job, const JobRecorder& recorder);
CensoredFindings RunReported(const CensoredFitJob& job, Spreadsheet& sheet, const JobRecorder& recorder);

}  // namespace brenvolt
