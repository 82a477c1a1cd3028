// The results of a fit as a workbook: the data, the fits by rank, the correlations, what is known of the variables, and
// charts of the best fits, each on a sheet. Numbers are there as numbers, to 16 digits.
#pragma once

#include <filesystem>

#include "host/jobs/fit_job.h"
#include "host/jobs/reports/report_parts.h"

namespace brenvolt {

// Of the fits that the open dialog of the session shows. Throws Error, naming the file.
void WriteFitWorkbook(AnalysisSession& session, const ReportContext& context,
                      const std::filesystem::path& path);

}  // namespace brenvolt
