// Reads xlsx workbooks from their parts.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "host/tables/office/sheet_grid.h"

namespace brenvolt {

// The sheets with the values that their formulas had when the file was saved; errors are texts such as "#DIV/0!". Throws
// Error.
std::vector<SheetGrid> ReadXlsx(std::string_view bytes, const std::string& where);
// The same from the parts by their names.
using XlsxParts = std::map<std::string, std::string, std::less<>>;
std::vector<SheetGrid> ReadXlsxParts(XlsxParts parts, const std::string& where);

}  // namespace brenvolt
