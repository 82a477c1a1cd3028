// Density, distribution function and quantile of the distribution types, one vocabulary for all.
//
// Every type offers, as scalars and over arrays:
//   Density(x), LogDensity(x), Cdf(x), Complement(x) = 1 - Cdf(x) without cancellation,
//   Quantile(p), ComplementQuantile(q): the x with Complement(x) = q.
// Discrete types: Density is the probability of x, Quantile the smallest value whose probability reaches p.
//
// NaN in, NaN out. p = 0 and p = 1 give the ends of the support. Invalid parameters give kInvalidProbability
// from the first four and kInvalidQuantile from the quantiles, as does a p outside [0, 1]. Accuracy: 1e-13
// relative in the body, 1e-10 in the tails down to probabilities of 1e-300.
#pragma once

#include <span>

#include "host/base/almost_equal.h"

namespace brenvolt {

// What a density or distribution function returns for invalid parameters.
inline constexpr double kInvalidProbability = kNotSet;
// What a quantile returns for invalid parameters or an invalid probability.
inline constexpr double kInvalidQuantile = -3e30;

// The standard normal quantile with mean and standard deviation, and the others, per type. `threshold` shifts
// the support: a type with threshold t at x is the type without one at x - t.

namespace normal {  // location in R, scale > 0
bool IsValid(double location, double scale);
double Density(double x, double location, double scale);
double LogDensity(double x, double location, double scale);
double Cdf(double x, double location, double scale);
double Complement(double x, double location, double scale);
double Quantile(double p, double location, double scale);
double ComplementQuantile(double q, double location, double scale);
void Cdf(std::span<const double> x, double location, double scale, std::span<double> out);
void Quantile(std::span<const double> p, double location, double scale, std::span<double> out);
}  // namespace normal

namespace lognormal {  // scale: mean of ln(x - threshold), in R; shape > 0: its standard deviation
bool IsValid(double scale, double shape);
double Density(double x, double scale, double shape, double threshold);
double LogDensity(double x, double scale, double shape, double threshold);
double Cdf(double x, double scale, double shape, double threshold);
double Complement(double x, double scale, double shape, double threshold);
double Quantile(double p, double scale, double shape, double threshold);
double ComplementQuantile(double q, double scale, double shape, double threshold);
void Cdf(std::span<const double> x, double scale, double shape, double threshold, std::span<double> out);
void Quantile(std::span<const double> p, double scale, double shape, double threshold, std::span<double> out);
}  // namespace lognormal

namespace weibull {  // scale > 0: the characteristic life; shape > 0
bool IsValid(double scale, double shape);
double Density(double x, double scale, double shape, double threshold);
double LogDensity(double x, double scale, double shape, double threshold);
double Cdf(double x, double scale, double shape, double threshold);
double Complement(double x, double scale, double shape, double threshold);
double Quantile(double p, double scale, double shape, double threshold);
double ComplementQuantile(double q, double scale, double shape, double threshold);
void Cdf(std::span<const double> x, double scale, double shape, double threshold, std::span<double> out);
void Quantile(std::span<const double> p, double scale, double shape, double threshold, std::span<double> out);
}  // namespace weibull

namespace poisson {  // mean > 0; support 0, 1, 2, …
bool IsValid(double mean);
double Density(double x, double mean);
double LogDensity(double x, double mean);
double Cdf(double x, double mean);
double Complement(double x, double mean);
double Quantile(double p, double mean);
double ComplementQuantile(double q, double mean);
void Cdf(std::span<const double> x, double mean, std::span<double> out);
void Quantile(std::span<const double> p, double mean, std::span<double> out);
}  // namespace poisson

}  // namespace brenvolt
