#include "host/jobs/profile/profile_plots.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <string>
#include <utility>

#include "host/base/number_text.h"
#include "host/statistics/equal_count_classes.h"
#include "host/statistics/percentiles.h"

namespace brenvolt {
namespace {

// What a panel of the capability lists, where it is known.
constexpr ResultColumn kListed[] = {"cp"_column,  "cpk"_column, "pp"_column,
                                    "ppk"_column, "cpm"_column, "normal_p"_column};

std::vector<Graph> CapabilityOf(const ResponseGraphs& response) {
  if (response.capability.empty()) return {};
  Graph panel;
  panel.kind = GraphKind::kSummary;
  panel.title = "Capability of " + response.name;
  panel.panels = {response.graphs.front()};
  panel.panels.front().title.clear();
  panel.notes = response.capability;
  return {std::move(panel)};
}

std::vector<Graph> GraphsOf(const ResponseGraphs& response, std::string_view kind) {
  if (response.graphs.empty()) return {};
  if (kind == "histogram") return {response.graphs.front()};
  if (kind == "tornado") return {response.graphs.back()};
  if (kind == "profile") return response.profiles;
  if (kind == "defect-profile") return response.defectProfiles;
  if (kind == "capability") return CapabilityOf(response);
  std::vector<Graph> all{response.graphs.front(), response.graphs.back()};
  all.insert(all.end(), response.profiles.begin(), response.profiles.end());
  all.insert(all.end(), response.defectProfiles.begin(), response.defectProfiles.end());
  return all;
}

void AddLines(const std::vector<std::string>& lines, Graph& graph) {
  graph.notes.insert(graph.notes.end(), lines.begin(), lines.end());
}

constexpr double kBandFrom = 5;  // percent
constexpr double kBandTo = 95;

GraphBand BandOf(const OrderedCases& runs, const Variable& response) {
  GraphBand band;
  band.name = "5 % to 95 % of the runs";
  for (const EqualCountClass& one : runs.classes) {
    std::vector<double> values;
    for (std::size_t rank = one.begin; rank < one.end; ++rank) {
      const std::size_t run = runs.order[rank];
      if (!response.IsMissing(run)) values.push_back(response.Values()[run]);
    }
    if (values.empty()) continue;
    std::ranges::sort(values);
    band.x.push_back(one.median);
    band.lower.push_back(Percentile(values, kBandFrom));
    band.upper.push_back(Percentile(values, kBandTo));
  }
  return band;
}

}  // namespace

void AddProfileBands(const Spreadsheet& runs, Graph& profiles) {
  std::map<std::size_t, OrderedCases> ordered;
  for (Graph& panel : profiles.panels) {
    const auto predictor = runs.FindVariable(panel.xTitle);
    const auto response = runs.FindVariable(panel.yTitle);
    if (!predictor || !response) continue;
    const auto [place, isNew] = ordered.try_emplace(*predictor);
    if (isNew) place->second = OrderCases(runs.VariableAt(*predictor).Values());
    GraphBand band = BandOf(place->second, runs.VariableAt(*response));
    if (!band.x.empty()) panel.bands.push_back(std::move(band));
  }
}

std::vector<Graph> PanelsOf(const Graph& compound, const std::string& response) {
  std::vector<Graph> panels;
  for (const Graph& panel : compound.panels) {
    if (!panel.series.empty() && panel.series.front().name == response) panels.push_back(panel);
  }
  return panels;
}

std::vector<std::string> CapabilityLines(const ResponseResults& response) {
  if (!response.capability) return {};
  const std::vector<ResultRow>& rows = response.capability->rows;
  std::vector<std::string> lines;
  for (const ResultColumn& statistic : kListed) {
    const auto row = std::ranges::find(rows, statistic.identifier, &ResultRow::identifier);
    if (row == rows.end()) continue;
    const double value = row->Number("value"_column);
    if (!std::isnan(value)) lines.push_back(row->name + " " + FormatNumber("%.4g", value));
  }
  return lines;
}

std::vector<PlotPage> ProfilePlots(std::span<const ResponseGraphs> responses, std::string_view kind) {
  std::vector<PlotPage> pages;
  for (const ResponseGraphs& response : responses) {
    std::vector<Graph> graphs = GraphsOf(response, kind);
    if (graphs.empty()) continue;
    PlotPage page = CompoundPage(response.name, std::move(graphs));
    if (kind == kOverview) AddLines(response.capability, page.page);
    AddLines(response.notes, page.page);
    AddLines(response.notes, page.cell);
    pages.push_back(std::move(page));
  }
  return pages;
}

}  // namespace brenvolt
