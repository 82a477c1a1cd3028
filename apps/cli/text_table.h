// Tables as a person reads them in a terminal: aligned columns, numbers to six significant digits.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/analysis/result_table.h"

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

// A number for people, to `digits` significant digits; "-" for a value that does not exist (NaN).
std::string ReadableNumber(double value, int digits = 6);
// The digits in which a number shows a hundredth of `spread`: from `least` to 17.
int DigitsFor(double value, double spread, int least);
// A number in the form of its quantity; `digits` are those of a measure.
std::string QuantityText(double value, Quantity quantity, int digits = 6);
// The number of a row in the form of its column.
std::string Cell(const ResultRow& row, const ResultColumn& column, int digits = 6);

// The columns as the result table heads them, after the names of the rows.
std::string TableText(std::span<const ResultRow> rows, std::string_view nameHeading,
                      std::span<const ResultTable::Heading> columns,
                      std::string (*number)(const ResultRow& row, std::string_view identifier));

}  // namespace brenvolt::cli
