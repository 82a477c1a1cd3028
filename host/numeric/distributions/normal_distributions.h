// The normal distribution and those made from it. The vocabulary is that of distributions.h.
#pragma once

#include <span>

#include "host/numeric/distributions/array_forms.h"
#include "host/numeric/vector/distribution_values.h"

namespace brenvolt {

namespace normal {  // location in R, scale > 0
bool IsValid(double location, double scale);
double Density(double x, double location, double scale);
double LogDensity(double x, double location, double scale);
double Cdf(double x, double location, double scale);
double Complement(double x, double location, double scale);
double Quantile(double p, double location, double scale);
double ComplementQuantile(double q, double location, double scale);
BRENVOLT_ARRAY_FORMS(double location, double scale);
double Mean(double location, double scale);
double Variance(double location, double scale);
}  // namespace normal

namespace lognormal {  // scale: mean of ln(x - threshold), in R; shape > 0: its standard deviation
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
}  // namespace lognormal

namespace folded_normal {  // the magnitude of a normal variable with location in R, scale > 0
bool IsValid(double location, double scale);
double Density(double x, double location, double scale, double threshold);
double LogDensity(double x, double location, double scale, double threshold);
double Cdf(double x, double location, double scale, double threshold);
double Complement(double x, double location, double scale, double threshold);
double Quantile(double p, double location, double scale, double threshold);
double ComplementQuantile(double q, double location, double scale, double threshold);
BRENVOLT_ARRAY_FORMS(double location, double scale, double threshold);
double Mean(double location, double scale, double threshold);
double Variance(double location, double scale, double threshold);
}  // namespace folded_normal

namespace half_normal {  // the magnitude of a normal variable about 0 with scale > 0
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
}  // namespace half_normal

// Proportions count relative to their sum, which lies within 2e-5 of 1. One component at least. The quantile
// is a safeguarded iteration on the smaller tail and always ends with a value. Between components that lie
// far apart the distribution function is flat: there the quantile is one of many x of the same probability.
namespace gaussian_mixture {  // mixing coefficient >= 0, mean, standard deviation > 0, repeated
bool IsValid(std::span<const double> components);
double Density(double x, std::span<const double> components);
double LogDensity(double x, std::span<const double> components);
double Cdf(double x, std::span<const double> components);
double Complement(double x, std::span<const double> components);
double Quantile(double p, std::span<const double> components);
double ComplementQuantile(double q, std::span<const double> components);
BRENVOLT_ARRAY_FORMS(std::span<const double> components);
double Mean(std::span<const double> components);
double Variance(std::span<const double> components);
}  // namespace gaussian_mixture

// Johnson (1949): z = gamma + delta g((x - xi) / lambda) is standard normal; g is ln (code 1, SL), asinh (2,
// SU), logit (3, SB), the identity (4, SN). Mean and variance of SB are by quadrature; see
// johnson_bounded_moments.h.
namespace johnson {  // family: the code of a JohnsonFamily; gamma, xi in R; delta, lambda > 0
bool IsValid(double family, double gamma, double delta, double lambda, double xi);
double Density(double x, double family, double gamma, double delta, double lambda, double xi);
double LogDensity(double x, double family, double gamma, double delta, double lambda, double xi);
double Cdf(double x, double family, double gamma, double delta, double lambda, double xi);
double Complement(double x, double family, double gamma, double delta, double lambda, double xi);
double Quantile(double p, double family, double gamma, double delta, double lambda, double xi);
double ComplementQuantile(double q, double family, double gamma, double delta, double lambda, double xi);
BRENVOLT_ARRAY_FORMS(double family, double gamma, double delta, double lambda, double xi);
double Mean(double family, double gamma, double delta, double lambda, double xi);
double Variance(double family, double gamma, double delta, double lambda, double xi);
}  // namespace johnson

}  // namespace brenvolt
