// Reads ods workbooks.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/tables/office/sheet_grid.h"

namespace brenvolt {

// The sheets with the values that their formulas had when the file was saved. Throws Error.
std::vector<SheetGrid> ReadOds(std::string_view bytes, const std::string& where);
// The same from the part that holds the sheets.
std::vector<SheetGrid> ReadOdsContent(std::string_view content, const std::string& where);

}  // namespace brenvolt
