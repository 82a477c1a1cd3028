#include "brv_sra/profiler/dialogs/defect_documents.h"

#include <string>
#include <vector>

#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/result_sheet.h"
#include "brv_sra/resources/strings.h"
#include "host/base/number_text.h"
#include "host/statistics/proportion.h"

namespace brenvolt::sra {
namespace {

constexpr double kMillion = 1e6;
constexpr double kConfidence = 0.95;

double RateOf(std::int64_t count, std::int64_t runs) {
  if (runs == 0) return GetDefaultMDValue();
  return static_cast<double>(count) / static_cast<double>(runs);
}

// A row: an entry of the counts.
struct DefectRow {
  std::string name;
  std::size_t entry = 0;
  double lower = GetDefaultMDValue();
  double upper = GetDefaultMDValue();
};

std::vector<DefectRow> RowsOf(std::span<const ProfiledResponse> responses) {
  std::vector<DefectRow> rows;
  for (std::size_t k = 0; k < responses.size(); ++k) {
    const SpecificationLimits& limits = responses[k].limits;
    if (limits.IsValid()) rows.push_back({responses[k].name, k, limits.lower, limits.upper});
  }
  rows.push_back({std::string(ResourceString(kDefectRowOverall)), responses.size()});
  return rows;
}

std::string SaturationNote(const DefectRow& row, const DefectCounts& counts) {
  const std::int64_t exact = counts.exact[row.entry];
  if (exact <= kMostDefects) return {};
  const double rate = RateOf(exact, counts.runs[row.entry]);
  return "\n" + row.name + ": the count of defects is limited to " + std::to_string(kMostDefects) +
         "; exactly " + std::to_string(exact) + " of " + std::to_string(counts.runs[row.entry]) +
         " runs are defects, a rate of " + FormatNumber("%.6g", rate) + " (" +
         FormatNumber("%.0f", rate * kMillion) + " PPM)";
}

std::string MissingNote(const DefectRow& row, const DefectCounts& counts, std::size_t runs) {
  const std::int64_t missing = static_cast<std::int64_t>(runs) - counts.runs[row.entry];
  if (missing == 0) return {};
  return "\n" + row.name + ": " + std::to_string(missing) + " of " + std::to_string(runs) +
         " runs have no prediction and are left out";
}

std::size_t RunCount(std::span<const ProfiledResponse> responses) {
  return responses.empty() ? 0 : responses.front().values.size();
}

// An empty sheet for the rows, with the notes on them.
std::unique_ptr<Spreadsheet> NewSheet(std::int32_t title, std::span<const DefectRow> rows,
                                      const std::string& notes) {
  const std::string name(ResourceString(title));
  auto sheet = std::make_unique<Spreadsheet>(name, rows.size());
  sheet->SetTitle(name + notes);
  AddTextColumn(*sheet, "response"_column, [&](std::size_t i) { return rows[i].name; });
  return sheet;
}

void AddLimits(std::span<const DefectRow> rows, Spreadsheet& sheet) {
  AddColumn(sheet, "defect_lsl"_column, [&](std::size_t i) { return rows[i].lower; });
  AddColumn(sheet, "defect_usl"_column, [&](std::size_t i) { return rows[i].upper; });
}

}  // namespace

std::unique_ptr<Spreadsheet> MakeDefectSheet(std::span<const ProfiledResponse> responses,
                                             const DefectCounts& counts) {
  const std::vector<DefectRow> rows = RowsOf(responses);
  std::string notes;
  for (const DefectRow& row : rows)
    notes += SaturationNote(row, counts) + MissingNote(row, counts, RunCount(responses));
  auto sheet = NewSheet(kDefectTitle, rows, notes);
  const auto rate = [&](std::size_t i) {
    return RateOf(counts.counts[rows[i].entry], counts.runs[rows[i].entry]);
  };
  AddColumn(*sheet, "table_rate"_column, rate);
  AddColumn(*sheet, "table_ppm"_column, [&](std::size_t i) { return rate(i) * kMillion; });
  AddLimits(rows, *sheet);
  return sheet;
}

std::unique_ptr<Spreadsheet> MakeDefectCountSheet(std::span<const ProfiledResponse> responses,
                                                  const DefectCounts& counts, bool independent) {
  const std::vector<DefectRow> rows = RowsOf(responses);
  std::string notes;
  for (const DefectRow& row : rows) notes += MissingNote(row, counts, RunCount(responses));
  if (!independent) notes += "\n" + std::string(ResourceString(kResponseNoIntervals));
  std::vector<ConfidenceInterval> intervals(rows.size());
  for (std::size_t i = 0; independent && i < rows.size(); ++i)
    intervals[i] = ProportionInterval(counts.exact[rows[i].entry], counts.runs[rows[i].entry], kConfidence);
  auto sheet = NewSheet(kDefectCountsTitle, rows, notes);
  const auto count = [](std::int64_t number) { return static_cast<double>(number); };
  const auto rate = [&](std::size_t i) {
    return RateOf(counts.exact[rows[i].entry], counts.runs[rows[i].entry]);
  };
  const auto addLimit = [&](const ResultColumn& column, double ConfidenceInterval::*side, double unit) {
    AddColumn(*sheet, column, [&](std::size_t i) {
      const double limit = intervals[i].*side;
      return IsNotSet(limit) ? GetDefaultMDValue() : limit * unit;
    });
  };
  AddColumn(*sheet, "defects"_column, [&](std::size_t i) { return count(counts.exact[rows[i].entry]); });
  AddColumn(*sheet, "defect_runs"_column, [&](std::size_t i) { return count(counts.runs[rows[i].entry]); });
  AddColumn(*sheet, "defect_rate"_column, rate);
  addLimit("rate_lower"_column, &ConfidenceInterval::lower, 1);
  addLimit("rate_upper"_column, &ConfidenceInterval::upper, 1);
  // Not by way of the rate, which is rounded.
  AddColumn(*sheet, "defect_ppm"_column, [&](std::size_t i) {
    const auto runs = count(counts.runs[rows[i].entry]);
    return runs > 0 ? count(counts.exact[rows[i].entry]) * kMillion / runs : GetDefaultMDValue();
  });
  addLimit("ppm_lower"_column, &ConfidenceInterval::lower, kMillion);
  addLimit("ppm_upper"_column, &ConfidenceInterval::upper, kMillion);
  AddLimits(rows, *sheet);
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
    panel.title = ResourceString("table_rate"_column.heading);
    panel.title.append(": ").append(response).append(" / ").append(predictor);
    panel.xTitle = predictor;
    panel.yTitle = ResourceString("table_rate"_column.heading);
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
