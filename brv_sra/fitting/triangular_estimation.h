// Maximum-likelihood estimation of the triangular distribution between the extremes of a sample.
#pragma once

#include <functional>
#include <span>

#include "host/base/almost_equal.h"

namespace brenvolt::sra {

struct TriangularEstimate {
  double minimum = kNotSet;
  double maximum = kNotSet;
  double mode = kNotSet;
  // At the mode, without the values whose density is below 1e-10: the extremes always are among them, as
  // their density is 0 and the full log-likelihood -infinity.
  double logLikelihood = kNotSet;
  bool isValid = false;
};

// Minimum and maximum are the extremes of `sorted` (ascending, finite); the mode is searched: a scan over
// about a hundred midpoints between distinct values, then a shrinking bracket around the best of them, until
// the log-likelihood at both its ends agrees within 1e-8 or the bracket cannot shrink any more. `poll` is
// called between candidates and may throw. Invalid where the extremes are equal within 15 units in the last
// place.
//
// A candidate costs O(log n) and the logarithms of some hundred values, from running sums over blocks; memory
// is n / 64 reals.
TriangularEstimate EstimateTriangular(std::span<const double> sorted, const std::function<void()>& poll);

}  // namespace brenvolt::sra
