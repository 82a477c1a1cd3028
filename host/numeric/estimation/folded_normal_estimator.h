// Maximum-likelihood estimation of the folded normal distribution.
#pragma once

#include <span>

#include "host/base/almost_equal.h"
#include "host/numeric/estimation/estimators.h"

namespace brenvolt {

// Location >= 0 and scale > 0 of the normal variable whose magnitude is x - offset, by maximum likelihood
// (Leone, Nelson & Nottingham 1961; Tsagris, Beneki & Hassani 2014). A value equal to the offset is within the
// support. All roots of the likelihood equation are bracketed and solved to the last bits; the one of the
// greatest likelihood is taken.
struct FoldedNormalEstimate {
  double location = kNotSet;
  double scale = kNotSet;
};
EstimationResult<FoldedNormalEstimate> EstimateFoldedNormal(std::span<const double> data, double offset,
                                                            const EstimationPoll& poll = {});

}  // namespace brenvolt
