// The chi-square distribution is the gamma distribution of half the degrees of freedom at half the statistic.
#include "host/numeric/goodness_of_fit/chi_square_tail.h"

#include <cmath>

#include "host/base/almost_equal.h"
#include "host/numeric/special/incomplete_gamma.h"

namespace brenvolt {
double ChiSquareTail(double statistic, double degreesOfFreedom) {
  const bool isValid = statistic >= 0.0 && degreesOfFreedom > 0.0 && std::isfinite(degreesOfFreedom);
  if (!isValid) return kNotSet;
  return UpperIncompleteGamma(0.5 * degreesOfFreedom, 0.5 * statistic);
}

}  // namespace brenvolt
