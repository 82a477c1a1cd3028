// The test of a sample for normality, its mean and standard deviation estimated from the sample itself.
#pragma once

#include <cstdint>
#include <span>

#include "host/base/almost_equal.h"

namespace brenvolt {

struct NormalityTest {
  std::int64_t count = 0;      // of values that are not NaN
  double statistic = kNotSet;  // A², not corrected for the size of the sample
  double pValue = kNotSet;
};

// The Anderson-Darling test of the values, in any order; NaN values are passed over. Both parameters being
// fitted, A² is far smaller than under known ones; its p-value is that of D'Agostino & Stephens (1986),
// Goodness-of-Fit Techniques, section 4.8.5 (case 3), table 4.9: of A² (1 + 0.75 / n + 2.25 / n²). Beyond a
// modified statistic of 10 the p-value is the one at 10, 4e-24. Nothing is set for fewer than 8 values, of
// which the table does not hold, and for values that are all equal or not finite.
NormalityTest TestNormality(std::span<const double> values);

}  // namespace brenvolt
