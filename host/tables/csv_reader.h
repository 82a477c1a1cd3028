// Reading separated values with a choice of block length, on which nothing but speed depends. For csv.h and
// its tests.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "host/tables/csv.h"
#include "host/tables/csv_layout.h"

namespace brenvolt {

// Long enough to make the cost of a block vanish, short enough that a block and its numbers stay in cache.
inline constexpr std::size_t kCsvBlockBytes = std::size_t{1} << 19;

// The most bytes of one text: more is no table of data.
inline constexpr std::size_t kMostTextBytes = std::size_t{1} << 20;

// Reads `text` into a sheet called `sheetName`; `fileName` appears in errors. `blockBytes` is at least 1.
Spreadsheet ReadCsvBlocks(std::string_view text, const std::string& sheetName, const std::string& fileName,
                          const CsvFormat& format, std::size_t blockBytes = kCsvBlockBytes);
// The same of a text that is laid out otherwise. `mixed` takes the columns that became texts although a half or more of
// their values are numbers; it may be null.
Spreadsheet ReadCsvBlocks(std::string_view text, const std::string& sheetName, const std::string& fileName,
                          const CsvLayout& layout, std::size_t blockBytes, std::vector<StrayTexts>* mixed);

// The names of columns out of the cells of a header. Cells without text become "Var" and the number of the column, and of
// equal names, also of those that are in use, the later ones get the first of "_2", "_3", … that leaves every name of the
// header alone.
std::vector<std::string> ColumnNames(std::vector<std::string> cells,
                                     std::unordered_set<std::string> inUse = {});

}  // namespace brenvolt
