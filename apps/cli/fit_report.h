// The report of a fit: what the fit results dialog's tables say, for people or for programs.
#pragma once

#include "apps/cli/data_options.h"
#include "host/automation/automation_object.h"

namespace brenvolt::cli {

// Prints the results that the dialog behind `dialog` shows to standard output: per variable its moments and
// its ranked distributions, as tables or as one JSON object. Says which of the input's cases were used and
// how they were weighted, where that is not all of them alike.
void ReportFit(AutomationObject& dialog, const Spreadsheet& input, ReportFormat format);

}  // namespace brenvolt::cli
