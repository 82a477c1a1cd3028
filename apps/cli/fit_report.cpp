#include "apps/cli/fit_report.h"

#include <cmath>
#include <cstdio>
#include <limits>
#include <nlohmann/json.hpp>
#include <optional>

#include "apps/cli/session.h"
#include "apps/cli/text_table.h"
#include "host/base/number_text.h"

namespace brenvolt::cli {
namespace {

using Json = nlohmann::ordered_json;

// A column of a result table by its name.
class Columns {
 public:
  explicit Columns(const Spreadsheet& table) : table_(table) {}
  double Number(std::string_view column, std::size_t row) const {
    const auto index = table_.FindVariable(column);
    return index ? table_.VariableAt(*index).Values()[row] : std::numeric_limits<double>::quiet_NaN();
  }
  std::string Text(std::string_view column, std::size_t row) const {
    const auto index = table_.FindVariable(column);
    if (!index) return {};
    const Variable& variable = table_.VariableAt(*index);
    return std::string(variable.Label(variable.Values()[row]).value_or(""));
  }

 private:
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
  Json parameters = Json::array();
  for (int p = 1;; ++p) {
    const double value = columns.Number("Parameter " + std::to_string(p), row);
    if (std::isnan(value)) break;
    parameters.push_back(value);
  }
  const bool valid = !parameters.empty();
  Json none = {{"statistic", nullptr}, {"pValue", nullptr}};
  return {{"rank", row + 1},
          {"code", static_cast<int>(columns.Number("Code", row))},
          {"distribution", table.CaseName(row)},
          {"description", columns.Text("(Params Description)", row)},
          {"parameters", valid ? parameters : Json(nullptr)},
          {"offset", NumberOrNull(columns.Number("Offset", row))},
          {"logLikelihood", NumberOrNull(columns.Number("Log-likelihood", row))},
          {"kolmogorovSmirnov",
           {{"statistic", NumberOrNull(columns.Number("K-S d", row))},
            {"pValue", NumberOrNull(columns.Number("K-S p-value", row))}}},
          {"chiSquare", {{"statistic", nullptr}, {"degreesOfFreedom", nullptr}, {"pValue", nullptr}}},
          {"andersonDarling", none}};
}

Json VariableJson(const Spreadsheet& summary, std::size_t variable,
                  const std::optional<Spreadsheet>& ranked) {
  const Columns columns(summary);
  Json fits = Json::array();
  for (std::size_t row = 0; ranked && row < ranked->CaseCount(); ++row) fits.push_back(FitJson(*ranked, row));
  return {{"name", summary.CaseName(variable)},
          {"kind", columns.Text("Kind", variable)},
          {"n", static_cast<std::int64_t>(columns.Number("Valid N", variable))},
          {"missing", static_cast<std::int64_t>(columns.Number("Missing", variable))},
          {"mean", NumberOrNull(columns.Number("Mean", variable))},
          {"standardDeviation", NumberOrNull(columns.Number("Std.Dev.", variable))},
          {"skewness", NumberOrNull(columns.Number("Skewness", variable))},
          {"kurtosis", NumberOrNull(columns.Number("Kurtosis", variable))},
          {"minimum", NumberOrNull(columns.Number("Minimum", variable))},
          {"maximum", NumberOrNull(columns.Number("Maximum", variable))},
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
    const bool valid = !std::isnan(columns.Number("Parameter 1", row));
    table.AddRow({std::to_string(row + 1),
                  columns.Text("(Params Description)", row) + (valid ? "" : " (no fit)"),
                  ReadableNumber(columns.Number("Offset", row)), ReadableNumber(columns.Number("K-S d", row)),
                  ReadableNumber(columns.Number("K-S p-value", row), kPValueDigits),
                  ReadableNumber(columns.Number("Log-likelihood", row))});
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
  std::string text = std::string(summary.CaseName(variable)) + " (" + columns.Text("Kind", variable) + ")\n";
  text += "  n " + count("Valid N") + ", missing " + count("Missing") + ", mean " + number("Mean") +
          ", std.dev. " + number("Std.Dev.") + ", skewness " + number("Skewness") + ", kurtosis " +
          number("Kurtosis") + ", range " + number("Minimum") + " to " + number("Maximum") + "\n";
  if (!ranked) return text + "  nothing to fit: no valid values, or all of them equal\n";
  return text + "  " + ranked->Title() + "\n" + RankingText(*ranked);
}

}  // namespace

void ReportFit(AutomationObject& dialog, ReportFormat format) {
  const Variant summaryDocument = dialog.Get("SummaryStats");
  const Spreadsheet& summary = TableOf(summaryDocument);
  Json variables = Json::array();
  for (std::size_t i = 0; i < summary.CaseCount(); ++i) {
    const auto ranked = RankedTable(dialog, i);
    if (format == ReportFormat::kJson) {
      variables.push_back(VariableJson(summary, i, ranked));
    } else {
      std::printf("%s%s", i > 0 ? "\n" : "", VariableText(summary, i, ranked).c_str());
    }
  }
  if (format == ReportFormat::kJson) std::printf("%s\n", Json{{"variables", variables}}.dump(2).c_str());
}

}  // namespace brenvolt::cli
