// The reports of jobs about measured values.
#pragma once

#include "host/jobs/measured/capability_job.h"
#include "host/jobs/measured/censored_fit_job.h"
#include "host/jobs/reports/report_parts.h"
#include "host/reporting/report.h"

namespace brenvolt {

Report ReportOf(const CapabilityJob& job, const CapabilityFindings& found, const ReportContext& context);
Report ReportOf(const CensoredFitJob& job, const CensoredFindings& found, const ReportContext& context);

}  // namespace brenvolt
