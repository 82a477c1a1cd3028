// A result table of an analysis as a program takes it: numbers and texts by the identifiers of their columns
// (host/analysis/result_columns.h), read once from a document, of which nothing is kept.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/analysis/result_columns.h"
#include "host/automation/variant.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt {

struct ResultRow {
  std::string name;        // for people
  std::string identifier;  // empty but where the row is a statistic or one of several of a kind
  std::map<std::string, double, std::less<>> numbers;  // NaN if a value is missing
  std::map<std::string, std::string, std::less<>> texts;

  bool Has(const ResultColumn& column) const { return numbers.contains(column.identifier); }
  // Both throw Error for a column that the table does not have.
  double Number(const ResultColumn& column) const;
  const std::string& Text(const ResultColumn& column) const;
  // The values of the columns 1, 2, … of a kind, up to the first that is missing.
  std::vector<double> Numbered(const ResultColumn& column) const;
};

struct ResultTable {
  struct Heading {
    std::string identifier;
    std::string text;
  };
  std::string title;
  std::vector<Heading> headings;  // of the columns, in their order
  std::vector<ResultRow> rows;

  // The row that is a statistic. Throws Error if the table does not have it.
  const ResultRow& Row(const ResultColumn& statistic) const;
};

// The spreadsheet of the document that an automation call gave. Throws Error if that is none.
const Spreadsheet& TableOf(const Variant& result);

ResultTable ReadResultTable(const Spreadsheet& sheet);
inline ResultTable ReadResultTable(const Variant& result) {
  return ReadResultTable(TableOf(result));
}

// "0.135" of "percentile.0.135"; nothing if an identifier is not one of this column's.
std::optional<std::string_view> NumberIn(std::string_view identifier, const ResultColumn& column);

}  // namespace brenvolt
