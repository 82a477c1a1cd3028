// The distributions of lives, extremes and exceedances, and the triangular one. The vocabulary is that of
// distributions.h. A positive shape of the generalized types means a heavy upper tail, a negative one a
// finite upper end; both are smooth through shape 0, the Gumbel and the exponential distribution.
#pragma once

#include <span>

#include "host/numeric/distributions/array_forms.h"
#include "host/numeric/vector/distribution_values.h"

namespace brenvolt {

namespace weibull {  // scale > 0: the characteristic life; shape > 0
bool IsValid(double scale, double shape);
double Density(double x, double scale, double shape, double threshold);
double LogDensity(double x, double scale, double shape, double threshold);
double Cdf(double x, double scale, double shape, double threshold);
double Complement(double x, double scale, double shape, double threshold);
double Quantile(double p, double scale, double shape, double threshold);
double ComplementQuantile(double q, double scale, double shape, double threshold);
BRENVOLT_ARRAY_FORMS(double scale, double shape, double threshold);
double Mean(double scale, double shape, double threshold);
double Variance(double scale, double shape, double threshold);
}  // namespace weibull

namespace rayleigh {  // the length of a plane normal vector with scale > 0 along each axis
bool IsValid(double scale);
double Density(double x, double scale, double threshold);
double LogDensity(double x, double scale, double threshold);
double Cdf(double x, double scale, double threshold);
double Complement(double x, double scale, double threshold);
double Quantile(double p, double scale, double threshold);
double ComplementQuantile(double q, double scale, double threshold);
BRENVOLT_ARRAY_FORMS(double scale, double threshold);
double Mean(double scale, double threshold);
double Variance(double scale, double threshold);
}  // namespace rayleigh

namespace gev {  // generalized extreme value: location, shape in R; scale > 0
bool IsValid(double location, double scale, double shape);
double Density(double x, double location, double scale, double shape);
double LogDensity(double x, double location, double scale, double shape);
double Cdf(double x, double location, double scale, double shape);
double Complement(double x, double location, double scale, double shape);
double Quantile(double p, double location, double scale, double shape);
double ComplementQuantile(double q, double location, double scale, double shape);
BRENVOLT_ARRAY_FORMS(double location, double scale, double shape);
double Mean(double location, double scale, double shape);
double Variance(double location, double scale, double shape);
}  // namespace gev

namespace gpd {  // generalized Pareto: scale > 0, shape in R
bool IsValid(double scale, double shape);
double Density(double x, double scale, double shape, double threshold);
double LogDensity(double x, double scale, double shape, double threshold);
double Cdf(double x, double scale, double shape, double threshold);
double Complement(double x, double scale, double shape, double threshold);
double Quantile(double p, double scale, double shape, double threshold);
double ComplementQuantile(double q, double scale, double shape, double threshold);
BRENVOLT_ARRAY_FORMS(double scale, double shape, double threshold);
double Mean(double scale, double shape, double threshold);
double Variance(double scale, double shape, double threshold);
}  // namespace gpd

namespace triangular {  // min <= mode <= max, min < max
bool IsValid(double min, double max, double mode);
double Density(double x, double min, double max, double mode);
double LogDensity(double x, double min, double max, double mode);
double Cdf(double x, double min, double max, double mode);
double Complement(double x, double min, double max, double mode);
double Quantile(double p, double min, double max, double mode);
double ComplementQuantile(double q, double min, double max, double mode);
BRENVOLT_ARRAY_FORMS(double min, double max, double mode);
double Mean(double min, double max, double mode);
double Variance(double min, double max, double mode);
}  // namespace triangular

}  // namespace brenvolt
