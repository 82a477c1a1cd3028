// Moments of the bounded Johnson family, of y = 1 / (1 + exp(-(z - gamma) / delta)), z standard normal. They
// have no closed form.
#pragma once

namespace brenvolt {

struct BoundedMoments {
  double mean = 0.0;
  double deviation = 0.0;
  double skewness = 0.0;
  double kurtosis = 0.0;  // excess
};

// gamma >= 0. The trapezoidal rule, whose error for a function analytic within pi delta of the real line is
// exp(-2 pi^2 delta / step); reaching far enough for the fourth power of the lognormal that y is while it is
// small. Time grows as 1 / delta: some 10 microseconds at 1, 1 ms at 0.01.
BoundedMoments MomentsOfBounded(double gamma, double delta);

struct MeanAndVariance {
  double mean = 0.0;
  double variance = 0.0;
};

// Any gamma, any delta > 0, in bounded time. Relative error below 1e-13 for delta from 0.002 to 40 (tables);
// of the variance, 1e-16 delta beyond, where y hardly varies.
MeanAndVariance BoundedMeanAndVariance(double gamma, double delta);

}  // namespace brenvolt
