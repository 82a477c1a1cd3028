// How a text file is encoded and laid out, found from its first 64 KB.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "host/tables/csv_layout.h"
#include "host/tables/text/text_options.h"

namespace brenvolt {

inline constexpr std::size_t kSampleBytes = std::size_t{1} << 16;
// The beginning of a text, ending with a line if there is one.
std::string_view SampleOf(std::string_view text);

struct DetectedEncoding {
  std::string name = "UTF-8";
  std::size_t mark = 0;     // bytes of the byte-order mark
  bool isDoubtful = false;  // little speaks for it
};

DetectedEncoding DetectEncoding(std::string_view bytes);

struct DetectedLayout {
  CsvLayout layout;                 // its `begin` is left to who knows the text that is read
  char delimiter = ',';             // may be kBlanks
  std::size_t beginLine = 1;        // the line where header or data begin
  bool headerInComment = false;     // that line is a comment whose text is the header
  std::vector<std::string> readAs;  // what is not as usual and was not asked for: "decimal commas"
  std::vector<ReadingNote> doubts;
};

// Of a text in UTF-8 without a byte-order mark. Options that are given hold; they must be right.
DetectedLayout DetectLayout(std::string_view text, const TextOptions& options);

}  // namespace brenvolt
