// What range of x and y a graph covers.
#pragma once

#include <limits>
#include <span>

#include "host/graphs/graph.h"

namespace brenvolt {

struct Extent {
  double from = std::numeric_limits<double>::infinity();
  double to = -std::numeric_limits<double>::infinity();

  bool IsEmpty() const { return !(from <= to); }
  // Values that are not finite are left out.
  void Add(double value);
  void Add(std::span<const double> values);
  // By some hundredths on either side.
  void Widen();
};

struct GraphExtent {
  Extent x;
  Extent y;
};

// Of the graph and its curves, which are sampled. Bars stand on zero. A curve that exceeds all bars by far, as a
// density with a pole does, is cut so that the bars stay visible.
GraphExtent ExtentOf(const Graph& graph, std::span<const GraphSeries> curves);

// The parts of a line that lie below `ceiling`, as successive lines; a part ends where the line crosses it.
std::vector<GraphSeries> CutAbove(const GraphSeries& line, double ceiling);

}  // namespace brenvolt
