// The report of a fit for programs. Its shape stands in docs/guide/fitting.md.
#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "host/automation/automation_object.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt::cli {

// One variable: row `variable` of the summary table, with its ranked table where it has one, by the criterion
// of this name. Fetches the details of each valid fit from the dialog, whose Quick tab shows the variable.
nlohmann::ordered_json VariableJson(AutomationObject& dialog, const Spreadsheet& summary,
                                    std::size_t variable, const std::optional<Spreadsheet>& ranked,
                                    const std::string& rankedBy);

}  // namespace brenvolt::cli
