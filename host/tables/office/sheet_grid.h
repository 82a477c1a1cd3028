// The cells of a workbook's sheet as they come in, and the table that they make.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "host/tables/text/data_read.h"

namespace brenvolt {

struct GridCell {
  std::uint32_t row = 0;
  std::uint32_t column = 0;
  double number = 0;
  std::string text;  // of a cell that is not a number
  bool isText = false;
};

struct SheetGrid {
  std::string name;
  std::vector<GridCell> cells;  // in any order; of two in one place the later counts
  std::size_t mergedRanges = 0;
  bool hasTimes = false;  // which are numbers of hours
};

// The sheet as a table: a header, which need not be in the first row, above columns of numbers or texts, by the rules and
// options of text files. Throws as ReadDataFile does, at `place`; "line" in messages is the row of the sheet.
DataRead TableOf(SheetGrid grid, const std::string& place, const TextOptions& options);
// Throws OptionError for options that only text files have.
void RequireTableOptions(const TextOptions& options, const std::string& kind, const std::string& where);

// Reads all sheets of an xlsx or ods file that hold something.
DataRead ReadWorkbookFile(std::string_view bytes, bool isOds, const std::string& where,
                          const TextOptions& options);

}  // namespace brenvolt
