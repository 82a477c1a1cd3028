// What a distribution lets expect of a sample.
#pragma once

#include <span>

#include "host/graphs/graph.h"
#include "host/jobs/notation/distribution_notation.h"

namespace brenvolt {

// How many of `count` values the classes between successive bounds are expected to hold, over the range of the bounds: a
// line of the density in units of a class for a continuous distribution, whose classes are of one width, a point in the
// middle of each class otherwise. The distribution is kept within its bounds, and if it is truncated between its 0.5 % and
// 99.5 % quantiles. Without points where nothing of it is left, and for a discrete one that is truncated in any way, whose
// sampling methods differ in whether a bound itself is drawn.
GraphSeries ExpectedCounts(const NotedDistribution& distribution, bool isTruncated,
                           std::span<const double> bounds, double count);

}  // namespace brenvolt
