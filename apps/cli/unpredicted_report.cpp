#include "apps/cli/unpredicted_report.h"

#include <algorithm>
#include <span>

#include "apps/cli/text_table.h"
#include "host/application/no_prediction_text.h"

namespace brenvolt::cli {

std::string UnpredictedText(const UnpredictedCases& unpredicted, std::size_t total, std::string_view cases) {
  constexpr std::size_t kMostLines = 20;
  const std::vector<UnpredictedReason> reasons = unpredicted.Reasons();
  if (reasons.empty()) return {};
  TextTable table;
  table.AddColumn("Field", TextTable::Align::kLeft);
  table.AddColumn("Reason", TextTable::Align::kLeft);
  table.AddColumn("Values", TextTable::Align::kLeft);
  table.AddColumn("Count", TextTable::Align::kRight);
  for (const UnpredictedReason& reason : std::span(reasons).first(std::min(reasons.size(), kMostLines))) {
    table.AddRow({reason.field.empty() ? "-" : reason.field, std::string(NoPredictionText(reason.reason)),
                  reason.Values(), std::to_string(reason.cases)});
  }
  std::string text = "No prediction for " + std::to_string(unpredicted.Total()) + " of " +
                     std::to_string(total) + " " + std::string(cases) + "\n" + table.Text();
  if (reasons.size() > kMostLines) {
    text += "  and " + std::to_string(reasons.size() - kMostLines) + " further reasons\n";
  }
  return text;
}

}  // namespace brenvolt::cli
