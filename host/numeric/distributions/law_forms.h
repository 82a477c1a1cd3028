// What all distribution types share around their formulas: the one check of parameters, arguments and
// probabilities, and the one loop of the array forms. A type supplies the plain formula as a callable and
// whether its parameters are valid; the formula then sees neither NaN nor a probability outside [0, 1].
#pragma once

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstddef>
#include <span>

#include "host/numeric/distributions/distributions.h"

namespace brenvolt {

inline bool IsPositiveFinite(double x) {
  return x > 0.0 && std::isfinite(x);
}

// `formula`(x) for a density or distribution function.
template <class Formula>
double ProbabilityAt(bool isValid, double x, const Formula& formula) {
  if (!isValid) return kInvalidProbability;
  if (std::isnan(x)) return x;
  return formula(x);
}

// `formula`() for a mean or variance.
template <class Formula>
double MomentAt(bool isValid, const Formula& formula) {
  return isValid ? formula() : kInvalidProbability;
}

// `formula`(p) for a quantile; p = 0 and p = 1 reach the formula.
template <class Formula>
double QuantileAt(bool isValid, double p, const Formula& formula) {
  if (!isValid) return kInvalidQuantile;
  if (std::isnan(p)) return p;
  if (p < 0.0 || p > 1.0) return kInvalidQuantile;
  return formula(p);
}

// The array forms: `out` is at least as long as the input and may be the input itself.
template <class Formula>
void ProbabilitiesAt(bool isValid, std::span<const double> x, std::span<double> out, const Formula& formula) {
  assert(out.size() >= x.size());
  for (std::size_t i = 0; i < x.size(); ++i) out[i] = ProbabilityAt(isValid, x[i], formula);
}

template <class Formula>
void QuantilesAt(bool isValid, std::span<const double> p, std::span<double> out, const Formula& formula) {
  assert(out.size() >= p.size());
  for (std::size_t i = 0; i < p.size(); ++i) out[i] = QuantileAt(isValid, p[i], formula);
}

// The same for a type given as a value that knows whether it is valid and has the formulas as its methods.
template <class Law>
using Formula = double (Law::*)(double) const;

template <class Law>
double ProbabilityAt(const Law& law, Formula<Law> formula, double x) {
  return ProbabilityAt(law.IsValid(), x, [&](double at) { return (law.*formula)(at); });
}

template <class Law>
double MomentAt(const Law& law, double (Law::*moment)() const) {
  return MomentAt(law.IsValid(), [&] { return (law.*moment)(); });
}

template <class Law>
double QuantileAt(const Law& law, Formula<Law> formula, double p) {
  return QuantileAt(law.IsValid(), p, [&](double at) { return (law.*formula)(at); });
}

template <class Law>
void ProbabilitiesAt(const Law& law, Formula<Law> formula, std::span<const double> x, std::span<double> out) {
  ProbabilitiesAt(law.IsValid(), x, out, [&](double at) { return (law.*formula)(at); });
}

template <class Law>
void QuantilesAt(const Law& law, Formula<Law> formula, std::span<const double> p, std::span<double> out) {
  QuantilesAt(law.IsValid(), p, out, [&](double at) { return (law.*formula)(at); });
}

// The variance of exp(N), N normal, from the variance of N and twice the sum of mean and variance of N: the
// two factors of the formula may over- and underflow where their product does not.
inline double LognormalVariance(double variance, double exponent) {
  constexpr double kLarge = 40.0;  // where exp(variance) - 1 is exp(variance)
  return variance > kLarge ? std::exp(exponent) : std::expm1(variance) * std::exp(exponent - variance);
}

// The array forms under invalid parameters.
inline void FillInvalid(std::size_t count, double sentinel, std::span<double> out) {
  assert(out.size() >= count);
  std::fill_n(out.begin(), count, sentinel);
}

}  // namespace brenvolt
