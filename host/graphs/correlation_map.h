// A matrix of correlations as a table in colours.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/graphs/graph.h"

namespace brenvolt {

// More would leave nothing of each cell; the first are shown, and a note says so.
inline constexpr std::size_t kMostMapped = 100;

// The correlation of two variables by their places; NaN where there is none. It is asked for the cells that are shown.
using CorrelationAt = std::function<double(std::size_t row, std::size_t column)>;

// Throws Error without variables.
Graph CorrelationMap(std::vector<std::string> names, const CorrelationAt& correlation, std::string title);

}  // namespace brenvolt
