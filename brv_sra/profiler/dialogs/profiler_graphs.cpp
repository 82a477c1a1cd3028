#include "brv_sra/profiler/dialogs/profiler_graphs.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/strings.h"
#include "host/base/error.h"
#include "host/statistics/equal_count_classes.h"

namespace brenvolt::sra {
namespace {

constexpr std::size_t kMostPoints = 1000;  // of a panel
// The window grows by so many layout units for each predictor and dependent beyond those that fit.
constexpr std::int32_t kLayoutStep = 1915;
constexpr std::size_t kPredictorsThatFit = 2;
constexpr std::size_t kDependentsThatFit = 3;

std::int32_t Growth(std::size_t count, std::size_t fitting) {
  return count > fitting ? static_cast<std::int32_t>(count - fitting) * kLayoutStep : 0;
}

GraphSeries MeanLine(const OrderedCases& runs, std::span<const double> response) {
  GraphSeries line;
  line.name = ResourceString(kProfilerMean);
  line.style = SeriesStyle::kLine;
  for (const EqualCountClass& one : runs.classes) {
    double mean = 0;
    double count = 0;
    for (std::size_t rank = one.begin; rank < one.end; ++rank) {
      const double value = response[runs.order[rank]];
      if (std::isnan(value)) continue;
      count += 1;
      mean += (value - mean) / count;
    }
    if (count == 0) continue;
    line.x.push_back(one.median);
    line.y.push_back(mean);
  }
  return line;
}

GraphSeries Points(const ProfiledPredictor& predictor, const ProfiledResponse& response) {
  GraphSeries points;
  points.name = response.name;
  for (std::size_t i = 0; i < response.values.size() && points.x.size() < kMostPoints; ++i) {
    if (std::isnan(response.values[i]) || std::isnan(predictor.values[i])) continue;
    points.x.push_back(predictor.values[i]);
    points.y.push_back(response.values[i]);
  }
  return points;
}

Graph Panel(const ProfiledPredictor& predictor, const ProfiledResponse& response, const OrderedCases& runs) {
  Graph panel;
  panel.kind = GraphKind::kProfile;
  panel.title = response.name;
  panel.title.append(" / ").append(predictor.name);
  panel.xTitle = predictor.name;
  panel.yTitle = response.name;
  panel.series = {Points(predictor, response), MeanLine(runs, response.values)};
  return panel;
}

// How many runs there are and how many of them a panel shows. Throws Error if no response has a prediction.
void AddNotes(const ProfiledColumns& columns, Graph& graph) {
  bool isAnyPredicted = false;
  for (const ProfiledResponse& response : columns.responses) {
    const std::size_t runs = response.values.size();
    const auto missing = static_cast<std::size_t>(
        std::ranges::count_if(response.values, [](double y) { return std::isnan(y); }));
    isAnyPredicted = isAnyPredicted || missing < runs;
    if (missing > 0) {
      graph.notes.push_back(response.name + ": " + std::to_string(missing) + " of " + std::to_string(runs) +
                            " runs have no prediction and are left out");
    }
    if (runs - missing > kMostPoints) {
      graph.notes.push_back(response.name + ": " + std::to_string(kMostPoints) + " of " +
                            std::to_string(runs - missing) + " points are shown");
    }
  }
  if (isAnyPredicted || columns.responses.empty()) return;
  std::string names;
  for (const ProfiledResponse& response : columns.responses)
    names += (names.empty() ? "" : ", ") + response.name;
  throw Error(std::string(ResourceString(kMsgProfilerGraphFailed)), names);
}

}  // namespace

bool FitsProfileLimit(std::size_t predictors, std::size_t dependents) {
  return predictors == 0 || dependents <= kMostProfiles / predictors;
}

Graph ProfileGraph(const ProfiledColumns& columns, const RunProgress& bars) {
  const std::size_t m = columns.predictors.size();
  const std::size_t d = columns.responses.size();
  if (!FitsProfileLimit(m, d)) throw Error(std::string(ResourceString(kMsgProfilerTooManyGraphs)));
  const auto progress = Computing(bars, m * d + 1);
  progress->ShowNow();
  Graph graph;
  graph.kind = GraphKind::kSummary;
  graph.title = ResourceString(kProfilerProfilesTitle);
  graph.panelColumns = m;
  graph.extraWidth = Growth(m, kPredictorsThatFit);
  graph.extraHeight = Growth(d, kDependentsThatFit);
  AddNotes(columns, graph);
  graph.panels.resize(m * d);
  for (std::size_t j = 0; j < m; ++j) {
    const OrderedCases runs = OrderCases(columns.predictors[j].values);
    for (std::size_t k = 0; k < d; ++k) {
      graph.panels[k * m + j] = Panel(columns.predictors[j], columns.responses[k], runs);
      progress->Step();
    }
  }
  return graph;
}

}  // namespace brenvolt::sra
