// The report of a fit: what the fit results dialog's tables say, for people or for programs.
#pragma once

#include "apps/cli/data_options.h"
#include "host/automation/automation_object.h"

namespace brenvolt::cli {

// Prints the results that the dialog behind `dialog` shows to standard output: per variable its moments and
// its ranked distributions, as tables or as one JSON object.
void ReportFit(AutomationObject& dialog, ReportFormat format);

}  // namespace brenvolt::cli
