// The chi-square distribution is the gamma distribution of half the degrees of freedom at half the statistic.
#include "host/numeric/goodness_of_fit/chi_square_tail.h"

#include <cmath>

#include "host/base/almost_equal.h"
#include "host/numeric/special/incomplete_gamma.h"

namespace brenvolt {
namespace {

bool IsValid(double statistic, double degreesOfFreedom) {
  return statistic >= 0.0 && degreesOfFreedom > 0.0 && std::isfinite(degreesOfFreedom);
}

}  // namespace

double ChiSquareTail(double statistic, double degreesOfFreedom) {
  if (!IsValid(statistic, degreesOfFreedom)) return kNotSet;
  return UpperIncompleteGamma(0.5 * degreesOfFreedom, 0.5 * statistic);
}

double ChiSquareTailComplement(double statistic, double degreesOfFreedom) {
  if (!IsValid(statistic, degreesOfFreedom)) return kNotSet;
  return LowerIncompleteGamma(0.5 * degreesOfFreedom, 0.5 * statistic);
}

}  // namespace brenvolt
