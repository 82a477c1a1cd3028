// A graph for programs.
#pragma once

#include <nlohmann/json.hpp>

#include "host/graphs/graph.h"

namespace brenvolt {

// The kind, the titles, and the parts that it has; the panels as graphs of their own.
// docs/guide/fitting.md has its shape.
nlohmann::ordered_json GraphJson(const Graph& graph);

}  // namespace brenvolt
