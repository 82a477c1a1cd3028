#include "host/graphs/histogram_graph.h"

#include <algorithm>
#include <functional>

#include "host/base/error.h"
#include "host/graphs/sorted_values.h"

namespace brenvolt {

Graph HistogramGraph(std::span<const double> sorted, std::span<const double> bounds, HistogramKind kind,
                     std::span<const GraphCurve> curves, const GraphTexts& texts) {
  RequireSorted(sorted, "histogram");
  const bool ascending = std::ranges::adjacent_find(bounds, std::not_fn(std::less<>())) == bounds.end();
  if (bounds.size() < 2 || !ascending) throw Error("the class bounds do not ascend", "histogram");

  Graph graph;
  graph.kind = kind == HistogramKind::kPlain ? GraphKind::kHistogram : GraphKind::kCumulativeHistogram;
  graph.title = texts.title;
  graph.xTitle = texts.xTitle;
  graph.yTitle = texts.yTitle;

  const auto below = std::ranges::lower_bound(sorted, bounds.front());
  GraphBars bars{texts.dataName, {bounds.begin(), bounds.end()}, {}};
  auto former = below;
  for (const double upper : bounds.subspan(1)) {
    const auto end = std::ranges::upper_bound(sorted, upper);
    const auto from = kind == HistogramKind::kPlain ? former : sorted.begin();
    bars.heights.push_back(static_cast<double>(end - from));
    former = end;
  }
  graph.bars.push_back(std::move(bars));
  const auto outside = (below - sorted.begin()) + (sorted.end() - former);
  if (outside > 0) graph.notes.push_back("values outside the classes: " + std::to_string(outside));

  graph.curves.assign(curves.begin(), curves.end());
  for (GraphCurve& curve : graph.curves) {
    if (curve.from != curve.to) continue;
    curve.from = bounds.front();
    curve.to = bounds.back();
  }
  return graph;
}

}  // namespace brenvolt
