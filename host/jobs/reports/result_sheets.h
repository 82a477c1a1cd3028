// Results as one sheet with a row for each fit, variable, response or figure: for programs that take tables. Columns have the
// identifiers of host/analysis/result_columns.h, as frames do; numbers have all their digits.
#pragma once

#include <optional>
#include <vector>

#include "host/jobs/fit_quantiles.h"
#include "host/jobs/fit_results.h"
#include "host/jobs/measured/capability_results.h"
#include "host/jobs/measured/censored_results.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt {

// The fits of each variable by rank.
// With what was asked about quantiles (fit_quantiles.h), one entry for each variable or none at all.
Spreadsheet FitSheet(const std::vector<FittedVariable>& variables,
                     const std::vector<std::optional<FitQuantiles>>& quantiles = {});
Spreadsheet CensoredSheet(const CensoredFindings& found);
// The indices and the parts per million with their intervals.
Spreadsheet CapabilitySheet(const CapabilityFindings& found);

}  // namespace brenvolt
