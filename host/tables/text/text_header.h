// Where the header of a table stands, whether there is one, and what stands above and below it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "host/tables/text/text_sample.h"

namespace brenvolt {

struct HeaderRules {
  NumberForm numbers;
  std::size_t width = 1;             // of the rows of the table
  bool mayLackFirst = false;         // a header may leave out the column of the names of the cases
  std::vector<std::string> missing;  // texts that mean a missing value
};

struct HeaderFound {
  std::size_t line = 1;  // of the header; without one, of the first row
  bool hasHeader = true;
  bool hasUnits = false;
  bool lacksFirst = false;
  bool isOfNumbers = false;  // it looks like data
};

HeaderFound FindHeader(const std::vector<SampleRow>& rows, const HeaderRules& rules);
// The header is in a line that is known.
HeaderFound HeaderAt(const std::vector<SampleRow>& rows, std::size_t line, const HeaderRules& rules);
// There is none: where the data begin.
HeaderFound WithoutHeader(const std::vector<SampleRow>& rows, const HeaderRules& rules);
// The number of the last comment line above `line`, if its text divides into `width` names; otherwise 0.
std::size_t HeaderInComment(std::string_view sample, char comment, char delimiter, std::size_t width,
                            std::size_t line);

// True if some column of rows of that width holds numbers.
bool HasNumericColumn(const std::vector<SampleRow>& rows, std::size_t width);
// A unit of measurement, with or without brackets: "mm", "[m/s]", "(°C)".
bool LooksLikeUnit(std::string_view text);

}  // namespace brenvolt
