#include "host/graphs/correlation_map.h"

#include <utility>

#include "host/base/error.h"

namespace brenvolt {

Graph CorrelationMap(std::vector<std::string> names, const CorrelationAt& correlation, std::string title) {
  if (names.empty()) throw Error("there are no variables", "correlations");
  Graph graph;
  graph.kind = GraphKind::kHeatMap;
  graph.title = std::move(title);
  if (names.size() > kMostMapped) {
    graph.notes.push_back("the first " + std::to_string(kMostMapped) + " of " + std::to_string(names.size()) +
                          " variables are shown");
    names.resize(kMostMapped);
  }
  GraphCells cells;
  cells.name = "Correlation";
  for (std::size_t row = 0; row < names.size(); ++row) {
    for (std::size_t column = 0; column < names.size(); ++column)
      cells.values.push_back(row == column ? 1 : correlation(row, column));
  }
  cells.columns = names;
  cells.rows = std::move(names);
  graph.cells.push_back(std::move(cells));
  return graph;
}

}  // namespace brenvolt
