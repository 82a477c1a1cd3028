// A histogram in characters, for terminals.
#pragma once

#include <cstddef>
#include <string>

#include "host/graphs/graph.h"

namespace brenvolt {

inline constexpr std::size_t kLeastChartWidth = 40;

// The title, then a row for each class with its bounds, a bar in block characters, and its count; where the graph has a
// curve, or a line or points over its bars, a mark stands in each row at what the curve has in the middle of the class. Neighbouring classes are
// joined until twenty rows are enough. Lines are no longer than `width`, of kLeastChartWidth at least, unless the
// bounds alone are. Empty for a graph without bars. Throws Error for an invalid formula.
std::string ChartText(const Graph& histogram, std::size_t width);

}  // namespace brenvolt
