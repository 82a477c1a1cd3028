// How large a sheet can be, and how much a workbook of data may hold: a hostile one repeats what it has.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>

#include "host/base/error.h"

namespace brenvolt {

inline constexpr std::size_t kMostSheetRows = std::size_t{1} << 20;
inline constexpr std::size_t kMostSheetColumns = std::size_t{1} << 14;

// Adds up what the sheets of a workbook hold, which cannot be much more than its parts are long: a cell that is written takes
// some ten characters, and texts that cells share are short.
class WorkbookBound {
 public:
  WorkbookBound(std::size_t bytes, const std::string& where)
      : mostCells_(std::max(kAlwaysCells, bytes / kBytesOfCell)),
        mostText_(std::max(kAlwaysText, bytes * kTextOfByte)),
        where_(where) {}

  void AddCell() {
    if (++cells_ > mostCells_)
      throw Error("the workbook has more than " + std::to_string(mostCells_) +
                      " cells, most of which repeat others: no table of data does",
                  where_);
  }
  void AddText(std::size_t bytes) {
    text_ += bytes;
    if (text_ > mostText_)
      throw Error("the workbook repeats its texts to more than " + std::to_string(mostText_ >> 20) +
                      " MB, which no table of data of its size does",
                  where_);
  }

 private:
  static constexpr std::size_t kAlwaysCells = 5'000'000;
  static constexpr std::size_t kBytesOfCell = 4;
  static constexpr std::size_t kAlwaysText = std::size_t{64} << 20;
  static constexpr std::size_t kTextOfByte = 4;

  std::size_t mostCells_;
  std::size_t mostText_;
  const std::string& where_;
  std::size_t cells_ = 0;
  std::size_t text_ = 0;
};

}  // namespace brenvolt
