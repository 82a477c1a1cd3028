#include "apps/cli/fit_report.h"

#include <cmath>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <optional>
#include <vector>

#include "apps/cli/session.h"
#include "apps/cli/text_table.h"
#include "host/analysis/result_columns.h"
#include "host/base/error.h"
#include "host/base/number_text.h"

namespace brenvolt::cli {
namespace {

using Json = nlohmann::ordered_json;

// A column of a result table by its name.
class Columns {
 public:
  explicit Columns(const Spreadsheet& table) : table_(table) {}
  // The value in a row; NaN where it is missing. Throws Error for a column that the table does not have.
  double Number(std::string_view column, std::size_t row) const { return Find(column).Values()[row]; }
  std::string Text(std::string_view column, std::size_t row) const {
    const Variable& variable = Find(column);
    return std::string(variable.Label(variable.Values()[row]).value_or(""));
  }
  // The values of the columns "Parameter 1", "Parameter 2", … in a row, up to the first that is missing.
  std::vector<double> Parameters(std::size_t row) const {
    std::vector<double> values;
    for (;;) {
      const auto column =
          table_.FindVariable(std::string(result_column::kParameter) + std::to_string(values.size() + 1));
      if (!column || table_.VariableAt(*column).IsMissing(row)) return values;
      values.push_back(table_.VariableAt(*column).Values()[row]);
    }
  }

 private:
  const Variable& Find(std::string_view column) const {
    const auto index = table_.FindVariable(column);
    if (!index) throw Error("the table has no column " + std::string(column), table_.Name());
    return table_.VariableAt(*index);
  }

  const Spreadsheet& table_;
};

// The ranked table of a variable (from 0), or nothing where the variable has no fit.
std::optional<Spreadsheet> RankedTable(AutomationObject& dialog, std::size_t variable) {
  dialog.Put("QuickTabVariable", static_cast<std::int32_t>(variable + 1));
  if (dialog.Get("QuickTabDistribution").ToInteger() == 0) return std::nullopt;
  return TableOf(dialog.Get("QuickTabDistributionSummaryStats"));
}

Json NumberOrNull(double value) {
  return std::isfinite(value) ? Json(value) : Json(nullptr);
}

Json FitJson(const Spreadsheet& table, std::size_t row) {
  const Columns columns(table);
  const std::vector<double> parameters = columns.Parameters(row);
  const Json none = {{"statistic", nullptr}, {"pValue", nullptr}};
  return {{"rank", row + 1},
          {"code", static_cast<int>(columns.Number(result_column::kCode, row))},
          {"distribution", table.CaseName(row)},
          {"description", columns.Text(result_column::kDescription, row)},
          {"parameters", parameters.empty() ? Json(nullptr) : Json(parameters)},
          {"offset", NumberOrNull(columns.Number(result_column::kOffset, row))},
          {"logLikelihood", NumberOrNull(columns.Number(result_column::kLogLikelihood, row))},
          {"kolmogorovSmirnov",
           {{"statistic", NumberOrNull(columns.Number(result_column::kKolmogorovSmirnov, row))},
            {"pValue", NumberOrNull(columns.Number(result_column::kKolmogorovSmirnovPValue, row))}}},
          {"chiSquare", {{"statistic", nullptr}, {"degreesOfFreedom", nullptr}, {"pValue", nullptr}}},
          {"andersonDarling", none}};
}

Json VariableJson(const Spreadsheet& summary, std::size_t variable,
                  const std::optional<Spreadsheet>& ranked) {
  const Columns columns(summary);
  Json fits = Json::array();
  for (std::size_t row = 0; ranked && row < ranked->CaseCount(); ++row) fits.push_back(FitJson(*ranked, row));
  return {{"name", summary.CaseName(variable)},
          {"kind", columns.Text(result_column::kKind, variable)},
          {"n", static_cast<std::int64_t>(columns.Number(result_column::kCount, variable))},
          {"missing", static_cast<std::int64_t>(columns.Number(result_column::kMissing, variable))},
          {"mean", NumberOrNull(columns.Number(result_column::kMean, variable))},
          {"standardDeviation", NumberOrNull(columns.Number(result_column::kStandardDeviation, variable))},
          {"skewness", NumberOrNull(columns.Number(result_column::kSkewness, variable))},
          {"kurtosis", NumberOrNull(columns.Number(result_column::kKurtosis, variable))},
          {"minimum", NumberOrNull(columns.Number(result_column::kMinimum, variable))},
          {"maximum", NumberOrNull(columns.Number(result_column::kMaximum, variable))},
          {"rankedBy", "ks"},
          {"fits", fits}};
}

constexpr int kPValueDigits = 4;

std::string RankingText(const Spreadsheet& ranked) {
  const Columns columns(ranked);
  TextTable table;
  table.AddColumn("Rank", TextTable::Align::kRight);
  table.AddColumn("Distribution", TextTable::Align::kLeft);
  table.AddColumn("Offset", TextTable::Align::kRight);
  table.AddColumn("K-S d", TextTable::Align::kRight);
  table.AddColumn("p-value", TextTable::Align::kRight);
  table.AddColumn("Log-likelihood", TextTable::Align::kRight);
  for (std::size_t row = 0; row < ranked.CaseCount(); ++row) {
    const bool valid = !columns.Parameters(row).empty();
    table.AddRow({std::to_string(row + 1),
                  columns.Text(result_column::kDescription, row) + (valid ? "" : " (no fit)"),
                  ReadableNumber(columns.Number(result_column::kOffset, row)),
                  ReadableNumber(columns.Number(result_column::kKolmogorovSmirnov, row)),
                  ReadableNumber(columns.Number(result_column::kKolmogorovSmirnovPValue, row), kPValueDigits),
                  ReadableNumber(columns.Number(result_column::kLogLikelihood, row))});
  }
  return table.Text();
}

std::string VariableText(const Spreadsheet& summary, std::size_t variable,
                         const std::optional<Spreadsheet>& ranked) {
  const Columns columns(summary);
  const auto number = [&](std::string_view column) {
    return ReadableNumber(columns.Number(column, variable));
  };
  const auto count = [&](std::string_view column) {
    return FormatNumber("%.0f", columns.Number(column, variable));
  };
  std::string text =
      std::string(summary.CaseName(variable)) + " (" + columns.Text(result_column::kKind, variable) + ")\n";
  text += "  n " + count(result_column::kCount) + ", missing " + count(result_column::kMissing) + ", mean " +
          number(result_column::kMean) + ", std.dev. " + number(result_column::kStandardDeviation) +
          ", skewness " + number(result_column::kSkewness) + ", kurtosis " +
          number(result_column::kKurtosis) + ", range " + number(result_column::kMinimum) + " to " +
          number(result_column::kMaximum) + "\n";
  if (!ranked) return text + "  nothing to fit: no valid values, or all of them equal\n";
  return text + "  " + ranked->Title() + "\n" + RankingText(*ranked);
}

}  // namespace

void ReportFit(AutomationObject& dialog, const Spreadsheet& input, ReportFormat format) {
  const Variant summaryDocument = dialog.Get("SummaryStats");
  const Spreadsheet& summary = TableOf(summaryDocument);
  const std::string weights = input.WeightVariable() ? input.VariableAt(*input.WeightVariable()).Name() : "";
  const std::string selection = input.Selection().enabled ? input.Selection().condition : "";
  Json report = {{"variables", Json::array()}};
  if (!weights.empty()) report["weights"] = weights;
  if (!selection.empty()) report["selection"] = selection;
  std::string text;
  if (!weights.empty()) text += "Cases weighted by " + weights + "\n";
  if (!selection.empty()) text += "Cases with " + selection + "\n";
  for (std::size_t i = 0; i < summary.CaseCount(); ++i) {
    const auto ranked = RankedTable(dialog, i);
    if (!text.empty()) text += '\n';
    text += VariableText(summary, i, ranked);
    report["variables"].push_back(VariableJson(summary, i, ranked));
  }
  std::fputs(format == ReportFormat::kJson ? JsonText(report).c_str() : text.c_str(), stdout);
}

}  // namespace brenvolt::cli
