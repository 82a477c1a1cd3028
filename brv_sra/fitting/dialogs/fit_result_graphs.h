// The graphs of a fit: a variable's values and how a fitted distribution follows them.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "brv_sra/fitting/fit_state.h"
#include "host/graphs/graph.h"
#include "host/statistics/histogram_classes.h"

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

// A graph of a variable with one of its fits, over the values that were fitted (ascending, finite). A fit
// that failed draws no curve. Throws Error if the plot needs a valid fit and has none, or the fit has no
// quantile for a probability.
Graph MakeFitPlot(FitPlot plot, const VariableFit& variable, const DistributionFit& fit,
                  std::span<const double> sorted);

}  // namespace brenvolt::sra
