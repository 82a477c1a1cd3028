// How far samples from a distribution stray from it, for P-P and Q-Q plots.
//
// The order statistic of rank i of n values from a continuous distribution function F has F(x_i) distributed as
// Beta(i, n - i + 1) (David & Nagaraja 2003, Order Statistics, section 2.1), so the limits that resampling from the
// distribution would give are known exactly, point by point.
#pragma once

#include <cstddef>
#include <string>

#include "host/graphs/graph.h"
#include "host/graphs/probability_plots.h"

namespace brenvolt {

// The share of samples that lie within the band at a point.
inline constexpr double kBandCoverage = 0.95;

// Of a P-P plot of `count` values: observed over theoretical probability.
GraphBand ProbabilityBand(std::size_t count, std::string name);
// Of a Q-Q plot: observed over theoretical quantile, where these are finite.
GraphBand QuantileBand(std::size_t count, const ArrayFunction& quantile, std::string name);

}  // namespace brenvolt
