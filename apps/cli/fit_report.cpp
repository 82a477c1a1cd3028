#include "apps/cli/fit_report.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <optional>
#include <vector>

#include "apps/cli/fit_json.h"
#include "apps/cli/text_table.h"
#include "apps/cli/wrong_call.h"
#include "host/analysis/result_columns.h"
#include "host/application/result_table.h"
#include "host/base/number_text.h"

namespace brenvolt::cli {
namespace {

using namespace result_column;

// The ranked table of a variable (from 0), or nothing where the variable has no fit.
std::optional<Spreadsheet> RankedTable(AutomationObject& dialog, std::size_t variable) {
  dialog.Put("QuickTabVariable", static_cast<std::int32_t>(variable + 1));
  if (dialog.Get("QuickTabDistribution").ToInteger() == 0) return std::nullopt;
  return TableOf(dialog.Get("QuickTabDistributionSummaryStats"));
}

// A test as the table for people shows it.
struct TestColumns {
  std::string_view name;  // as in the options of the command
  const char* statisticHeading;
  const char* pValueHeading;
  std::string_view statistic;
  std::string_view pValue;
  std::string_view bootstrapPValue;
};
constexpr std::array<TestColumns, 3> kTests{
    {{"ks", "K-S d", "K-S p", kKolmogorovSmirnov, kKolmogorovSmirnovPValue, kBootstrapKolmogorovSmirnov},
     {"chi-square", "Chi-sq.", "Chi-sq. p", kChiSquare, kChiSquarePValue, kBootstrapChiSquare},
     {"anderson-darling", "A-D", "A-D p", kAndersonDarling, kAndersonDarlingPValue,
      kBootstrapAndersonDarling}}};

// A description of more characters goes on in the next line, broken behind a comma.
constexpr std::size_t kDescriptionWidth = 46;

std::vector<std::string> BrokenAtCommas(std::string text) {
  std::vector<std::string> lines;
  while (text.size() > kDescriptionWidth) {
    const std::size_t comma = text.rfind(", ", kDescriptionWidth - 1);
    if (comma == std::string::npos) break;
    lines.push_back(text.substr(0, comma + 1));
    text = "  " + text.substr(comma + 2);
  }
  lines.push_back(std::move(text));
  return lines;
}

// Four decimals say all that one decides by; a smaller one is not 0.
std::string PValueText(double p) {
  constexpr double kSmallest = 0.0001;
  if (std::isnan(p)) return "-";
  return p < kSmallest ? "<0.0001" : FormatNumber("%.4f", p);
}

// The statistic of the ranking test with its p-value, then the p-values of the other tests, then the AIC. The
// p-values are the bootstrap's when `bootstrapped`, none for a fit without.
class RankingText {
 public:
  RankingText(const Spreadsheet& ranked, const std::string& rankedBy, bool continuous, bool bootstrapped)
      : ranked_(ranked), bootstrapped_(bootstrapped) {
    for (const TestColumns& test : kTests) {
      if (test.name == rankedBy) tests_.insert(tests_.begin(), &test);
      if (test.name != rankedBy && (continuous || test.name != "anderson-darling")) tests_.push_back(&test);
    }
  }

  std::string Text() {
    table_.AddColumn("Rank", TextTable::Align::kRight);
    table_.AddColumn("Distribution", TextTable::Align::kLeft);
    table_.AddColumn(tests_.front()->statisticHeading, TextTable::Align::kRight);
    for (const TestColumns* test : tests_) table_.AddColumn(test->pValueHeading, TextTable::Align::kRight);
    table_.AddColumn("AIC", TextTable::Align::kRight);
    std::string failures;
    for (std::size_t row = 0; row < ranked_.RowCount(); ++row) {
      if (!ranked_.Numbered(kParameter, row).empty()) {
        AddFit(row);
      } else {
        failures += "  no fit: " + ranked_.RowName(row) + ", " + ranked_.Text(kReason, row) + "\n";
      }
    }
    return table_.Text() + failures;
  }

 private:
  void AddFit(std::size_t row) {
    constexpr int kStatisticDigits = 4;
    std::string description = ranked_.Text(kDescription, row);
    if (description.find('(') == std::string::npos) description += BareValues(row);
    const double offset = ranked_.Number(kOffset, row);
    if (!std::isnan(offset) && offset != 0) description += ", offset " + ReadableNumber(offset);
    const std::vector<std::string> lines = BrokenAtCommas(std::move(description));
    std::vector<std::string> cells{
        std::to_string(row + 1), lines.front(),
        ReadableNumber(ranked_.Number(tests_.front()->statistic, row), kStatisticDigits)};
    for (const TestColumns* test : tests_) {
      cells.push_back(PValueText(PValue(*test, row)));
    }
    const double aic = ranked_.Number(kAic, row);
    cells.push_back(std::isnan(aic) ? "-" : FormatNumber("%.2f", aic));
    table_.AddRow(std::move(cells));
    for (std::size_t i = 1; i < lines.size(); ++i) table_.AddRow({"", lines[i]});
  }

  // The values of a fit whose description has none; of a histogram there would be too many.
  std::string BareValues(std::size_t row) const {
    constexpr double kHistogramCode = 15;
    constexpr int kValueDigits = 5;
    std::string text;
    if (ranked_.Number(kCode, row) == kHistogramCode) return text;
    for (const double value : ranked_.Numbered(kParameter, row)) {
      text += (text.empty() ? "(" : ", ") + ReadableNumber(value, kValueDigits);
    }
    return text.empty() ? text : text + ")";
  }

  // NaN where there is none; a table in which no fit has a bootstrap lacks its columns.
  double PValue(const TestColumns& test, std::size_t row) const {
    if (!bootstrapped_) return ranked_.Number(test.pValue, row);
    return ranked_.Has(kBootstrapSamples) ? ranked_.Number(test.bootstrapPValue, row) : std::nan("");
  }

  ResultTable ranked_;
  bool bootstrapped_;
  std::vector<const TestColumns*> tests_;
  TextTable table_;
};

std::string VariableText(const ResultTable& summary, std::size_t variable,
                         const std::optional<Spreadsheet>& ranked, const std::string& rankedBy,
                         bool bootstrapped) {
  const auto number = [&](std::string_view column) {
    return ReadableNumber(summary.Number(column, variable));
  };
  const auto count = [&](std::string_view column) {
    return FormatNumber("%.0f", summary.Number(column, variable));
  };
  const std::string kind = summary.Text(kKind, variable);
  std::string text = summary.RowName(variable) + " (" + kind + ")\n";
  text += "  n " + count(kCount) + ", missing " + count(kMissing) + ", mean " + number(kMean) +
          ", std.dev. " + number(kStandardDeviation) + "\n  skewness " + number(kSkewness) + ", kurtosis " +
          number(kKurtosis) + ", range " + number(kMinimum) + " to " + number(kMaximum) + "\n";
  if (!ranked) return text + "  nothing to fit: no valid values, or all of them equal\n";
  return text + "  " + ranked->Title() + "\n" +
         RankingText(*ranked, rankedBy, kind == "continuous", bootstrapped).Text();
}

std::string Footnote(const FitReportOptions& options) {
  if (options.bootstrapSamples > 0) {
    return "\nP-values by parametric bootstrap, " + std::to_string(options.bootstrapSamples) +
           " samples per distribution; - for a fit whose samples prove\nnothing (a shape below -1).\n";
  }
  return "\nParameters were estimated from the same data, so the p-values are too large: they compare fits, "
         "but\nprove none. --bootstrap N gives p-values that allow for the estimation.\n";
}

}  // namespace

void ReportFit(AutomationObject& dialog, const Spreadsheet& input, const FitReportOptions& options) {
  const Variant summaryDocument = dialog.Get("SummaryStats");
  const Spreadsheet& summary = TableOf(summaryDocument);
  const std::string weights = input.WeightVariable() ? input.VariableAt(*input.WeightVariable()).Name() : "";
  const std::string selection = input.Selection().enabled ? input.Selection().condition : "";
  const bool json = options.format == ReportFormat::kJson;
  nlohmann::ordered_json report = {{"variables", nlohmann::ordered_json::array()}};
  if (!weights.empty()) report["weights"] = weights;
  if (!selection.empty()) report["selection"] = selection;
  std::string text;
  if (!weights.empty()) text += "Cases weighted by " + weights + "\n";
  if (!selection.empty()) text += "Cases with " + selection + "\n";
  const ResultTable table(summary);
  const bool bootstrapped = options.bootstrapSamples > 0;
  for (std::size_t i = 0; i < table.RowCount(); ++i) {
    const auto ranked = RankedTable(dialog, i);
    const bool continuous = table.Text(kKind, i) == "continuous";
    const std::string& rankedBy = continuous ? options.rankBy : options.discreteRankBy;
    if (json) {
      report["variables"].push_back(VariableJson(dialog, summary, i, ranked, rankedBy));
    } else {
      text += (text.empty() ? "" : "\n") + VariableText(table, i, ranked, rankedBy, bootstrapped);
    }
  }
  std::fputs(json ? JsonText(report).c_str() : (text + Footnote(options)).c_str(), stdout);
}

}  // namespace brenvolt::cli
