// A result table of the analysis, read by the names of its columns (host/analysis/result_columns.h).
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "host/automation/variant.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt {

// The spreadsheet behind an automation call's result. Throws Error where there is none.
const Spreadsheet& TableOf(const Variant& result);

class ResultTable {
 public:
  // The sheet must outlive the table.
  explicit ResultTable(const Spreadsheet& sheet) : sheet_(sheet) {}

  std::size_t RowCount() const { return sheet_.CaseCount(); }
  std::string RowName(std::size_t row) const { return std::string(sheet_.CaseName(row)); }
  // Throws Error for a row that the table does not have.
  std::size_t RowNamed(std::string_view name) const;
  bool Has(std::string_view column) const { return sheet_.FindVariable(column).has_value(); }
  // The value in a row; NaN where it is missing. Throws Error for a column that the table does not have.
  double Number(std::string_view column, std::size_t row) const;
  std::string Text(std::string_view column, std::size_t row) const;
  // The values of the columns "NAME1", "NAME2", … in a row, up to the first that is missing.
  std::vector<double> Numbered(std::string_view name, std::size_t row) const;

 private:
  const Variable& Find(std::string_view column) const;

  const Spreadsheet& sheet_;
};

}  // namespace brenvolt
