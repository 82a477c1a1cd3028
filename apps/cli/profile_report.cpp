#include "apps/cli/profile_report.h"

#include <array>
#include <cmath>
#include <span>
#include <sstream>
#include <string_view>

#include "apps/cli/text_table.h"
#include "host/analysis/response_columns.h"
#include "host/analysis/result_columns.h"
#include "host/application/result_table.h"
#include "host/base/number_text.h"

namespace brenvolt::cli {
namespace {

namespace rows = response_table;

constexpr int kDigits = 5;
constexpr int kShortDigits = 4;

// A column of a table as the report heads it.
struct Shown {
  std::string_view column;
  std::string_view heading;
};

std::string ToFiveDigits(double value) {
  return ReadableNumber(value, kDigits);
}

// For numbers about 1.
std::string ToFourDecimals(double value) {
  const std::string text = std::isnan(value) ? "-" : FormatNumber("%.4f", value);
  return text == "-0.0000" ? "0.0000" : text;
}

// A line for each row.
std::string RowsText(const ResultTable& table, std::string_view heading, std::span<const Shown> columns,
                     std::string (*number)(double)) {
  TextTable text;
  text.AddColumn(std::string(heading), TextTable::Align::kLeft);
  for (const Shown& column : columns) text.AddColumn(std::string(column.heading), TextTable::Align::kRight);
  for (std::size_t row = 0; row < table.RowCount(); ++row) {
    std::vector<std::string> cells{table.RowName(row)};
    for (const Shown& column : columns) cells.push_back(number(table.Number(column.column, row)));
    text.AddRow(std::move(cells));
  }
  return text.Text();
}

constexpr std::array<Shown, 6> kMoments{{{result_column::kMean, "mean"},
                                         {result_column::kStandardDeviation, "std.dev."},
                                         {result_column::kSkewness, "skewness"},
                                         {result_column::kKurtosis, "kurtosis"},
                                         {result_column::kMinimum, "minimum"},
                                         {result_column::kMaximum, "maximum"}}};

std::string StatisticsText(const ResultTable& table) {
  std::string text = "  n " + ReadableNumber(table.Number(result_column::kCount, 0), 12) + ", missing " +
                     ReadableNumber(table.Number(result_column::kMissing, 0), 12);
  for (const Shown& moment : kMoments) {
    text += moment.column == result_column::kSkewness ? "\n  " : ", ";
    text += std::string(moment.heading) + " " + ToFiveDigits(table.Number(moment.column, 0));
  }
  return text + "\n";
}

constexpr std::array<Shown, 3> kPercentileColumns{{{result_column::kValue, "Value"},
                                                   {rows::kLowerConfidence, "Lower 95 %"},
                                                   {rows::kUpperConfidence, "Upper 95 %"}}};

constexpr std::array<Shown, 3> kFrequencyColumns{
    {{rows::kClassFrom, "Value"}, {rows::kClassCount, "Count"}, {rows::kClassPercent, "Percent"}}};

// Whether each class of the frequencies is one value: few values say more one by one than in percentiles.
bool HasFewValues(const ResultTable& frequencies) {
  for (std::size_t row = 0; row < frequencies.RowCount(); ++row) {
    if (frequencies.Number(rows::kClassFrom, row) != frequencies.Number(rows::kClassTo, row)) return false;
  }
  return true;
}

std::string ValuesText(const ResponseResults& response) {
  const ResultTable frequencies(response.frequencies->Table());
  if (HasFewValues(frequencies)) return RowsText(frequencies, "Class", kFrequencyColumns, ToFiveDigits);
  return RowsText(ResultTable(response.percentiles->Table()), "Percentile", kPercentileColumns, ToFiveDigits);
}

constexpr std::array<Shown, 5> kSensitivityColumns{{{rows::kSpearman, "Rank corr."},
                                                    {rows::kRankContribution, "Contribution"},
                                                    {rows::kStandardizedCoefficient, "Std.coeff."},
                                                    {rows::kLinearContribution, "Linear"},
                                                    {rows::kFirstOrder, "First-order"}}};

// Families of indices and of parts per million: a row of the report for each kind, a column for each family.
constexpr std::array<std::string_view, 3> kFamilies{"Within", "Overall", "By percentiles"};
struct IndexLine {
  std::string_view heading;
  std::array<std::string_view, 3> rows;  // of the capability table; empty where the family has none
};
constexpr std::array<IndexLine, 5> kIndexLines{{{"Cp, Pp", {rows::kCp, rows::kPp, rows::kPercentilePp}},
                                                {"Cpl, Ppl", {rows::kCpl, rows::kPpl, rows::kPercentilePpl}},
                                                {"Cpu, Ppu", {rows::kCpu, rows::kPpu, rows::kPercentilePpu}},
                                                {"Cpk, Ppk", {rows::kCpk, rows::kPpk, rows::kPercentilePpk}},
                                                {"Cpm", {"", rows::kCpm, ""}}}};
struct PartsLine {
  std::string_view heading;
  std::array<std::string_view, 4> rows;
};
constexpr std::array<PartsLine, 3> kPartsLines{
    {{"PPM below LSL",
      {rows::kWithinBelow, rows::kOverallBelow, rows::kPercentileBelow, rows::kObservedBelow}},
     {"PPM above USL",
      {rows::kWithinAbove, rows::kOverallAbove, rows::kPercentileAbove, rows::kObservedAbove}},
     {"PPM in all",
      {rows::kWithinTotal, rows::kOverallTotal, rows::kPercentileTotal, rows::kObservedTotal}}}};

// "0.982 (0.965 to 0.999)".
std::string WithLimits(const ResultTable& table, std::string_view name) {
  if (name.empty()) return {};
  const std::size_t row = table.RowNamed(name);
  std::string text = ReadableNumber(table.Number(result_column::kValue, row), kShortDigits);
  const double lower = table.Number(rows::kLowerConfidence, row);
  if (std::isnan(lower)) return text;
  return text + " (" + ReadableNumber(lower, kShortDigits) + " to " +
         ReadableNumber(table.Number(rows::kUpperConfidence, row), kShortDigits) + ")";
}

bool HasPercentiles(const ResultTable& table) {
  return !std::isnan(table.Number(result_column::kValue, table.RowNamed(rows::kLowPoint)));
}

std::string CapabilityText(const ResultTable& table) {
  const auto value = [&](std::string_view row) {
    return ReadableNumber(table.Number(result_column::kValue, table.RowNamed(row)), kDigits);
  };
  std::string text = "  Specification: LSL " + value(rows::kLowerLimit) + ", target " + value(rows::kTarget) +
                     ", USL " + value(rows::kUpperLimit) + "; A-D p-value of the normal " +
                     value(rows::kNormalPValue) + "\n";
  const std::size_t families = HasPercentiles(table) ? kFamilies.size() : kFamilies.size() - 1;
  if (families == kFamilies.size()) {
    text += "  Percentiles are those of " +
            table.Text(result_column::kDescription, table.RowNamed(rows::kLowPoint)) + ": 0.135 % " +
            value(rows::kLowPoint) + ", 50 % " + value(rows::kMedianPoint) + ", 99.865 % " +
            value(rows::kHighPoint) + "\n";
  }
  TextTable lines;
  lines.AddColumn("Capability", TextTable::Align::kLeft);
  for (std::size_t f = 0; f < families; ++f) {
    lines.AddColumn(std::string(kFamilies[f]), TextTable::Align::kRight);
  }
  lines.AddColumn("Observed", TextTable::Align::kRight);
  for (const IndexLine& line : kIndexLines) {
    std::vector<std::string> cells{std::string(line.heading)};
    for (std::size_t f = 0; f < families; ++f) cells.push_back(WithLimits(table, line.rows[f]));
    lines.AddRow(std::move(cells));
  }
  for (const PartsLine& line : kPartsLines) {
    std::vector<std::string> cells{std::string(line.heading)};
    for (std::size_t f = 0; f < families; ++f) cells.push_back(value(line.rows[f]));
    cells.push_back(value(line.rows.back()));
    lines.AddRow(std::move(cells));
  }
  return text + lines.Text();
}

// The columns of the defect table as its document heads them: its own.
std::string DefectsText(const Spreadsheet& defects) {
  TextTable text;
  for (std::size_t c = 0; c < defects.VariableCount(); ++c) {
    text.AddColumn(defects.VariableAt(c).Name(), c == 0 ? TextTable::Align::kLeft : TextTable::Align::kRight);
  }
  for (std::size_t row = 0; row < defects.CaseCount(); ++row) {
    std::vector<std::string> cells;
    for (std::size_t c = 0; c < defects.VariableCount(); ++c) {
      const Variable& column = defects.VariableAt(c);
      const double value = column.Values()[row];
      cells.push_back(c == 0 ? std::string(column.Label(value).value_or("")) : ReadableNumber(value));
    }
    text.AddRow(std::move(cells));
  }
  return text.Text();
}

std::string ResponseText(const ResponseResults& response) {
  std::string text = response.name + "\n" + StatisticsText(ResultTable(response.statistics->Table())) + "\n";
  text += ValuesText(response) + "\n";
  text +=
      RowsText(ResultTable(response.sensitivity->Table()), "Predictor", kSensitivityColumns, ToFourDecimals);
  if (response.capability == nullptr) return text;
  return text + "\n" + CapabilityText(ResultTable(response.capability->Table()));
}

}  // namespace

std::string ProfileText(const ProfileResults& results) {
  std::string text = std::to_string(results.runs) + " simulated runs\n";
  for (const ResponseResults& response : results.responses) text += "\n" + ResponseText(response);
  if (results.defects == nullptr) return text;
  // The title's further lines are notes.
  std::istringstream title(results.defects->Table().Title());
  std::string line;
  std::getline(title, line);
  text += "\n" + line + "\n" + DefectsText(results.defects->Table());
  while (std::getline(title, line)) text += "  " + line + "\n";
  return text;
}

}  // namespace brenvolt::cli
