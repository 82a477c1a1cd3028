// What a panel shows within its axes: bars, lines, points, boxes and what else a graph is made of.
#pragma once

#include <QSize>
#include <span>
#include <string>

#include "host/drawing/theme.h"
#include "host/graphs/graph.h"

class QCustomPlot;

namespace brenvolt {

struct PanelContent {
  const Graph& graph;
  std::span<const std::string> categories;  // named bars or boxes, which lie on their side
  std::span<const GraphSeries> curves;      // of the graph, sampled
};

// Adds them to a plot of `size` pixels whose axes have their ranges. Points of a `small` plot are small.
void AddParts(const PanelContent& content, const Theme& theme, const QSize& size, bool small,
              QCustomPlot& plot);

}  // namespace brenvolt
