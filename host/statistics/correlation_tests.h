// Correlations of two variables with their p-values.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "host/base/almost_equal.h"

namespace brenvolt {

struct CorrelationTest {
  std::int64_t count = 0;  // cases in which both values are present
  double coefficient = kNotSet;
  double pValue = kNotSet;  // of a correlation of 0, two-sided
};

// Over the cases in which neither value is NaN; x and y are of one length. Not set if fewer than two such
// cases are left or either variable is constant; no p-value below three cases. The p-value is that of
// Student's t with count - 2 degrees of freedom, for Spearman's coefficient an approximation (Kendall &
// Stuart 1979, section 31.19) that is good from ten cases on.
//
// Spearman's coefficient: Pearson's of the ranks, equal values sharing the mean of their ranks.
CorrelationTest SpearmanTest(std::span<const double> x, std::span<const double> y);

// Spearman's coefficients of all pairs of columns of one length, row by row. A pair is taken over the cases in which
// neither value is NaN; NaN where the coefficient is not set.
std::vector<double> SpearmanMatrix(std::span<const std::span<const double>> columns);

// The p-value of a coefficient over `count` cases, as above.
double CorrelationPValue(double coefficient, std::int64_t count);

}  // namespace brenvolt
