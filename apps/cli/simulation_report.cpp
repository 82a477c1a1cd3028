#include "apps/cli/simulation_report.h"

#include "apps/cli/text_table.h"
#include "host/jobs/reports/simulation_tables.h"

namespace brenvolt::cli {
std::string SummaryText(const ResultTable& summary) {
  const SummaryTables tables = TablesOf(summary);
  return TextOf(tables.moments) + "\n" + TextOf(tables.percentiles);
}

std::string CorrelationsText(const SimulationResults& results) {
  const ReportTable table = CorrelationTable(results, kMostPairsShown);
  std::string text = TextOf(table);
  for (const std::string& note : table.notes) text += "  " + note + "\n";
  for (const std::string& note : results.Notes()) text += "  " + note + "\n";
  return text;
}

}  // namespace brenvolt::cli
