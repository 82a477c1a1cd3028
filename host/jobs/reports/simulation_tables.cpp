#include "host/jobs/reports/simulation_tables.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "host/analysis/quantity_text.h"
#include "host/base/number_text.h"

namespace brenvolt {
namespace {

using namespace result_columns;

// Places among the data show against the spread.
std::string SummaryNumber(const ResultRow& row, std::string_view identifier) {
  constexpr int kDigits = 5;
  for (const ResultColumn& moment : kMoments) {
    if (moment.identifier == identifier) return Cell(row, moment, kDigits);
  }
  const double value = row.numbers.find(identifier)->second;
  return ReadableNumber(value, DigitsFor(value, row.Number("standard_deviation"_column), kDigits));
}

std::string CorrelationNumber(const ResultRow& row, std::string_view identifier) {
  const double value = row.numbers.find(identifier)->second;
  return std::isnan(value) ? "-" : FormatNumber("%.4f", value);
}

// All pairs, or the strongest of those asked for, then those whose ranks correlate least as those of normal scores
// would: 6/pi asin(r/2) (Pearson 1907).
std::vector<ResultRow> ShownPairs(const SimulationResults& results, std::size_t most) {
  std::vector<ResultRow> shown;
  for (const SimulatedPair& pair : results.pairs) shown.push_back(pair.correlations);
  if (shown.size() <= most) return shown;
  const auto miss = [](const ResultRow& pair) {
    const double reached = pair.Number("spearman"_column);
    const double expected = 6 / std::numbers::pi * std::asin(pair.Number("used"_column) / 2);
    return std::isnan(reached) ? 0.0 : std::abs(reached - expected);
  };
  const auto weight = [&miss](const ResultRow& pair) {
    return std::pair(std::abs(pair.Number("asked"_column)), miss(pair));
  };
  std::ranges::stable_sort(shown, std::ranges::greater(), weight);
  shown.resize(most);
  return shown;
}

// The columns as the result table heads them, after the names of the rows.
ReportTable RowsTable(std::span<const ResultRow> rows, const char* nameHeading,
                      std::span<const ResultTable::Heading> columns,
                      std::string (*number)(const ResultRow& row, std::string_view identifier)) {
  ReportTable table;
  table.AddText(nameHeading);
  for (const ResultTable::Heading& column : columns) table.AddNumber(column.text);
  for (const ResultRow& row : rows) {
    std::vector<std::string> cells{row.name};
    for (const ResultTable::Heading& column : columns) cells.push_back(number(row, column.identifier));
    table.AddRow(std::move(cells));
  }
  return table;
}

}  // namespace

SummaryTables TablesOf(const ResultTable& summary) {
  const std::span<const ResultTable::Heading> columns(summary.headings);
  const auto percentile = std::ranges::find_if(columns, [](const ResultTable::Heading& column) {
    return NumberIn(column.identifier, "percentile"_column).has_value();
  });
  const auto moments = static_cast<std::size_t>(percentile - columns.begin());
  return {RowsTable(summary.rows, "Variable", columns.first(moments), SummaryNumber),
          RowsTable(summary.rows, "Variable", columns.subspan(moments), SummaryNumber)};
}

ReportTable CorrelationTable(const SimulationResults& results, std::size_t most) {
  std::vector<ResultTable::Heading> columns = results.pairHeadings;
  if (!results.Repair()) {
    std::erase_if(columns, [](const auto& column) { return column.identifier == "used"_column.identifier; });
  }
  ReportTable table = RowsTable(ShownPairs(results, most), "Correlation of", columns, CorrelationNumber);
  if (results.pairs.size() > most) {
    table.notes.push_back(
        "Of " + std::to_string(results.pairs.size()) + " pairs " +
        std::to_string(results.pairs.size() - most) +
        " are not shown, those of the weakest correlations asked for; --format json has all.");
  }
  return table;
}

}  // namespace brenvolt
