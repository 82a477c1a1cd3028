// Result tables as spreadsheets: columns and rows bear the identifiers of host/analysis/result_columns.h and
// the headings of the text table.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/analysis/result_columns.h"
#include "host/base/almost_equal.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt::sra {

// A sheet whose name is its title, with a case for each name.
std::unique_ptr<Spreadsheet> NewResultSheet(std::string title, std::vector<std::string> cases);

// Appends a column whose value in each case comes from a function of the case. Of several columns of a kind
// each has a number, which follows heading and identifier.
using CellNumber = std::function<double(std::size_t)>;
void AddColumn(Spreadsheet& sheet, const ResultColumn& column, const CellNumber& value,
               std::string_view number = {});

// The same with a text in each case.
using CellText = std::function<std::string(std::size_t)>;
void AddTextColumn(Spreadsheet& sheet, const ResultColumn& column, const CellText& text);

// A value for a cell that is missing if the value is not set.
inline double OrMissing(double value) {
  return IsNotSet(value) ? GetDefaultMDValue() : value;
}

}  // namespace brenvolt::sra
