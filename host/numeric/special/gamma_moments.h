// Moments of the powers of an exponential variable E, of which the Weibull and the extreme value
// distributions are made: with v(k) = (E^-k - 1) / k, which tends to -ln E at k = 0, the mean and variance of
// v. Both are smooth in k, and no difference in them cancels.
#pragma once

namespace brenvolt {

// (Gamma(1 - k) - 1) / k; Euler's constant at k = 0; infinite from k = 1.
double GammaPowerMean(double k);

// (Gamma(1 - 2 k) - Gamma(1 - k)^2) / k^2; pi^2 / 6 at k = 0; infinite from k = 1 / 2.
double GammaPowerVariance(double k);

}  // namespace brenvolt
