// What is typed or pasted into a sheet: how texts become values and variables, and which changes a sheet refuses.
//
// Places count from 0. All throw Error that says what is wrong, and where.
#pragma once

#include <cstddef>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "host/base/number_text.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt {

// Values of one variable from a case on, and the labels that it needs for them beside its own.
struct TypedColumn {
  std::vector<double> values;
  std::map<double, std::string> labels;
};
TypedColumn ReadTyped(const Variable& variable, std::span<const std::string> texts, std::size_t firstCase,
                      NumberLocale locale);
// Names for further variables that none has: "Var6", "Var7", … behind five variables.
std::vector<std::string> FreeVariableNames(const Spreadsheet& sheet, std::size_t count);

// For changes by which variables or cases come or go: a matrix takes none.
void RequireChangeableShape(const Spreadsheet& sheet);
// Whether a value of that cell also stands in the cell mirrored at the diagonal, as correlations do. A cell of
// correlations takes nothing else.
bool IsMirrored(const Spreadsheet& sheet, std::size_t row, std::size_t column, double value);

}  // namespace brenvolt
