#include "apps/cli/profile_report.h"

#include <string_view>
#include <vector>

#include "apps/cli/text_table.h"
#include "host/jobs/reports/profile_tables.h"

namespace brenvolt::cli {
namespace {

// The moments in two lines.
std::string StatisticsText(const ResultRow& statistics) {
  constexpr std::size_t kFirstLine = 4;
  std::string text;
  const ReportFacts facts = MomentFacts(statistics);
  for (std::size_t i = 0; i < facts.facts.size(); ++i) {
    const auto& [name, value] = facts.facts[i];
    text += i == 0 ? "  " : i == kFirstLine ? "\n  " : ", ";
    text.append(name).append(" ").append(value);
  }
  return text + "\n";
}

// Below its title.
std::string TitledText(const ReportTable& table, const char* indent) {
  return indent + table.title + "\n" + TextOf(table);
}

std::string CapabilityText(const ResultTable& capability) {
  std::string text;
  for (const std::string& term : CapabilityTerms(capability)) text += "  " + term + "\n";
  return text + TextOf(CapabilityTable(capability));
}

std::string ResponseText(const ResponseResults& response) {
  std::string text = response.name + "\n" + StatisticsText(response.statistics);
  for (const UnpredictedRuns& unpredicted : response.unpredicted) {
    text += "  without a prediction: " + std::to_string(unpredicted.runs) + " runs (" +
            ReasonText(unpredicted) + ")\n";
  }
  if (!response.IsPredicted()) return text;
  text += "\n" + TextOf(ValuesTable(response)) + "\n" + TextOf(SensitivityTable(response));
  if (!response.profiles.empty()) text += "\n" + TitledText(ProfilesTable(response), "  ");
  return response.capability ? text + "\n" + CapabilityText(*response.capability) : text;
}

}  // namespace

std::string ProfileText(const ProfileResults& results, const std::string& drawn) {
  std::string text = std::to_string(results.runs) + " simulated runs\n";
  TextTable predictors;
  predictors.AddColumn("Predictor", TextTable::Align::kLeft);
  predictors.AddColumn("drawn from", TextTable::Align::kLeft);
  for (const PredictorUse& one : results.predictors) predictors.AddRow({one.name, one.distribution});
  text += "\n" + predictors.Text() + drawn;
  for (const ResponseResults& response : results.responses) text += "\n" + ResponseText(response);
  if (results.defects) text += "\n" + TitledText(DefectsTable(*results.defects), "");
  if (!results.notes.empty()) text += "\n";
  for (const std::string& note : results.notes) text += "  " + note + "\n";
  return text;
}

}  // namespace brenvolt::cli
