// What a project holds, for programs.
#pragma once

#include <nlohmann/json.hpp>

#include "host/jobs/notation/design_text.h"
#include "host/tables/workbook.h"

namespace brenvolt {

// {"sheets": [{"name", "kind", "cases", "variables", "title"}]}
nlohmann::ordered_json ProjectJson(const Workbook& workbook);

// A sheet of data with its variables and their properties, and what they are simulated from.
nlohmann::ordered_json SheetJson(const Spreadsheet& sheet, const DesignText& design);

// A matrix that has all its rows: the mean, the standard deviation and the correlations of each variable.
nlohmann::ordered_json MatrixJson(const Spreadsheet& matrix);

}  // namespace brenvolt
