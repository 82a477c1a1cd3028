// A sheet of results that grows by rows. A column is there once a row has a value for it; columns stand in the order in which
// they came. What a row lacks is missing.
#pragma once

#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/analysis/result_table.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt {

class RowSheet {
 public:
  void BeginRow() { ++rows_; }
  void Put(std::string_view column, double value);
  void Put(std::string_view column, const std::string& text);
  // Those of the columns that the row has.
  void Put(const ResultRow& row, std::span<const ResultColumn> columns);

  Spreadsheet Made(std::string name) &&;

 private:
  struct Column {
    std::string name;
    std::vector<double> numbers = {};
    bool isText = false;
    std::map<std::string, double> codes = {};
  };
  Column& Of(std::string_view name);

  std::size_t rows_ = 0;
  std::vector<Column> columns_;
};

}  // namespace brenvolt
