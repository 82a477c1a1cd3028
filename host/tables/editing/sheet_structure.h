// Changes of the shape of a sheet, and of the order of a project, as a person makes them in a grid: variables and cases
// come and go anywhere. The sheet stays at its address, and what is taken out is handed out, so that it can go back.
//
// Places count from 0. All throw Error naming the sheet for places that it does not have, and change nothing then.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/tables/workbook.h"

namespace brenvolt {

struct SheetVariables {
  std::vector<Variable> variables;
  std::optional<std::size_t> weight;  // which of them weights the cases
};

// `at` is the place of the first one afterwards. Each must have as many cases as the sheet.
void InsertVariables(Spreadsheet& sheet, std::size_t at, SheetVariables variables);
SheetVariables RemoveVariables(Spreadsheet& sheet, std::size_t at, std::size_t count);

// For the variable at a place. Throws Error, naming the sheet, if the name is empty or another variable has it.
void RequireFreeName(const Spreadsheet& sheet, std::size_t at, std::string_view name);

struct SheetCases {
  std::size_t count = 0;
  std::vector<std::vector<double>> values;  // of each variable; empty: all are missing
  std::vector<std::string> names;           // empty: they have none, or are numbered
  std::vector<std::uint8_t> accepted;       // by the sheet's selection; empty: all are
};

void InsertCases(Spreadsheet& sheet, std::size_t at, const SheetCases& cases);
SheetCases RemoveCases(Spreadsheet& sheet, std::size_t at, std::size_t count);

// Adds a sheet so that it stands at a place of the project.
Spreadsheet& InsertSheet(Workbook& workbook, std::size_t at, std::unique_ptr<Spreadsheet> sheet);
// The place of the sheet of that name. Throws Error.
std::size_t PlaceOfSheet(const Workbook& workbook, std::string_view name);

}  // namespace brenvolt
