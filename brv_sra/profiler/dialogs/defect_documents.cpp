#include "brv_sra/profiler/dialogs/defect_documents.h"

#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/result_sheet.h"
#include "brv_sra/resources/strings.h"
#include "host/base/number_text.h"

namespace brenvolt::sra {
namespace {

constexpr double kMillion = 1e6;

double RateOf(std::int64_t count, std::int64_t runs) {
  if (runs == 0) return GetDefaultMDValue();
  return static_cast<double>(count) / static_cast<double>(runs);
}

// What a reader must know of an entry of the counts beyond its row.
void AddNotes(const std::string& name, const DefectCounts& counts, std::size_t entry, std::size_t runs,
              std::vector<std::string>& notes) {
  const std::int64_t exact = counts.exact[entry];
  const std::int64_t predicted = counts.runs[entry];
  if (exact > kMostDefects) {
    const double rate = RateOf(exact, predicted);
    notes.push_back(name + ": the count of defects is limited to " + std::to_string(kMostDefects) +
                    "; exactly " + std::to_string(exact) + " of " + std::to_string(predicted) +
                    " runs are defects, a rate of " + FormatNumber("%.6g", rate) + " (" +
                    FormatNumber("%.6g", rate * kMillion) + " PPM)");
  }
  const std::int64_t missing = static_cast<std::int64_t>(runs) - predicted;
  if (missing > 0) {
    notes.push_back(name + ": " + std::to_string(missing) + " of " + std::to_string(runs) +
                    " runs have no prediction and are left out");
  }
}

DefectRate MakeRow(const std::string& name, const DefectCounts& counts, std::size_t entry, double lower,
                   double upper) {
  const double rate = RateOf(counts.counts[entry], counts.runs[entry]);
  return {name, rate, rate * kMillion, lower, upper};
}

}  // namespace

DefectTable MakeDefectTable(std::span<const ProfiledResponse> responses) {
  const DefectCounts counts = CountDefects(responses);
  const std::size_t runs = responses.empty() ? 0 : responses.front().values.size();
  DefectTable table;
  for (std::size_t k = 0; k < responses.size(); ++k) {
    const ProfiledResponse& response = responses[k];
    if (!response.limits.IsValid()) continue;
    table.rows.push_back(MakeRow(response.name, counts, k, response.limits.lower, response.limits.upper));
    AddNotes(response.name, counts, k, runs, table.notes);
  }
  const std::string overall(ResourceString(kDefectRowOverall));
  const double none = GetDefaultMDValue();
  table.rows.push_back(MakeRow(overall, counts, responses.size(), none, none));
  if (table.rows.size() > 1) AddNotes(overall, counts, responses.size(), runs, table.notes);
  return table;
}

std::unique_ptr<Spreadsheet> MakeDefectSheet(const DefectTable& table) {
  const std::string name(ResourceString(kDefectTitle));
  auto sheet = std::make_unique<Spreadsheet>(name, table.rows.size());
  std::string title = name;
  for (const std::string& note : table.notes) title += "\n" + note;
  sheet->SetTitle(title);
  AddTextColumn(*sheet, "response"_column, [&](std::size_t i) { return table.rows[i].name; });
  AddColumn(*sheet, "defect_rate"_column, [&](std::size_t i) { return table.rows[i].rate; });
  AddColumn(*sheet, "defect_ppm"_column, [&](std::size_t i) { return table.rows[i].partsPerMillion; });
  AddColumn(*sheet, "defect_lsl"_column, [&](std::size_t i) { return table.rows[i].lower; });
  AddColumn(*sheet, "defect_usl"_column, [&](std::size_t i) { return table.rows[i].upper; });
  return sheet;
}

Graph MakeDefectGraph(std::span<const ProfiledResponse> responses,
                      std::span<const ProfiledPredictor> predictors, std::size_t classes) {
  Graph graph;
  graph.kind = GraphKind::kSummary;
  graph.title = ResourceString(kDefectTitle);
  for (const DefectProfile& profile : ProfileDefects(responses, predictors, classes)) {
    const std::string& response = responses[profile.response].name;
    const std::string& predictor = predictors[profile.predictor].name;
    Graph panel;
    panel.kind = GraphKind::kProfile;
    panel.title = response;
    panel.title.append(" / ").append(predictor);
    panel.xTitle = predictor;
    panel.yTitle = ResourceString("defect_rate"_column.heading);
    GraphSeries line;
    line.name = response;
    line.style = SeriesStyle::kLine;
    for (const DefectClass& one : profile.classes) {
      line.x.push_back(one.median);
      line.y.push_back(one.Rate());
    }
    panel.series.push_back(std::move(line));
    graph.panels.push_back(std::move(panel));
  }
  return graph;
}

}  // namespace brenvolt::sra
