#include "host/jobs/profile/profile_results.h"

#include <algorithm>
#include <cmath>
#include <sstream>
#include <utility>

#include "host/base/error.h"

namespace brenvolt {
namespace {

// The table, the further lines of whose title become notes.
ResultTable ReadTable(const CAnalysisTableDoc& document, ProfileResults& results) {
  ResultTable table = ReadResultTable(document.Table());
  std::istringstream lines(std::exchange(table.title, {}));
  std::getline(lines, table.title);
  for (std::string note; std::getline(lines, note);) {
    if (std::ranges::find(results.notes, note) == results.notes.end()) results.notes.push_back(note);
  }
  return table;
}

// The texts of values; none unless all have one.
std::vector<std::string> NamesOf(const std::vector<double>& values, const std::string& predictor,
                                 const Spreadsheet& simulated) {
  const auto place = simulated.FindVariable(predictor);
  if (!place) return {};
  std::vector<std::string> names;
  for (const double value : values) {
    const auto label = simulated.VariableAt(*place).Label(value);
    if (!label) return {};
    names.emplace_back(*label);
  }
  return names;
}

}  // namespace

void TakeResponse(const std::string& name, std::span<const std::shared_ptr<CAnalysisTableDoc>> summary,
                  const CAnalysisTableDoc* capability, ProfileResults& results) {
  enum Place : std::size_t { kStatistics, kCorrelations, kPercentiles, kFrequencies, kSensitivity, kPlaces };
  if (summary.size() != kPlaces) throw Error("the analysis returned no summary", name);
  const auto rows = [&](Place place) { return ReadTable(*summary[place], results).rows; };
  ResponseResults response{name,
                           rows(kStatistics).front(),
                           rows(kCorrelations),
                           rows(kPercentiles),
                           rows(kFrequencies),
                           rows(kSensitivity),
                           {},
                           {},
                           {},
                           {}};
  response.allPredictors = std::move(response.sensitivity.back());
  response.sensitivity.pop_back();
  if (capability != nullptr) response.capability = ReadTable(*capability, results);
  results.responses.push_back(std::move(response));
}

std::string ReasonText(const UnpredictedRuns& unpredicted) {
  std::string text = unpredicted.field.empty() ? "" : "field " + unpredicted.field + ", ";
  text += unpredicted.text;
  return unpredicted.values.empty() ? text : text + ": " + unpredicted.values;
}

bool ResponseResults::IsPredicted() const {
  return statistics.Number("n"_column) > 0;
}

void TakeUnpredicted(const CAnalysisTableDoc& document, ProfileResults& results) {
  for (const ResultRow& row : ReadResultTable(document.Table()).rows) {
    const auto response = std::ranges::find(results.responses, row.name, &ResponseResults::name);
    if (response == results.responses.end()) continue;
    response->unpredicted.push_back({row.identifier, row.Text("reason"_column), row.Text("field"_column),
                                     row.Text("field_value"_column),
                                     static_cast<std::int64_t>(row.Number("defect_runs"_column))});
  }
}

void TakeProfiles(const Graph& graph, const Spreadsheet& simulated, ProfileResults& results) {
  for (const Graph& panel : graph.panels) {
    const auto response = std::ranges::find(results.responses, panel.yTitle, &ResponseResults::name);
    const auto means = std::ranges::find(panel.series, SeriesStyle::kLine, &GraphSeries::style);
    if (response == results.responses.end() || means == panel.series.end()) continue;
    const bool isOfClasses =
        response->IsPredicted() && std::isnan(response->statistics.Number("mean"_column));
    if (isOfClasses) continue;
    response->profiles.push_back(
        {panel.xTitle, means->x, NamesOf(means->x, panel.xTitle, simulated), means->y});
  }
}

void TakeDefects(const CAnalysisTableDoc& document, ProfileResults& results) {
  results.defects = ReadTable(document, results);
  for (ResultRow& row : results.defects->rows) row.name = row.Text("response"_column);
}

}  // namespace brenvolt
