// Tells a correlation matrix file from other spreadsheets by its layout, without judging its values.
#pragma once

#include "host/tables/spreadsheet.h"

namespace brenvolt::sra {

// For m variables a matrix file has m + 4 cases: a square matrix whose cases bear the variables' names in
// their order, then "Means", "Std.Dev.", "No.Cases" and the matrix type, whose first value is 1, a
// correlation matrix (within 15 units in the last place). The name of the type's case may bear the marker of
// untranslated keys or not. True when the sheet is laid out so; whether its matrix is a valid one is another
// question.
bool IsMatrixFile(const Spreadsheet& sheet);

}  // namespace brenvolt::sra
