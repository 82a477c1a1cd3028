// The labels of markers, which stand above the plot.
#pragma once

#include <cstddef>

#include "host/drawing/theme.h"
#include "host/graphs/graph.h"

class QCustomPlot;

namespace brenvolt {

// The rows that they take above the axes, as these lie.
std::size_t MarkerRows(const Graph& graph, const QCustomPlot& plot);
void PlaceMarkers(const Graph& graph, const Theme& theme, QCustomPlot& plot);

}  // namespace brenvolt
