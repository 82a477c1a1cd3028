// Maximum-likelihood estimation of the triangular distribution between the extremes of a sample.
#pragma once

#include <functional>
#include <span>

#include "host/base/almost_equal.h"
#include "host/numeric/estimation/estimation_fault.h"

namespace brenvolt {

struct TriangularEstimate {
  double minimum = kNotSet;
  double maximum = kNotSet;
  double mode = kNotSet;
};

// Minimum and maximum are the extremes of `sorted` (ascending, finite); the mode is searched: a scan over
// about a hundred midpoints between distinct values, then a shrinking bracket around the best of them, until
// the log-likelihood at both its ends agrees within 1e-8 or the bracket cannot shrink any more. In the search a
// value counts only if its density is 1e-10 or more, so that the mode depends on the units of the data:
// where the range exceeds 2e10, no value counts and the first candidate is kept. The values at the extremes
// have density 0 wherever the mode lies between them: the likelihood of the whole sample is 0, and has no
// maximum. `poll` is called between candidates and may throw. kNoSpread where the extremes are equal within 15
// units in the last place, kNotFinite where their distance overflows.
//
// A candidate costs O(log n) and the logarithms of some hundred values, from running sums over blocks; memory
// is n / 64 reals.
EstimationResult<TriangularEstimate> EstimateTriangular(std::span<const double> sorted,
                                                        const std::function<void()>& poll);

}  // namespace brenvolt
