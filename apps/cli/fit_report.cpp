#include "apps/cli/fit_report.h"

#include <cstdio>
#include <nlohmann/json.hpp>
#include <vector>

#include "apps/cli/print.h"
#include "apps/cli/text_table.h"
#include "apps/cli/wrong_call.h"
#include "host/jobs/json/fit_json.h"
#include "host/jobs/reports/fit_tables.h"

namespace brenvolt::cli {
namespace {

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

// The same of a sentence, broken at blanks, the lines after the first indented by so much.
std::vector<std::string> BrokenAtBlanks(std::string text, std::size_t width, std::size_t indent) {
  std::vector<std::string> lines;
  while (text.size() > width) {
    const std::size_t blank = text.rfind(' ', width);
    if (blank == std::string::npos || text.find_first_not_of(' ') > blank) break;
    lines.push_back(text.substr(0, blank));
    text = std::string(indent, ' ') + text.substr(blank + 1);
  }
  lines.push_back(std::move(text));
  return lines;
}

// Why there is no fit, in lines of its own.
std::string ReasonText(const std::string& text) {
  constexpr std::size_t kWidth = 96;
  constexpr std::size_t kIndent = 4;
  std::string lines;
  for (const std::string& line : BrokenAtBlanks("  " + text, kWidth, kIndent)) lines += line + "\n";
  return lines;
}

// As the report's table, with long descriptions broken and notes below them.
std::string RankingText(const ReportTable& ranking) {
  constexpr std::size_t kDescription = 1;
  TextTable table;
  for (const ReportColumn& column : ranking.columns)
    table.AddColumn(column.heading, column.isNumber ? TextTable::Align::kRight : TextTable::Align::kLeft);
  for (const ReportRow& row : ranking.rows) {
    std::vector<std::string> lines = BrokenAtCommas(row.cells[kDescription]);
    for (const std::string& note : row.notes) {
      for (const std::string& line : BrokenAtBlanks("  " + note, kDescriptionWidth, 2)) lines.push_back(line);
    }
    std::vector<std::string> cells = row.cells;
    cells[kDescription] = lines.front();
    table.AddRow(std::move(cells));
    for (std::size_t i = 1; i < lines.size(); ++i) table.AddRow({"", lines[i]});
  }
  std::string text = table.Text();
  for (const std::string& failure : ranking.notes) text += ReasonText(failure);
  return text;
}

// A sentence over the width of a report.
std::string BrokenNote(const std::string& note) {
  constexpr std::size_t kWidth = 101;
  std::string text;
  for (const std::string& line : BrokenAtBlanks(note, kWidth, 0)) text += line + "\n";
  return text;
}

std::string VariableText(const FittedVariable& variable, const std::string& rankedBy, bool bootstrapped) {
  const auto cell = [&](const ResultColumn& column) { return Cell(variable.moments, column); };
  std::string text = variable.name + (variable.isContinuous ? " (continuous)\n" : " (discrete)\n");
  text += "  n " + cell("n"_column) + ", missing " + cell("missing"_column) + ", mean " +
          cell("mean"_column) + ", std.dev. " + cell("standard_deviation"_column) + "\n  skewness " +
          ShapeText(variable.moments, "skewness"_column) + ", kurtosis " +
          ShapeText(variable.moments, "kurtosis"_column) + ", range " + cell("minimum"_column) + " to " +
          cell("maximum"_column) + "\n";
  if (variable.fits.empty()) return text + ReasonText("nothing to fit: " + variable.reason);
  text += "  " + variable.ranking + "\n" + RankingText(RankingTable(variable, rankedBy, bootstrapped));
  for (const std::string& note : variable.Notes()) text += "  note: " + note + "\n";
  return text + CautionsText(variable.Cautions());
}

}  // namespace

// Each begins on a line of its own and goes on behind its semicolon in the next.
std::string CautionsText(const std::vector<FitCaution>& cautions) {
  std::string text;
  for (const FitCaution& caution : cautions) {
    std::string lines = caution.Text();
    lines.replace(lines.find("; "), 2, ";\n    ");
    text += "  caution: " + lines + "\n";
  }
  return text;
}

std::string QuantilesText(const FitQuantiles& found, double spread) {
  const ReportTable table = QuantileTable(found, spread);
  std::string text = "\n" + TextOf(table);
  for (const std::string& note : table.notes) text += "  " + note + "\n";
  return text;
}

void ReportFit(const std::vector<FittedVariable>& variables, const Spreadsheet& input,
               const FitReportOptions& options) {
  const std::string weights = input.WeightVariable() ? input.VariableAt(*input.WeightVariable()).Name() : "";
  const std::string selection = input.Selection().enabled ? input.Selection().condition : "";
  const bool json = options.format == ReportFormat::kJson;
  nlohmann::ordered_json report = {{"variables", nlohmann::ordered_json::array()}};
  if (!weights.empty()) report["weights"] = weights;
  if (!selection.empty()) report["selection"] = selection;
  std::string text;
  if (!weights.empty()) text += "Cases weighted by " + weights + "\n";
  if (!selection.empty()) text += "Cases with " + selection + "\n";
  for (std::size_t i = 0; i < variables.size(); ++i) {
    const FittedVariable& variable = variables[i];
    const std::string& rankedBy = variable.isContinuous ? options.rankBy : options.discreteRankBy;
    if (json) {
      report["variables"].push_back(VariableJson(variable, rankedBy));
      report["variables"].back()["quantiles"] = QuantilesJson(options.quantiles[i]);
    } else {
      text += (text.empty() ? "" : "\n") + VariableText(variable, rankedBy, options.bootstrapSamples > 0);
      if (options.quantiles[i])
        text += QuantilesText(*options.quantiles[i], variable.moments.Number("standard_deviation"_column));
    }
  }
  Print(json ? JsonText(report) : text + "\n" + BrokenNote(PValueNote(options.bootstrapSamples)));
}

}  // namespace brenvolt::cli
