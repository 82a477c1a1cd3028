// The chi-square test of a fitted distribution (Pearson 1900): values counted in bins against the counts
// that the fit expects.
//
// Continuous distributions: the data less the offset are rounded to a range of k = 20 to 50 round steps
// (host/base/axis_scaling.h). Equal probabilities: the boundaries are the fitted quantiles at 1/k, 2/k, …,
// the last 1e30. Equal intervals: the range in k equal widths.
//
// Discrete distributions: counts pile up on whole numbers, where neither rule puts sensible boundaries, so that the
// choice of binning does not count. A bin is one whole number of the data's range if there are 50 at most,
// else a group of 1, 2 or 5 times a power of ten; of a histogram, one class.
//
// The first and the last bin are open outwards, so that the expected counts add up to the number of values.
// A bin ends with its boundary included, within the rounding of the data. Neighbours are merged from both
// tails inwards until every bin expects 5 values (Cochran 1954); the bins that are left in the middle join
// the smaller neighbour.
//
// Degrees of freedom: the merged bins less 1 and less the parameters estimated from the data, 1 at least.
// With parameters from single values rather than from the binned counts the true distribution lies between
// this one and that for bins - 1 (Chernoff & Lehmann 1954), so the p-value errs towards rejection. Where the
// merged bins are no more than the parameters and 1, the difference is 0 or less and 1 replaces it: that is
// more than the fit leaves, and the p-value there errs towards acceptance.
#pragma once

#include <span>
#include <vector>

#include "brv_sra/fitting/fit_state.h"

namespace brenvolt::sra {

inline constexpr int kMostBins = 50;
inline constexpr int kFewestBins = 20;
inline constexpr double kLeastExpectedCount = 5.0;
inline constexpr double kTopBoundary = 1e30;

struct ChiSquareBin {
  double upper;  // the values up to here, the offset subtracted, that no bin before holds
  double observed;
  double expected;
};

// The bins of a valid fit before merging, for sorted data (ascending, finite). None if they cannot be
// made: no data, parameters without a distribution, a boundary that is not finite.
std::vector<ChiSquareBin> ChiSquareBins(const DistributionSpecification& fit, std::span<const double> sorted,
                                        ChiSquareBinning binning);

// The bins after merging.
std::vector<ChiSquareBin> MergeSmallBins(std::span<const ChiSquareBin> bins);

// The whole test in time O(bins log n). Every field is kNotSet if the test fails: no bins, or a single one
// after merging (fewer than ten values, or a fit far from the data). `withPValue` false leaves the p-value
// kNotSet.
ChiSquareResult ComputeChiSquareTest(const DistributionFit& fit, std::span<const double> sorted,
                                     ChiSquareBinning binning, bool withPValue = true);

}  // namespace brenvolt::sra
