// The report of a profile.
#pragma once

#include "host/jobs/profile/profile_job.h"
#include "host/jobs/reports/report_parts.h"

namespace brenvolt {

// The findings have graphs.
Report ProfileReport(const ProfileJob& job, const ProfileFindings& found, const ReportContext& context);

// What the runs are repeated from, beside the distributions of the predictors: correlations, noise, models, formulas.
ReportFacts DrawnFacts(const ProfileJob& job, const ProfileResults& results);

}  // namespace brenvolt
