// How well a distribution follows a sample, point by point: P-P and Q-Q plots and the empirical distribution
// function. `sorted` holds finite ascending values, one at least; Error otherwise. Of a large sample some
// thousand points are shown (sorted_values.h), and a note says so.
//
// The probability of the order statistic of rank i = 1 … n is its plotting position (i - 0.5)/n (Hazen 1914).
#pragma once

#include <functional>
#include <span>

#include "host/graphs/graph.h"

namespace brenvolt {

// A distribution function or quantile over an array; `out` has the length of `in`.
using ArrayFunction = std::function<void(std::span<const double> in, std::span<double> out)>;

// Points (F(x_i), (i - 0.5)/n), theoretical against observed probability, and the line y = x from 0 to 1.
// Throws Error when F gives anything but probabilities.
Graph ProbabilityPlot(std::span<const double> sorted, const ArrayFunction& cdf, const GraphTexts& texts);

// Points (Q((i - 0.5)/n), x_i), theoretical against observed quantile, and the line y = x over both. Throws
// Error when a quantile is not finite or invalid.
Graph QuantilePlot(std::span<const double> sorted, const ArrayFunction& quantile, const GraphTexts& texts);

// Steps of the share of values up to and including x, at each distinct value; fitted curves, if they have
// no range (from = to), span the values.
Graph EmpiricalDistributionPlot(std::span<const double> sorted, std::span<const GraphCurve> curves,
                                const GraphTexts& texts);

}  // namespace brenvolt
