// What range and standard deviation of a normal sample are in units of the deviation that it was drawn with.
#pragma once

#include <cstddef>

namespace brenvolt {

// Mean and standard deviation of the range of `count` values, d2 and d3 (Tippett 1925, On the extreme individuals and the
// range of samples taken from a normal population, Biometrika 17, equations 12 and 20): integrals, computed to 1e-12.
struct RangeConstants {
  double d2 = 0;
  double d3 = 0;
};
// Of two values or more; what was computed for a count is kept.
RangeConstants RangeConstantsOf(std::size_t count);

// The mean of the sample standard deviation of `count` values, two or more: c4 = sqrt(2 / (n - 1)) Γ(n / 2) / Γ((n - 1) / 2)
// (Holtzman 1950, The unbiased estimate of the population variance and standard deviation, American Journal of Psychology
// 63).
double C4(std::size_t count);
// Its standard deviation, sqrt(1 - c4^2).
double C5(std::size_t count);

}  // namespace brenvolt
