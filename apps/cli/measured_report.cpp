#include "apps/cli/measured_report.h"

#include "apps/cli/fit_report.h"
#include "apps/cli/text_table.h"
#include "host/jobs/base/command_words.h"
#include "host/jobs/reports/capability_tables.h"
#include "host/jobs/reports/censored_tables.h"

namespace brenvolt::cli {
namespace {

std::string VariableText(const CensoredVariable& variable) {
  const ReportTable ranking = CensoredRankingTable(variable);
  std::string text = variable.name + "\n  " + CensoringText(variable) + "\n  " + RankingText(variable) +
                     "\n" + TextOf(ranking);
  for (const std::string& failure : ranking.notes) text += "  " + failure + "\n";
  for (const ReadingNote& note : variable.notes)
    text += "  note: " + note.message + " (" + OptionOf(note.field) + ")\n";
  if (!variable.quantiles) return text;
  return text + QuantilesText(*variable.quantiles, SpreadOf(variable.fits.front().values));
}

}  // namespace

std::string CapabilityText(const CapabilityFindings& found) {
  std::string text = found.response;
  const auto add = [&text](const std::string& line) { text += "\n  " + line; };
  add(MeasuredText(found));
  add("Specification: " + LimitsText(found));
  text += "\n\n" + TextOf(ChartTable(found));
  for (const std::string& signal : SignalTexts(found)) text += "  " + signal + "\n";
  if (!found.IsStable()) text += "  warning: " + found.Warning() + "\n";
  add(DeviationsText(found));
  add(NormalityText(found));
  if (found.fitted) {
    add("Percentiles are those of " + found.fitted->notation + ":");
    add("  " + PercentilesText(*found.fitted, found.report.sample.overall));
  }
  text += "\n\n" + TextOf(FigureTable(found)) + "  " + ConfidenceText(found) + "\n";
  for (const std::string& note : found.notes) text += "  note: " + note + "\n";
  return text;
}

std::string CensoredText(const CensoredFindings& found) {
  std::string text;
  for (const CensoredVariable& variable : found.variables)
    text += (text.empty() ? "" : "\n") + VariableText(variable);
  return text + "\n" + UntestedText() + "\n";
}

}  // namespace brenvolt::cli
