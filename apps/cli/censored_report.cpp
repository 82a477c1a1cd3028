#include "apps/cli/censored_report.h"

#include "apps/cli/fit_report.h"
#include "apps/cli/text_table.h"
#include "host/jobs/reports/censored_tables.h"

namespace brenvolt::cli {
namespace {

std::string VariableText(const CensoredVariable& variable) {
  const ReportTable ranking = CensoredRankingTable(variable);
  std::string text = variable.name + "\n  " + CensoringText(variable) + "\n  " + RankingText(variable) +
                     "\n" + TextOf(ranking);
  for (const std::string& failure : ranking.notes) text += "  " + failure + "\n";
  if (!variable.quantiles) return text;
  return text + QuantilesText(*variable.quantiles, SpreadOf(variable.fits.front().values));
}

}  // namespace

std::string CensoredText(const CensoredFindings& found) {
  std::string text;
  for (const CensoredVariable& variable : found.variables)
    text += (text.empty() ? "" : "\n") + VariableText(variable);
  return text + "\n" + UntestedText() + "\n";
}

}  // namespace brenvolt::cli
