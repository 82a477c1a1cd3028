// What stands in words beside a plot: the names on its axis, its legend and its notes.
#pragma once

#include <QString>
#include <string>
#include <vector>

#include "host/drawing/theme.h"
#include "host/graphs/graph.h"

class QCustomPlot;

namespace brenvolt {

inline constexpr int kPadding = 8;

// A vertical line of its own, whose label stands above the plot and in no legend.
bool IsMarker(const GraphSeries& series);

// The names on the vertical axis of a graph that has such.
std::vector<std::string> CategoriesOf(const Graph& graph);

// The names that need a legend: all if there are several things to tell apart.
std::vector<std::string> LegendOf(const Graph& graph);
// The lines that they take.
int LegendLines(const std::vector<std::string>& names, int width);
// Shows them with what the plot has; its items are the caller's to place.
void StyleLegend(const std::vector<std::string>& names, int width, const Theme& theme, QCustomPlot& plot);

// In several lines, if there are many.
QString NotesText(const Graph& graph, int width);

}  // namespace brenvolt
