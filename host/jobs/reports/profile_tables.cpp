#include "host/jobs/reports/profile_tables.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>
#include <string_view>
#include <utility>

#include "host/analysis/quantity_text.h"
#include "host/base/number_text.h"

namespace brenvolt {
namespace {

constexpr int kDigits = 5;
constexpr int kShortDigits = 4;

// A column of a table as the report heads it.
struct Shown {
  const ResultColumn& column;
  std::string_view heading;
};

// For numbers about 1.
std::string ToFourDecimals(double value) {
  const std::string text = std::isnan(value) ? "-" : FormatNumber("%.4f", value);
  return text == "-0.0000" ? "0.0000" : text;
}

// A place among values that have such a spread.
std::string Place(double value, double spread) {
  return ReadableNumber(value, DigitsFor(value, spread, kDigits));
}

// A number that a person gave.
std::string Given(double value) {
  return std::isnan(value) ? "-" : ShortestNumber(value);
}

// A line for each row; `number` writes the value of a column.
template <class Number>
ReportTable RowsTable(std::span<const ResultRow> rows, std::string_view heading,
                      std::span<const Shown> columns, const Number& number) {
  ReportTable table;
  table.AddText(std::string(heading));
  for (const Shown& column : columns) table.AddNumber(std::string(column.heading));
  for (const ResultRow& row : rows) {
    std::vector<std::string> cells{row.name};
    for (const Shown& column : columns) cells.push_back(number(row, column.column));
    table.AddRow(std::move(cells));
  }
  return table;
}

constexpr std::array<Shown, 8> kMoments{{{"n"_column, "n"},
                                         {"missing"_column, "missing"},
                                         {"mean"_column, "mean"},
                                         {"standard_deviation"_column, "std.dev."},
                                         {"skewness"_column, "skewness"},
                                         {"kurtosis"_column, "kurtosis"},
                                         {"minimum"_column, "minimum"},
                                         {"maximum"_column, "maximum"}}};

constexpr std::array<Shown, 3> kPercentileColumns{
    {{"value"_column, "Value"}, {"lower"_column, "Lower 95 %"}, {"upper"_column, "Upper 95 %"}}};

constexpr std::array<Shown, 3> kFrequencyColumns{
    {{"from"_column, "Value"}, {"count"_column, "Count"}, {"percent"_column, "Percent"}}};

double SpreadOf(const ResponseResults& response) {
  return response.statistics.Number("standard_deviation"_column);
}

// Limits that no row has are left out.
ReportTable PercentilesTable(const ResponseResults& response) {
  const std::span<const ResultRow> rows(response.percentiles);
  const bool hasLimits = std::ranges::any_of(rows, [](const ResultRow& row) {
    return !std::isnan(row.Number("lower"_column)) || !std::isnan(row.Number("upper"_column));
  });
  const std::span<const Shown> columns(kPercentileColumns);
  return RowsTable(rows, "Percentile", hasLimits ? columns : columns.first(1),
                   [&](const ResultRow& row, const ResultColumn& column) {
                     return Place(row.Number(column), SpreadOf(response));
                   });
}

// Where a profile is shown: from its first class to its last.
constexpr std::array<std::string_view, 5> kProfilePlaces{"lowest", "", "middle", "", "highest"};

// "VALUE: MEAN" at some classes of a predictor.
std::vector<std::string> ProfileCells(const PredictedProfile& profile, double spread) {
  const std::size_t classes = profile.values.size();
  const auto [least, greatest] = std::ranges::minmax(profile.values);
  std::vector<std::string> cells{profile.predictor};
  for (std::size_t i = 0; i < kProfilePlaces.size(); ++i) {
    const std::size_t steps = kProfilePlaces.size() - 1;
    const bool hasEnough = classes >= kProfilePlaces.size();
    if (!hasEnough && i >= classes) break;
    const std::size_t at = hasEnough ? (i * (classes - 1) + steps / 2) / steps : i;
    const int digits = DigitsFor(profile.values[at], greatest - least, kShortDigits);
    const std::string value =
        profile.names.empty() ? ReadableNumber(profile.values[at], digits) : profile.names[at];
    cells.push_back(value + ": " +
                    ReadableNumber(profile.means[at], DigitsFor(profile.means[at], spread, kShortDigits)));
  }
  return cells;
}

constexpr std::array<Shown, 5> kSensitivityColumns{{{"rank_correlation"_column, "Rank corr."},
                                                    {"contribution_to_variance"_column, "Contribution"},
                                                    {"standardized_coefficient"_column, "Std.coeff."},
                                                    {"linear_contribution"_column, "Linear"},
                                                    {"first_order"_column, "First-order"}}};

// Families of indices and of parts per million: a row of the report for each kind, a column for each family.
constexpr std::array<std::string_view, 3> kFamilies{"Within", "Overall", "By percentiles"};
struct IndexLine {
  std::string_view heading;
  std::array<const ResultColumn*, 3> statistics;  // null if the family has none
};
constexpr std::array<IndexLine, 5> kIndexLines{
    {{"Cp, Pp", {&"cp"_column, &"pp"_column, &"percentile_pp"_column}},
     {"Cpl, Ppl", {&"cpl"_column, &"ppl"_column, &"percentile_ppl"_column}},
     {"Cpu, Ppu", {&"cpu"_column, &"ppu"_column, &"percentile_ppu"_column}},
     {"Cpk, Ppk", {&"cpk"_column, &"ppk"_column, &"percentile_ppk"_column}},
     {"Cpm", {nullptr, &"cpm"_column, nullptr}}}};
struct PartsLine {
  std::string_view heading;
  std::array<const ResultColumn*, 4> statistics;
};
constexpr std::array<PartsLine, 3> kPartsLines{{{"PPM below LSL",
                                                 {&"within_below"_column, &"overall_below"_column,
                                                  &"percentile_below"_column, &"observed_below"_column}},
                                                {"PPM above USL",
                                                 {&"within_above"_column, &"overall_above"_column,
                                                  &"percentile_above"_column, &"observed_above"_column}},
                                                {"PPM in all",
                                                 {&"within_total"_column, &"overall_total"_column,
                                                  &"percentile_total"_column, &"observed_total"_column}}}};

// "0.982 (0.965 to 0.999)", the value alone if it has no limits.
std::string WithLimits(const ResultRow& row, const ResultColumn& value, const ResultColumn& lower,
                       const ResultColumn& upper, Quantity quantity) {
  const auto text = [&](const ResultColumn& column) {
    return QuantityText(row.Number(column), quantity, kShortDigits);
  };
  if (std::isnan(row.Number(lower))) return text(value);
  return text(value) + " (" + text(lower) + " to " + text(upper) + ")";
}

std::string StatisticText(const ResultTable& table, const ResultColumn* statistic) {
  if (statistic == nullptr) return {};
  return WithLimits(table.Row(*statistic), "value"_column, "lower"_column, "upper"_column,
                    statistic->quantity);
}

}  // namespace

ReportFacts MomentFacts(const ResultRow& statistics) {
  constexpr std::size_t kCounts = 2;
  const bool hasMoments = !std::isnan(statistics.Number("mean"_column));
  const std::span<const Shown> all(kMoments);
  ReportFacts facts;
  for (const Shown& moment : hasMoments ? all : all.first(kCounts))
    facts.facts.emplace_back(moment.heading, Cell(statistics, moment.column, kDigits));
  return facts;
}

ReportTable ValuesTable(const ResponseResults& response) {
  const bool hasFewValues = std::ranges::all_of(response.frequencies, [](const ResultRow& one) {
    return one.Number("from"_column) == one.Number("to"_column);
  });
  if (!hasFewValues) return PercentilesTable(response);
  return RowsTable(response.frequencies, "Class", kFrequencyColumns,
                   [&](const ResultRow& row, const ResultColumn& column) {
                     const double value = row.Number(column);
                     return &column == &"from"_column ? Place(value, SpreadOf(response))
                                                      : ReadableNumber(value, kDigits);
                   });
}

ReportTable SensitivityTable(const ResponseResults& response) {
  std::vector<ResultRow> rows = response.sensitivity;
  rows.push_back(response.allPredictors);
  return RowsTable(
      rows, "Predictor", kSensitivityColumns,
      [](const ResultRow& row, const ResultColumn& column) { return ToFourDecimals(row.Number(column)); });
}

ReportTable ProfilesTable(const ResponseResults& response) {
  ReportTable table;
  table.title = "Mean " + response.name + " where a predictor is about";
  table.AddText("Predictor");
  for (const std::string_view place : kProfilePlaces) table.AddText(std::string(place));
  for (const PredictedProfile& profile : response.profiles) {
    if (!profile.values.empty()) table.AddRow(ProfileCells(profile, SpreadOf(response)));
  }
  return table;
}

std::vector<std::string> CapabilityTerms(const ResultTable& table) {
  const auto number = [&](const ResultColumn& statistic) {
    return table.Row(statistic).Number("value"_column);
  };
  const auto value = [&](const ResultColumn& statistic) {
    return Place(number(statistic), number("overall_deviation"_column));
  };
  std::vector<std::string> terms{
      "Specification: LSL " + Given(number("lsl"_column)) + ", target " + Given(number("target"_column)) +
      ", USL " + Given(number("usl"_column)) + "; A-D p-value of the fitted normal " +
      QuantityText(number("normal_p"_column), "normal_p"_column.quantity, kDigits)};
  const ResultRow& lowPoint = table.Row("low_point"_column);
  if (!std::isnan(lowPoint.Number("value"_column))) {
    terms.push_back("Percentiles are those of " + lowPoint.Text("description"_column) + ": 0.135 % " +
                    value("low_point"_column) + ", 50 % " + value("median_point"_column) + ", 99.865 % " +
                    value("high_point"_column));
  }
  return terms;
}

ReportTable CapabilityTable(const ResultTable& table) {
  const auto number = [&](const ResultColumn& statistic) {
    return table.Row(statistic).Number("value"_column);
  };
  // Where there are no indices, there is what was observed.
  std::size_t families = std::isnan(number("ppk"_column)) ? 0 : kFamilies.size() - 1;
  if (!std::isnan(number("low_point"_column))) families = kFamilies.size();
  ReportTable lines;
  lines.AddText("Capability");
  for (std::size_t f = 0; f < families; ++f) lines.AddNumber(std::string(kFamilies[f]));
  lines.AddNumber("Observed");
  const std::span<const IndexLine> indices(kIndexLines);
  for (const IndexLine& line : families == 0 ? indices.first(0) : indices) {
    std::vector<std::string> cells{std::string(line.heading)};
    for (std::size_t f = 0; f < families; ++f) cells.push_back(StatisticText(table, line.statistics[f]));
    lines.AddRow(std::move(cells));
  }
  for (const PartsLine& line : kPartsLines) {
    std::vector<std::string> cells{std::string(line.heading)};
    for (std::size_t f = 0; f < families; ++f) cells.push_back(StatisticText(table, line.statistics[f]));
    cells.push_back(StatisticText(table, line.statistics.back()));
    lines.AddRow(std::move(cells));
  }
  return lines;
}

ReportTable DefectsTable(const ResultTable& defects) {
  ReportTable table;
  table.title = defects.title;
  table.AddText("Response");
  for (const char* heading : {"Defects", "Runs", "Defect Rate", "PPM", "LSL", "USL"})
    table.AddNumber(heading);
  for (const ResultRow& row : defects.rows) {
    table.AddRow({row.name, Cell(row, "defects"_column), Cell(row, "defect_runs"_column),
                  WithLimits(row, "defect_rate"_column, "rate_lower"_column, "rate_upper"_column,
                             "defect_rate"_column.quantity),
                  WithLimits(row, "defect_ppm"_column, "ppm_lower"_column, "ppm_upper"_column,
                             "defect_ppm"_column.quantity),
                  Given(row.Number("defect_lsl"_column)), Given(row.Number("defect_usl"_column))});
  }
  return table;
}

}  // namespace brenvolt
