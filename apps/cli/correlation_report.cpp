#include "apps/cli/correlation_report.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <numeric>
#include <vector>

#include "apps/cli/text_table.h"
#include "host/base/number_text.h"
#include "host/numeric/algebra/symmetric_eigen.h"

namespace brenvolt::cli {
namespace {

using Json = nlohmann::ordered_json;

// The columns of the table of pairs, in their order.
enum Column : std::size_t { kAsked, kUsed, kPearson, kSpearman, kColumns };
constexpr const char* kNames[kColumns] = {"asked", "used", "pearson", "spearman"};

double Value(const Spreadsheet& summary, Column column, std::size_t row) {
  return summary.VariableAt(column).Values()[row];
}

// A repair changes every entry, so one that stayed says that there was none.
bool IsRepaired(const Spreadsheet& summary) {
  return !std::ranges::equal(summary.VariableAt(kAsked).Values(), summary.VariableAt(kUsed).Values());
}

// All pairs, or those whose ranks correlate least as those of normal scores would: 6/pi asin(r/2) (Pearson
// 1907).
std::vector<std::size_t> ShownPairs(const Spreadsheet& summary) {
  std::vector<std::size_t> pairs(summary.CaseCount());
  std::iota(pairs.begin(), pairs.end(), std::size_t{0});
  if (pairs.size() <= kMostPairsShown) return pairs;
  const auto miss = [&](std::size_t row) {
    const double reached = Value(summary, kSpearman, row);
    const double expected = 6 / std::numbers::pi * std::asin(Value(summary, kUsed, row) / 2);
    return std::isnan(reached) ? 0.0 : std::abs(reached - expected);
  };
  std::ranges::stable_sort(pairs, [&](std::size_t a, std::size_t b) { return miss(a) > miss(b); });
  pairs.resize(kMostPairsShown);
  return pairs;
}

Json Number(double value) {
  return std::isfinite(value) ? Json(value) : Json(nullptr);
}

}  // namespace

std::string CorrelationsText(const Spreadsheet& summary) {
  const bool repaired = IsRepaired(summary);
  TextTable table;
  table.AddColumn("Correlation of", TextTable::Align::kLeft);
  for (std::size_t c = 0; c < kColumns; ++c) {
    if (c != kUsed || repaired) table.AddColumn(summary.VariableAt(c).Name(), TextTable::Align::kRight);
  }
  for (const std::size_t row : ShownPairs(summary)) {
    std::vector<std::string> cells{summary.CaseName(row)};
    for (std::size_t c = 0; c < kColumns; ++c) {
      const double value = summary.VariableAt(c).Values()[row];
      if (c != kUsed || repaired) cells.push_back(std::isnan(value) ? "-" : FormatNumber("%.4f", value));
    }
    table.AddRow(std::move(cells));
  }
  std::string text = table.Text();
  if (summary.CaseCount() > kMostPairsShown) {
    text += "  Farthest off of " + std::to_string(summary.CaseCount()) + " pairs; --format json has all.\n";
  }
  return text;
}

Json CorrelationsJson(const Spreadsheet& summary, const Spreadsheet& output) {
  Json pairs = Json::array();
  for (std::size_t i = 0; i < output.VariableCount(); ++i) {
    for (std::size_t j = i + 1; j < output.VariableCount(); ++j) {
      const std::size_t row = pairs.size();
      Json pair = {{"variables", {output.VariableAt(i).Name(), output.VariableAt(j).Name()}}};
      for (std::size_t c = 0; c < kColumns; ++c)
        pair[kNames[c]] = Number(Value(summary, static_cast<Column>(c), row));
      pairs.push_back(pair);
    }
  }
  return pairs;
}

Json RepairJson(const Spreadsheet& summary, const Spreadsheet& output) {
  const std::size_t k = output.VariableCount();
  std::vector<double> asked(k * k, 1.0);
  std::size_t row = 0;
  double largest = 0;
  Json change;
  for (std::size_t i = 0; i < k; ++i) {
    for (std::size_t j = i + 1; j < k; ++j, ++row) {
      const double from = Value(summary, kAsked, row);
      const double to = Value(summary, kUsed, row);
      asked[i * k + j] = asked[j * k + i] = from;
      if (!change.is_null() && std::abs(to - from) <= largest) continue;
      largest = std::abs(to - from);
      change = {{"variables", {output.VariableAt(i).Name(), output.VariableAt(j).Name()}},
                {"from", from},
                {"to", to}};
    }
  }
  std::vector<double> eigenvalues(k, std::numeric_limits<double>::quiet_NaN());
  // Where there is none, the value stays NaN.
  static_cast<void>(SymmetricEigen(asked, k, eigenvalues));
  return {{"smallestEigenvalue", Number(eigenvalues.front())}, {"largestChange", change}};
}

Json MatrixJson(const Spreadsheet& matrix) {
  const std::size_t m = matrix.VariableCount();
  Json names = Json::array();
  Json rows = Json::array();
  for (std::size_t i = 0; i < m; ++i) {
    names.push_back(matrix.VariableAt(i).Name());
    Json row = Json::array();
    for (std::size_t j = 0; j < m; ++j) row.push_back(Number(matrix.VariableAt(j).Values()[i]));
    rows.push_back(row);
  }
  return {{"variables", names}, {"correlations", rows}};
}

}  // namespace brenvolt::cli
