#include "apps/cli/capability_report.h"

#include "apps/cli/text_table.h"
#include "host/jobs/reports/capability_tables.h"

namespace brenvolt::cli {

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

}  // namespace brenvolt::cli
