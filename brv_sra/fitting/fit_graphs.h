// The graphs of a fit: a variable's values and how a fitted distribution follows them.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "brv_sra/fitting/fit_state.h"
#include "host/graphs/graph.h"

namespace brenvolt::sra {

enum class FitPlot : std::uint8_t {
  kHistogram,
  kCumulativeHistogram,
  kEmpiricalDistribution,
  kProbabilityPlot,
  kQuantilePlot,
  kBoxPlot,  // of the values alone
  kSummary   // histogram, box plot, P-P and Q-Q plot, and the moments
};

// The classes of a histogram, and what one unit of the fitted curve is worth in it: the width of a class for
// a density or a probability of whole numbers, 1 for the probability of a class.
struct HistogramClasses {
  std::vector<double> bounds;
  double width = 1;
};

// Continuous values: equal round steps (host/base/axis_scaling.h), at least as many as Sturges (1926) asks
// for, 1 + log2 n, at most 2.5 times that, and no more than 50. Discrete ones: a class is one whole number
// around its middle, or a round number of them where there are more than 50; where not all values are whole,
// a class is one distinct value, its bounds midway to its neighbours. Ascending finite values, at least one.
HistogramClasses ClassesOf(std::span<const double> sorted, bool continuous);

// A graph of a variable with one of its fits, over the values that were fitted (ascending, finite). A fit
// that failed draws no curve. Throws Error where the plot needs a valid fit and has none, or the fit has no
// quantile for a probability.
Graph MakeFitPlot(FitPlot plot, const VariableFit& variable, const DistributionFit& fit,
                  std::span<const double> sorted);

}  // namespace brenvolt::sra
