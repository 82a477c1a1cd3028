// The functions of the sixteen distribution types behind one signature, in the order of their codes: for
// callers that are told the type at run time.
#pragma once

#include <cstddef>
#include <span>

namespace brenvolt {

// The functions of a type over its values in catalogue order. An `offset` shifts the types that have one; the
// others ignore it. What they return, also for invalid values: distributions.h. `values` has exactly
// valueCount elements where that is not 0.
struct LawFunctions {
  using In = std::span<const double>;
  using Out = std::span<double>;

  std::size_t valueCount;  // 0: repeated groups
  bool (*isValid)(In values);
  double (*density)(double x, In values, double offset);
  double (*logDensity)(double x, In values, double offset);
  double (*cdf)(double x, In values, double offset);
  double (*complement)(double x, In values, double offset);
  double (*quantile)(double p, In values, double offset);
  double (*complementQuantile)(double q, In values, double offset);
  void (*densities)(In x, In values, double offset, Out out);
  void (*logDensities)(In x, In values, double offset, Out out);
  void (*cdfs)(In x, In values, double offset, Out out);
  void (*complements)(In x, In values, double offset, Out out);
  void (*quantiles)(In p, In values, double offset, Out out);
  void (*complementQuantiles)(In q, In values, double offset, Out out);
  double (*mean)(In values, double offset);
  double (*variance)(In values, double offset);
};

// The functions of all types: Normal, Log Normal, Folded Normal, Half Normal, Rayleigh, Weibull, Gaussian
// Mixture, Johnson, General Extreme Value, General Pareto, Triangular, Binomial, Poisson, Geometric,
// Bernoulli, Histogram.
std::span<const LawFunctions, 16> AllLawFunctions();

}  // namespace brenvolt
