// Histograms of a sample with fitted curves over them.
#pragma once

#include <span>

#include "host/graphs/graph.h"

namespace brenvolt {

enum class HistogramKind : std::uint8_t {
  kPlain,      // the height of a bar is the number of values in its class
  kCumulative  // the number of values in its class and all before it
};

// Class i holds the values above bounds[i] and not above bounds[i + 1], the first class also its lower bound.
// Values outside the bounds are in no bar, and a note says how many there are; those below the bounds do
// count in a cumulative histogram. `sorted` ascending without NaN, `bounds` strictly ascending, two at least:
// throws Error otherwise. A curve keeps its range, or spans the bounds when it has none (from = to).
Graph HistogramGraph(std::span<const double> sorted, std::span<const double> bounds, HistogramKind kind,
                     std::span<const GraphCurve> curves, const GraphTexts& texts);

}  // namespace brenvolt
