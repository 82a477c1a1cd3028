// Tables as a person reads them in a terminal: aligned columns, numbers to six significant digits.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace brenvolt::cli {

class TextTable {
 public:
  enum class Align { kLeft, kRight };

  void AddColumn(std::string heading, Align align);
  // One row; missing cells at its end are empty.
  void AddRow(std::vector<std::string> cells);
  // The table with a heading line, each line indented by two blanks and ended by a newline. Widths count
  // characters of UTF-8, not bytes.
  std::string Text() const;

 private:
  struct Column {
    std::string heading;
    Align align;
  };
  std::vector<Column> columns_;
  std::vector<std::vector<std::string>> rows_;
};

// A number for people, to so many significant digits; "-" for a value that does not exist (NaN).
std::string ReadableNumber(double value, int digits = 6);

}  // namespace brenvolt::cli
