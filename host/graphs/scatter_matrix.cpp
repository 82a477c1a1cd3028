#include "host/graphs/scatter_matrix.h"

#include <algorithm>
#include <cmath>

#include "host/base/error.h"
#include "host/graphs/histogram_graph.h"
#include "host/statistics/histogram_classes.h"

namespace brenvolt {
namespace {

Graph Diagonal(const ScatterVariable& variable) {
  std::vector<double> sorted;
  std::ranges::copy_if(variable.values, std::back_inserter(sorted),
                       [](double x) { return std::isfinite(x); });
  std::ranges::sort(sorted);
  Graph graph;
  if (!sorted.empty()) {
    graph = HistogramGraph(sorted, ClassesOf(sorted, true).bounds, HistogramKind::kPlain, {}, {});
  }
  graph.title = graph.xTitle = graph.yTitle = variable.name;
  return graph;
}

Graph Points(const ScatterVariable& x, const ScatterVariable& y) {
  Graph graph;
  graph.kind = GraphKind::kScatter;
  graph.xTitle = x.name;
  graph.yTitle = y.name;
  GraphSeries points{y.name, SeriesStyle::kPoints, {}, {}};
  for (std::size_t i = 0; i < x.values.size() && points.x.size() < kMostScatteredPoints; ++i) {
    if (!std::isfinite(x.values[i]) || !std::isfinite(y.values[i])) continue;
    points.x.push_back(x.values[i]);
    points.y.push_back(y.values[i]);
  }
  graph.series.push_back(std::move(points));
  return graph;
}

Graph Text(const ScatterVariable& x, const ScatterVariable& y, std::vector<std::string> lines) {
  Graph graph;
  graph.kind = GraphKind::kText;
  graph.xTitle = x.name;
  graph.yTitle = y.name;
  graph.notes = std::move(lines);
  return graph;
}

std::string FirstOf(std::size_t shown, std::size_t all, const char* what) {
  return "the first " + std::to_string(shown) + " of " + std::to_string(all) + " " + what + " are shown";
}

}  // namespace

Graph ScatterMatrix(std::span<const ScatterVariable> variables, const PairText& text, std::string title) {
  if (variables.empty()) throw Error("there are no variables", "scatter matrix");
  const std::size_t shown = std::min(variables.size(), kMostScattered);
  const std::size_t cases = variables.front().values.size();
  Graph graph;
  graph.kind = GraphKind::kScatterMatrix;
  graph.title = std::move(title);
  graph.panelColumns = shown;
  for (std::size_t row = 0; row < shown; ++row) {
    for (std::size_t column = 0; column < shown; ++column) {
      const ScatterVariable& x = variables[column];
      const ScatterVariable& y = variables[row];
      if (row == column) {
        graph.panels.push_back(Diagonal(x));
      } else {
        graph.panels.push_back(row > column ? Points(x, y) : Text(x, y, text(row, column)));
      }
    }
  }
  if (shown < variables.size()) graph.notes.push_back(FirstOf(shown, variables.size(), "variables"));
  if (cases > kMostScatteredPoints)
    graph.notes.push_back(FirstOf(kMostScatteredPoints, cases, "points of each pair"));
  return graph;
}

}  // namespace brenvolt
