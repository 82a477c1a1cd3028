#include "apps/cli/simulation_report.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <numbers>
#include <span>
#include <utility>
#include <vector>

#include "apps/cli/result_json.h"
#include "apps/cli/text_table.h"
#include "host/base/number_text.h"
#include "host/numeric/algebra/symmetric_eigen.h"

namespace brenvolt::cli {
namespace {

using Json = nlohmann::ordered_json;
using namespace result_columns;

std::string SummaryNumber(double value, std::string_view identifier) {
  constexpr int kDigits = 5;
  return identifier == "n"_column.identifier ? FormatNumber("%.0f", value) : ReadableNumber(value, kDigits);
}

std::string CorrelationNumber(double value, std::string_view /*identifier*/) {
  return std::isnan(value) ? "-" : FormatNumber("%.4f", value);
}

// A repair changes every entry, so one that stayed says that there was none.
bool IsRepaired(const ResultTable& pairs) {
  return std::ranges::any_of(pairs.rows, [](const ResultRow& pair) {
    return pair.Number("asked"_column) != pair.Number("used"_column);
  });
}

// All pairs, or those whose ranks correlate least as those of normal scores would: 6/pi asin(r/2) (Pearson
// 1907).
std::vector<ResultRow> ShownPairs(const ResultTable& pairs) {
  std::vector<ResultRow> shown = pairs.rows;
  if (shown.size() <= kMostPairsShown) return shown;
  const auto miss = [](const ResultRow& pair) {
    const double reached = pair.Number("spearman"_column);
    const double expected = 6 / std::numbers::pi * std::asin(pair.Number("used"_column) / 2);
    return std::isnan(reached) ? 0.0 : std::abs(reached - expected);
  };
  std::ranges::stable_sort(shown, std::ranges::greater(), miss);
  shown.resize(kMostPairsShown);
  return shown;
}

// Calls `visit(pair, i, j)` for the row of each pair of variables.
template <class Visit>
void ForEachPair(const ResultTable& pairs, std::size_t variables, const Visit& visit) {
  std::size_t row = 0;
  for (std::size_t i = 0; i < variables; ++i) {
    for (std::size_t j = i + 1; j < variables; ++j) visit(pairs.rows[row++], i, j);
  }
}

Json Names(const Spreadsheet& output, std::size_t i, std::size_t j) {
  return {output.VariableAt(i).Name(), output.VariableAt(j).Name()};
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

std::string CorrelationsText(const ResultTable& pairs) {
  std::vector<ResultTable::Heading> columns = pairs.headings;
  if (!IsRepaired(pairs)) {
    std::erase_if(columns, [](const auto& column) { return column.identifier == "used"_column.identifier; });
  }
  std::string text = TableText(ShownPairs(pairs), "Correlation of", columns, CorrelationNumber);
  if (pairs.rows.size() > kMostPairsShown) {
    text += "  Farthest off of " + std::to_string(pairs.rows.size()) + " pairs; --format json has all.\n";
  }
  return text;
}

Json CorrelationsJson(const ResultTable& pairs, const Spreadsheet& output) {
  Json list = Json::array();
  ForEachPair(pairs, output.VariableCount(), [&](const ResultRow& pair, std::size_t i, std::size_t j) {
    Json json = {{"variables", Names(output, i, j)}};
    AddNumbers(pair, kCorrelations, json);
    list.push_back(std::move(json));
  });
  return list;
}

Json RepairJson(const ResultTable& pairs, const Spreadsheet& output) {
  const std::size_t k = output.VariableCount();
  std::vector<double> asked(k * k, 1.0);
  double largest = 0;
  Json change;
  ForEachPair(pairs, k, [&](const ResultRow& pair, std::size_t i, std::size_t j) {
    const double from = pair.Number("asked"_column);
    const double to = pair.Number("used"_column);
    asked[i * k + j] = asked[j * k + i] = from;
    if (!change.is_null() && std::abs(to - from) <= largest) return;
    largest = std::abs(to - from);
    change = {{"variables", Names(output, i, j)}, {"from", from}, {"to", to}};
  });
  std::vector<double> eigenvalues(k, std::numeric_limits<double>::quiet_NaN());
  // Where there is none, the value stays NaN.
  static_cast<void>(SymmetricEigen(asked, k, eigenvalues));
  return {{"smallestEigenvalue", NumberJson(eigenvalues.front())}, {"largestChange", change}};
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
