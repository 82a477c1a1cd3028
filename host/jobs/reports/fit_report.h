// The report of a fit.
#pragma once

#include "host/jobs/fit_job.h"
#include "host/jobs/reports/report_parts.h"

namespace brenvolt {

// Of the fits that the dialog shows, which was opened by the job. Of many variables those that fits miss most are shown one by one.
Report FitReport(const FitJob& job, AutomationObject& dialog, const ReportContext& context);

// Writes it to the file that the job names; where that is a workbook, the results as its sheets (fit_workbook.h). Throws
// Error naming the file.
void WriteReportOfFit(const FitJob& job, AnalysisSession& session, const ReportContext& context);

}  // namespace brenvolt
