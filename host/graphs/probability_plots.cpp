#include "host/graphs/probability_plots.h"

#include <algorithm>
#include <cmath>

#include "host/base/error.h"
#include "host/graphs/sorted_values.h"
#include "host/numeric/vector/distribution_values.h"

namespace brenvolt {
namespace {

Graph EmptyGraph(GraphKind kind, const GraphTexts& texts) {
  Graph graph;
  graph.kind = kind;
  graph.title = texts.title;
  graph.xTitle = texts.xTitle;
  graph.yTitle = texts.yTitle;
  return graph;
}

void NoteShown(std::size_t shown, std::size_t count, Graph& graph) {
  if (shown != count) graph.notes.push_back(ShownNote(shown, count));
}

GraphSeries Diagonal(const GraphTexts& texts, double from, double to) {
  return {texts.referenceName, SeriesStyle::kLine, {from, to}, {from, to}};
}

double PlottingPosition(std::size_t rank, std::size_t count) {
  return (static_cast<double>(rank) + 0.5) / static_cast<double>(count);
}

}  // namespace

Graph ProbabilityPlot(std::span<const double> sorted, const ArrayFunction& cdf, const GraphTexts& texts) {
  RequireSorted(sorted, "P-P plot");
  GraphSeries points{texts.dataName, SeriesStyle::kPoints, {}, {}};
  for (const std::size_t rank : ShownRanks(sorted.size())) {
    points.x.push_back(sorted[rank]);
    points.y.push_back(PlottingPosition(rank, sorted.size()));
  }
  cdf(points.x, points.x);
  if (!std::ranges::all_of(points.x, [](double p) { return p >= 0 && p <= 1; })) {
    throw Error("the distribution has no probability for a value", "P-P plot");
  }
  Graph graph = EmptyGraph(GraphKind::kProbabilityPlot, texts);
  NoteShown(points.x.size(), sorted.size(), graph);
  graph.series = {std::move(points), Diagonal(texts, 0, 1)};
  return graph;
}

Graph QuantilePlot(std::span<const double> sorted, const ArrayFunction& quantile, const GraphTexts& texts) {
  RequireSorted(sorted, "Q-Q plot");
  GraphSeries points{texts.dataName, SeriesStyle::kPoints, {}, {}};
  for (const std::size_t rank : ShownRanks(sorted.size())) {
    points.x.push_back(PlottingPosition(rank, sorted.size()));
    points.y.push_back(sorted[rank]);
  }
  quantile(points.x, points.x);
  if (!std::ranges::all_of(points.x, [](double x) { return std::isfinite(x) && x != kInvalidQuantile; })) {
    throw Error("the distribution has no quantile for a probability", "Q-Q plot");
  }
  Graph graph = EmptyGraph(GraphKind::kQuantilePlot, texts);
  NoteShown(points.x.size(), sorted.size(), graph);
  const double from = std::min(std::ranges::min(points.x), sorted.front());
  const double to = std::max(std::ranges::max(points.x), sorted.back());
  graph.series = {std::move(points), Diagonal(texts, from, to)};
  return graph;
}

Graph EmpiricalDistributionPlot(std::span<const double> sorted, std::span<const GraphCurve> curves,
                                const GraphTexts& texts) {
  RequireSorted(sorted, "empirical distribution function");
  GraphSeries steps{texts.dataName, SeriesStyle::kSteps, {}, {}};
  const std::vector<std::size_t> ranks = ShownRanks(sorted.size());
  const auto count = static_cast<double>(sorted.size());
  for (const std::size_t rank : ranks) {
    const double x = sorted[rank];
    if (!steps.x.empty() && steps.x.back() == x) continue;
    steps.x.push_back(x);
    steps.y.push_back(static_cast<double>(std::ranges::upper_bound(sorted, x) - sorted.begin()) / count);
  }
  Graph graph = EmptyGraph(GraphKind::kEmpiricalDistribution, texts);
  NoteShown(ranks.size(), sorted.size(), graph);
  graph.series.push_back(std::move(steps));
  graph.curves.assign(curves.begin(), curves.end());
  for (GraphCurve& curve : graph.curves) {
    if (curve.from != curve.to) continue;
    curve.from = sorted.front();
    curve.to = sorted.back();
  }
  return graph;
}

}  // namespace brenvolt
