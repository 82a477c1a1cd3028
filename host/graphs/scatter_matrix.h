// Every variable against every other, with what is to be said of each pair.
#pragma once

#include <functional>
#include <span>
#include <string>
#include <vector>

#include "host/graphs/graph.h"

namespace brenvolt {

struct ScatterVariable {
  std::string name;
  std::span<const double> values;  // NaN where there is none
};

// More would leave nothing of each panel; the first are shown, and a note says so.
inline constexpr std::size_t kMostScattered = 10;
// Of a pair that many points, the first; a note says so.
inline constexpr std::size_t kMostScatteredPoints = 1000;

// The lines of text about a pair, by the places of its variables.
using PairText = std::function<std::vector<std::string>(std::size_t first, std::size_t second)>;

// Panels row by row: histograms on the diagonal, points below it, texts above it. The variables have equally many
// values. Throws Error without variables.
Graph ScatterMatrix(std::span<const ScatterVariable> variables, const PairText& text, std::string title);

}  // namespace brenvolt
