// Tables as a person reads them in a terminal: aligned columns, numbers to six significant digits.
#pragma once

#include <string>
#include <vector>

#include "host/analysis/quantity_text.h"
#include "host/reporting/report.h"

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

// The table alone, without its title and notes.
std::string TextOf(const ReportTable& table);

}  // namespace brenvolt::cli
