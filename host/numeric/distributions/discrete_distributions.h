// The distributions of counts and of classes. The vocabulary is that of distributions.h; Density is the
// probability of x, Quantile the smallest value whose probability, as Cdf gives it, reaches p.
// Mean and Variance of invalid parameters are kInvalidProbability. The array forms give the values of the
// scalar ones and compute most probabilities that they need again only once, so that many values are better
// asked for together.
#pragma once

#include <span>

#include "host/numeric/distributions/array_forms.h"
#include "host/numeric/vector/distribution_values.h"

namespace brenvolt {

namespace binomial {  // proportion in [0, 1] of successes in trials 1, 2, … up to 2^53
bool IsValid(double proportion, double trials);
double Mean(double proportion, double trials);
double Variance(double proportion, double trials);
double Density(double x, double proportion, double trials);
double LogDensity(double x, double proportion, double trials);
double Cdf(double x, double proportion, double trials);
double Complement(double x, double proportion, double trials);
double Quantile(double p, double proportion, double trials);
double ComplementQuantile(double q, double proportion, double trials);
BRENVOLT_ARRAY_FORMS(double proportion, double trials);
}  // namespace binomial

namespace poisson {  // mean > 0; support 0, 1, 2, …
bool IsValid(double mean);
double Mean(double mean);
double Variance(double mean);
double Density(double x, double mean);
double LogDensity(double x, double mean);
double Cdf(double x, double mean);
double Complement(double x, double mean);
double Quantile(double p, double mean);
double ComplementQuantile(double q, double mean);
BRENVOLT_ARRAY_FORMS(double mean);
}  // namespace poisson

namespace geometric {  // failures before the first success, 0, 1, 2, …; proportion in (0, 1]
bool IsValid(double proportion);
double Mean(double proportion);
double Variance(double proportion);
double Density(double x, double proportion);
double LogDensity(double x, double proportion);
double Cdf(double x, double proportion);
double Complement(double x, double proportion);
double Quantile(double p, double proportion);
double ComplementQuantile(double q, double proportion);
BRENVOLT_ARRAY_FORMS(double proportion);
}  // namespace geometric

namespace bernoulli {  // 1 with the proportion in [0, 1], else 0
bool IsValid(double proportion);
double Mean(double proportion);
double Variance(double proportion);
double Density(double x, double proportion);
double LogDensity(double x, double proportion);
double Cdf(double x, double proportion);
double Complement(double x, double proportion);
double Quantile(double p, double proportion);
double ComplementQuantile(double q, double proportion);
BRENVOLT_ARRAY_FORMS(double proportion);
}  // namespace bernoulli

// Proportions count relative to their sum, which lies within 2e-5 of 1; codes that appear twice add up.
// The array forms prepare the classes once.
namespace histogram {  // code, proportion >= 0, repeated, codes in any order
bool IsValid(std::span<const double> classes);
double Mean(std::span<const double> classes);
double Variance(std::span<const double> classes);
double Density(double x, std::span<const double> classes);
double LogDensity(double x, std::span<const double> classes);
double Cdf(double x, std::span<const double> classes);
double Complement(double x, std::span<const double> classes);
double Quantile(double p, std::span<const double> classes);
double ComplementQuantile(double q, std::span<const double> classes);
BRENVOLT_ARRAY_FORMS(std::span<const double> classes);
}  // namespace histogram

}  // namespace brenvolt
