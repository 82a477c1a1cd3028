// The Anderson-Darling statistic of a fully specified continuous distribution, and its distribution.
#pragma once

#include <cstdint>
#include <span>

namespace brenvolt::sra {

// The statistic of the probabilities of sorted data (host/numeric/goodness_of_fit/anderson_darling_sum.h). Throws
// NumericalException "andersonDarling: n <= 0" for no values.
double andersonDarling(std::span<const double> probabilities);

// P(A² <= statistic) under the hypothesis for n values, in [0, 1]; NaN for a NaN statistic. Throws
// NumericalException "n <= 0" for n < 1. Exact for n = 1. Otherwise the limiting distribution with a
// correction proportional to 1/n from tables up to 5, an exponential tail beyond; 0 below 0.05. Its distance
// from the exact distribution by n: docs/evidence/anderson-darling.md.
double AndersonDarlingDistribution(std::int64_t n, double statistic);

}  // namespace brenvolt::sra
