// Tests of a fitted distribution against its sample.
#pragma once

#include <span>

#include "brv_sra/fitting/fit_state.h"

namespace brenvolt::sra {

// Fills the test records of a valid fit from `sorted` (ascending, finite, at least one value).
void TestFit(DistributionFit& fit, std::span<const double> sorted, ChiSquareBinning binning);

}  // namespace brenvolt::sra
