// What a profile told as sheets, whose columns have the identifiers of host/analysis/result_columns.h and whose numbers have all
// their digits.
#pragma once

#include <filesystem>

#include "host/jobs/profile/profile_job.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt {

// The moments of each response, with its capability where it has a specification.
Spreadsheet ProfileSheet(const ProfileResults& results);
// A workbook of the runs, what predictors were drawn from, summaries, percentiles and sensitivities of the responses, limits with
// indices and rates of defects, and charts. The findings have the graphs. Throws Error, naming the file.
void WriteProfileWorkbook(const ProfileFindings& found, const std::filesystem::path& path);

}  // namespace brenvolt
