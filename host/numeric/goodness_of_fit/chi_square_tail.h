// The tail probability of the chi-square distribution, the p-value of a chi-square test.
#pragma once

namespace brenvolt {

// P(X >= statistic) for X from the chi-square distribution; degreesOfFreedom > 0 need not be whole. An infinite
// statistic gives the limit 0. kNotSet for a statistic that is negative or NaN and for degrees of freedom that
// are not positive and finite. Relative error below 1e-13, in tails
// below 1e-6 to 1e-300 below 1e-10, for up to 1e6 degrees of freedom.
double ChiSquareTail(double statistic, double degreesOfFreedom);

}  // namespace brenvolt
