// What front ends say of any sheet: its kind, the types of its variables, what is missing.
#pragma once

#include <cstddef>
#include <string_view>

#include "host/tables/spreadsheet.h"

namespace brenvolt {

// "data" or "matrix", "numeric" or "text".
std::string_view KindName(SheetKind kind);
std::string_view TypeName(VariableType type);
std::size_t CountMissing(const Variable& variable);
// Of a matrix with all its rows.
double ValidCases(const Spreadsheet& matrix);

}  // namespace brenvolt
