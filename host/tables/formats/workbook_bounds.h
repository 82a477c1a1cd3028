// How large a sheet can be, and more cells and text than any workbook of data has: a hostile file repeats them.
#pragma once

#include <cstddef>
#include <string>

#include "host/base/error.h"

namespace brenvolt {

inline constexpr std::size_t kMostSheetRows = std::size_t{1} << 20;
inline constexpr std::size_t kMostSheetColumns = std::size_t{1} << 14;

// Adds up what the sheets of a workbook hold.
class WorkbookBound {
 public:
  explicit WorkbookBound(const std::string& where) : where_(where) {}

  void AddCell() {
    constexpr std::size_t kMost = 100'000'000;
    if (++cells_ > kMost) throw Error("the workbook has more than 100 million cells", where_);
  }
  void AddText(std::size_t bytes) {
    constexpr std::size_t kMost = std::size_t{1} << 30;
    text_ += bytes;
    if (text_ > kMost) throw Error("the workbook holds more than 1 GB of text", where_);
  }

 private:
  const std::string& where_;
  std::size_t cells_ = 0;
  std::size_t text_ = 0;
};

}  // namespace brenvolt
