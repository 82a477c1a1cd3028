#include "host/jobs/measured/capability_plots.h"

#include <algorithm>
#include <limits>
#include <string>
#include <utility>

#include "host/graphs/histogram_graph.h"
#include "host/statistics/histogram_classes.h"

namespace brenvolt {
namespace {

// A level over all points: steps where it follows the sizes of subgroups.
GraphSeries LevelOf(std::string name, const std::vector<double>& levels, double first) {
  constexpr double kHalf = 0.5;
  GraphSeries line{std::move(name), SeriesStyle::kLine, {}, {}};
  for (std::size_t i = 0; i < levels.size(); ++i) {
    const double x = first + static_cast<double>(i);
    const bool isNew = i == 0 || levels[i] != levels[i - 1];
    const bool isLast = i + 1 == levels.size() || levels[i] != levels[i + 1];
    if (isNew) line.x.push_back(x - kHalf), line.y.push_back(levels[i]);
    if (isLast) line.x.push_back(x + kHalf), line.y.push_back(levels[i]);
  }
  return line;
}

Graph ChartGraph(const CapabilityFindings& found, bool isLocation) {
  const ControlChart& chart = isLocation ? found.charts.location : found.charts.dispersion;
  const std::string of = isLocation ? found.LocationTitle() : found.DispersionTitle();
  Graph graph;
  graph.kind = GraphKind::kScatter;
  graph.title = of + " chart of " + found.response;
  graph.xTitle = found.chartWord == "i-mr" ? "Value" : "Subgroup";
  graph.yTitle = of;
  const double first = 1 + static_cast<double>(found.charts.location.points.size() - chart.points.size());
  GraphSeries line{of, SeriesStyle::kLine, {}, chart.points};
  for (std::size_t i = 0; i < chart.points.size(); ++i) line.x.push_back(first + static_cast<double>(i));
  GraphSeries signals{"Signal", SeriesStyle::kPoints, {}, {}};
  for (const ControlSignal& signal : chart.signals) {
    signals.x.push_back(line.x[signal.point]);
    signals.y.push_back(line.y[signal.point]);
  }
  graph.series.push_back(std::move(line));
  graph.series.push_back(LevelOf("Centre", chart.centre, first));
  graph.series.push_back(LevelOf("Lower limit", chart.lower, first));
  graph.series.push_back(LevelOf("Upper limit", chart.upper, first));
  if (!signals.x.empty()) graph.series.push_back(std::move(signals));
  return graph;
}

Graph HistogramOf(const CapabilityFindings& found) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  constexpr const char* kExcluded = "Out of specification";
  std::vector<double> sorted = found.values;
  std::ranges::sort(sorted);
  GraphTexts texts;
  texts.title = "Histogram of " + found.response;
  texts.xTitle = found.response;
  texts.yTitle = "Number of parts";
  texts.dataName = "Observed";
  Graph graph = HistogramGraph(sorted, ClassesOf(sorted, true).bounds, HistogramKind::kPlain, {}, texts);
  if (found.limits.HasLower()) graph.regions.push_back({kExcluded, -kInfinity, found.limits.lower});
  if (found.limits.HasUpper()) graph.regions.push_back({kExcluded, found.limits.upper, kInfinity});
  return graph;
}

}  // namespace

std::vector<PlotPage> CapabilityPlots(const CapabilityFindings& found, std::string_view kind) {
  std::vector<Graph> graphs;
  if (kind != "histogram") graphs = {ChartGraph(found, true), ChartGraph(found, false)};
  if (kind != "control-charts") graphs.push_back(HistogramOf(found));
  std::vector<PlotPage> pages;
  pages.push_back(CompoundPage(found.response, std::move(graphs)));
  return pages;
}

}  // namespace brenvolt
