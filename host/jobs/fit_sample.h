// The values that a fit was made of.
#pragma once

#include <string>
#include <vector>

#include "host/jobs/fit_job.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt {

// Those of a variable, ascending, each as often as its case counts: of the cases that the job and the sheet select, and, where
// the job leaves cases out as a whole, in which none of the variables `fitted` is missing. The weights are those that a fit takes.
std::vector<double> FittedSample(const FitJob& job, const Spreadsheet& sheet, const std::string& variable,
                                 const std::vector<std::string>& fitted);

}  // namespace brenvolt
