// What a simulation told as sheets, whose columns have the identifiers of host/analysis/result_columns.h and whose numbers have
// all their digits.
#pragma once

#include <filesystem>

#include "host/jobs/simulate_job.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt {

// The moments and percentiles of each variable.
Spreadsheet SimulationSheet(const SimulationResults& results);
// A workbook of the samples, what they were drawn from, their summaries and correlations, and a chart of each variable against
// its distribution. The findings have the samples. Throws Error, naming the file.
void WriteSimulationWorkbook(const SimulateJob& job, const SimulationFindings& found,
                             const std::filesystem::path& path);

}  // namespace brenvolt
