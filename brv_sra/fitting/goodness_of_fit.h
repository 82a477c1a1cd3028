// The goodness-of-fit tests of a fitted distribution: Kolmogorov-Smirnov, chi-square and, for continuous
// distributions, Anderson-Darling.
#pragma once

#include <span>

#include "brv_sra/fitting/fit_state.h"
#include "host/numeric/goodness_of_fit/kolmogorov_smirnov.h"

namespace brenvolt::sra {

// Runs the tests of a fit whose specification and number of estimated parameters are set, on sorted data
// (ascending, finite), and fills its records. What fails stays kNotSet: every test of a fit that is not
// valid, has invalid parameters, or has no data; both Anderson-Darling values where a probability could not
// be computed. Throws NumericalException only as the Anderson-Darling functions do.
void TestFit(DistributionFit& fit, std::span<const double> sorted, ChiSquareBinning binning);
// The same without p-values, which stay kNotSet: for the bootstrap, which compares statistics.
void TestFitStatistics(DistributionFit& fit, std::span<const double> sorted, ChiSquareBinning binning);

}  // namespace brenvolt::sra
