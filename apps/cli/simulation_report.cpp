#include "apps/cli/simulation_report.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>
#include <span>
#include <utility>
#include <vector>

#include "apps/cli/result_json.h"
#include "apps/cli/text_table.h"
#include "host/base/number_text.h"

namespace brenvolt::cli {
namespace {

using Json = nlohmann::ordered_json;
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
std::vector<ResultRow> ShownPairs(const SimulationResults& results) {
  std::vector<ResultRow> shown;
  for (const SimulatedPair& pair : results.pairs) shown.push_back(pair.correlations);
  if (shown.size() <= kMostPairsShown) return shown;
  const auto miss = [](const ResultRow& pair) {
    const double reached = pair.Number("spearman"_column);
    const double expected = 6 / std::numbers::pi * std::asin(pair.Number("used"_column) / 2);
    return std::isnan(reached) ? 0.0 : std::abs(reached - expected);
  };
  const auto weight = [&miss](const ResultRow& pair) {
    return std::pair(std::abs(pair.Number("asked"_column)), miss(pair));
  };
  std::ranges::stable_sort(shown, std::ranges::greater(), weight);
  shown.resize(kMostPairsShown);
  return shown;
}

Json Names(const SimulatedPair& pair) {
  return {pair.first, pair.second};
}

}  // namespace

// Moments and percentiles apart, so that a line fits a terminal.
std::string SummaryText(const ResultTable& summary) {
  const std::span<const ResultTable::Heading> columns(summary.headings);
  const auto percentile = std::ranges::find_if(columns, [](const ResultTable::Heading& column) {
    return NumberIn(column.identifier, "percentile"_column).has_value();
  });
  const auto moments = static_cast<std::size_t>(percentile - columns.begin());
  return TableText(summary.rows, "Variable", columns.first(moments), SummaryNumber) + "\n" +
         TableText(summary.rows, "Variable", columns.subspan(moments), SummaryNumber);
}

Json SummaryJson(const ResultTable& summary) {
  Json variables = RowsJson(summary.rows, "name", kMoments);
  for (std::size_t i = 0; i < summary.rows.size(); ++i) {
    Json percentiles = Json::object();
    for (const ResultTable::Heading& column : summary.headings) {
      if (const auto percent = NumberIn(column.identifier, "percentile"_column))
        percentiles[std::string(*percent)] = NumberJson(summary.rows[i].numbers.at(column.identifier));
    }
    variables[i]["percentiles"] = percentiles;
  }
  return variables;
}

std::string CorrelationsText(const SimulationResults& results) {
  std::vector<ResultTable::Heading> columns = results.pairHeadings;
  if (!results.Repair()) {
    std::erase_if(columns, [](const auto& column) { return column.identifier == "used"_column.identifier; });
  }
  std::string text = TableText(ShownPairs(results), "Correlation of", columns, CorrelationNumber);
  if (results.pairs.size() > kMostPairsShown) {
    text += "  Of " + std::to_string(results.pairs.size()) + " pairs " +
            std::to_string(results.pairs.size() - kMostPairsShown) +
            " are not shown, those of the weakest correlations asked for; --format json has all.\n";
  }
  for (const std::string& note : results.Notes()) text += "  " + note + "\n";
  return text;
}

Json CorrelationsJson(const SimulationResults& results) {
  Json list = Json::array();
  for (const SimulatedPair& pair : results.pairs) {
    Json json = {{"variables", Names(pair)}};
    AddNumbers(pair.correlations, kCorrelations, json);
    list.push_back(std::move(json));
  }
  return list;
}

Json RepairJson(const MatrixRepair& repair) {
  const SimulatedPair& pair = *repair.mostChanged;
  return {{"smallestEigenvalue", NumberJson(repair.smallestEigenvalue)},
          {"largestChange",
           {{"variables", Names(pair)},
            {"from", pair.correlations.Number("asked"_column)},
            {"to", pair.correlations.Number("used"_column)}}}};
}

Json MatrixJson(const Spreadsheet& matrix) {
  const std::size_t m = matrix.VariableCount();
  Json names = Json::array();
  Json rows = Json::array();
  for (std::size_t i = 0; i < m; ++i) {
    names.push_back(matrix.VariableAt(i).Name());
    Json row = Json::array();
    for (std::size_t j = 0; j < m; ++j) row.push_back(NumberJson(matrix.VariableAt(j).Values()[i]));
    rows.push_back(row);
  }
  return {{"variables", names}, {"correlations", rows}};
}

}  // namespace brenvolt::cli
