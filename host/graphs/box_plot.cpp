#include "host/graphs/box_plot.h"

#include <algorithm>
#include <utility>

#include "host/graphs/sorted_values.h"
#include "host/statistics/moments.h"
#include "host/statistics/percentiles.h"

namespace brenvolt {
GraphBox MakeBox(std::span<const double> sorted, std::string name) {
  RequireSorted(sorted, "box plot");
  GraphBox box;
  box.name = std::move(name);
  box.lowerQuartile = Percentile(sorted, 25);
  box.median = Percentile(sorted, 50);
  box.upperQuartile = Percentile(sorted, 75);
  MomentAccumulator moments;
  for (const double x : sorted) moments.Add(x, 1);
  box.mean = moments.Finish().mean;
  const double reach = kWhiskerRanges * (box.upperQuartile - box.lowerQuartile);
  // A quartile between two order statistics may have no value within reach on its outer side; the whisker
  // then ends at the quartile.
  const auto first = std::ranges::lower_bound(sorted, box.lowerQuartile - reach);
  const auto end = std::ranges::upper_bound(sorted, box.upperQuartile + reach);
  box.lowerWhisker = std::min(*first, box.lowerQuartile);
  box.upperWhisker = std::max(*(end - 1), box.upperQuartile);
  box.outliers.assign(sorted.begin(), first);
  box.outliers.insert(box.outliers.end(), end, sorted.end());
  return box;
}

Graph BoxPlot(std::span<const double> sorted, const GraphTexts& texts) {
  Graph graph;
  graph.kind = GraphKind::kBoxPlot;
  graph.title = texts.title;
  graph.xTitle = texts.xTitle;
  graph.yTitle = texts.yTitle;
  GraphBox box = MakeBox(sorted, texts.dataName);
  std::vector<double> shown;
  for (const std::size_t rank : ShownRanks(box.outliers.size())) shown.push_back(box.outliers[rank]);
  if (shown.size() != box.outliers.size()) {
    graph.notes.push_back("outliers: " + ShownNote(shown.size(), box.outliers.size()));
  }
  box.outliers = std::move(shown);
  graph.boxes.push_back(std::move(box));
  return graph;
}

Graph SummaryGraph(std::vector<Graph> panels, std::vector<std::string> lines, std::string title) {
  Graph graph;
  graph.kind = GraphKind::kSummary;
  graph.title = std::move(title);
  graph.panels = std::move(panels);
  graph.notes = std::move(lines);
  return graph;
}

}  // namespace brenvolt
