// Cells that no spreadsheet program runs.
#pragma once

#include "host/tables/spreadsheet.h"

namespace brenvolt {

// A copy in which no text could be run as a formula by a program that opens it as CSV: names and texts that begin with =, +,
// -, @, a tab or a carriage return have an apostrophe before it. Numbers stay. What is read back has the apostrophes.
Spreadsheet WithSafeCells(const Spreadsheet& sheet);

}  // namespace brenvolt
