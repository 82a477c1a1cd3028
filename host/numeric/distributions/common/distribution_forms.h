// What makes the functions of a distribution from its formulas: the one check of parameters, arguments and
// probabilities, the one loop over arrays, the one table of functions.
//
// A distribution D is defined by a structure with its facts, D::kFacts, and by FormulasOf<D>: an
// aggregate of its parameters in order and its threshold (or, of repeated groups, of the span of them) with a
// method for each function, and the static Estimate(input). The methods see neither invalid parameters, nor
// NaN, nor a probability outside [0, 1]. FormulasOf<D> may further have
//
// - AreConsistent(): what makes parameters valid together, once each lies in its range;
// - Cdf(x, out) and others: a form over arrays, which itself answers NaN and probabilities outside [0, 1];
// - Prepared(count): what answers instead of the formulas if about `count` values are asked for;
// - LogLikelihood(sorted).
//
// The file ends with `template class Distribution<D>;`.
#pragma once

#include <algorithm>
#include <cassert>
#include <cmath>
#include <limits>
#include <tuple>
#include <utility>
#include <vector>

#include "host/numeric/distributions/common/distribution.h"
#include "host/numeric/estimation/estimator_support.h"
#include "host/numeric/vector/vector_forms.h"

namespace brenvolt {

using In = std::span<const double>;
using Out = std::span<double>;

inline constexpr double kInfinity = std::numeric_limits<double>::infinity();

// The variance of exp(N), N normal, from the variance of N and twice the sum of mean and variance of N: the
// two factors of the formula may over- and underflow where their product does not.
inline double LognormalVariance(double variance, double exponent) {
  constexpr double kLarge = 40.0;  // where exp(variance) - 1 is exp(variance)
  return variance > kLarge ? std::exp(exponent) : std::expm1(variance) * std::exp(exponent - variance);
}

// -(x - centre)^2 / (2 scale^2) for each x.
inline void HalfSquares(In x, double centre, double scale, Out out) {
  for (std::size_t i = 0; i < x.size(); ++i) {
    const double z = (x[i] - centre) / scale;
    out[i] = -0.5 * z * z;
  }
}

// w(z) = ln(1 + shape z) / shape for each z = (x - origin) / scale, and its limit z for shape 0.
inline void LogOnePlusOverShape(In x, double origin, double scale, double shape, Out out) {
  for (std::size_t i = 0; i < x.size(); ++i) out[i] = (x[i] - origin) / scale;
  if (shape == 0) return;
  for (double& z : out) z *= shape;
  elementary::Log1p(out, out);
  for (double& l : out) l /= shape;
}

namespace forms {

// The methods by function; one that does not exist is not a candidate.
inline constexpr std::tuple kMethods{
    [](auto& f, auto... x) -> decltype(f.Density(x...)) { return f.Density(x...); },
    [](auto& f, auto... x) -> decltype(f.LogDensity(x...)) { return f.LogDensity(x...); },
    [](auto& f, auto... x) -> decltype(f.Cdf(x...)) { return f.Cdf(x...); },
    [](auto& f, auto... x) -> decltype(f.Complement(x...)) { return f.Complement(x...); },
    [](auto& f, auto... x) -> decltype(f.Quantile(x...)) { return f.Quantile(x...); },
    [](auto& f, auto... x) -> decltype(f.ComplementQuantile(x...)) { return f.ComplementQuantile(x...); }};

template <DistributionFunction kFunction>
inline constexpr auto& kMethod = std::get<static_cast<std::size_t>(kFunction)>(kMethods);

template <DistributionFunction kFunction, class Formulas>
double At(Formulas& formulas, double x) {
  if (std::isnan(x)) return x;
  if constexpr (TakesProbability(kFunction)) {
    if (x < 0.0 || x > 1.0) return kInvalidQuantile;
  }
  return kMethod<kFunction>(formulas, x);
}

template <DistributionFunction kFunction, class Formulas>
void Over(Formulas& formulas, In x, Out out) {
  for (std::size_t i = 0; i < x.size(); ++i) out[i] = At<kFunction>(formulas, x[i]);
}

// `logDensities`(x, out) at each distinct value, as often as it occurs.
template <class LogDensities>
double LogLikelihoodByDistinctValues(In sorted, const LogDensities& logDensities) {
  constexpr std::size_t kTogether = 65'536;  // distinct values: few calls, little memory
  std::vector<double> distinct;
  std::vector<double> occurrences;
  estimation::CompensatedSum sum;
  for (std::size_t i = 0; i < sorted.size();) {
    std::size_t end = i + 1;
    while (end < sorted.size() && sorted[end] == sorted[i]) ++end;
    distinct.push_back(sorted[i]);
    occurrences.push_back(static_cast<double>(end - i));
    i = end;
    if (distinct.size() < kTogether && i < sorted.size()) continue;
    logDensities(distinct, distinct);
    for (std::size_t j = 0; j < distinct.size(); ++j) sum.Add(occurrences[j] * distinct[j]);
    distinct.clear();
    occurrences.clear();
  }
  return sum.Value();
}

}  // namespace forms

template <class D>
Distribution<D> Distribution<D>::OfValues(In values, double offset) {
  Distribution distribution;
  if constexpr (kIsOfGroups) {
    distribution.parameters_ = values;
  } else if (values.size() == kValueCount) {
    std::ranges::copy(values, distribution.parameters_.begin());
    if constexpr (D::kFacts.HasOffset()) distribution.parameters_.back() = offset;
  } else {
    distribution.parameters_.fill(std::numeric_limits<double>::quiet_NaN());
  }
  return distribution;
}

template <class D>
FormulasOf<D> Distribution<D>::Formulas() const {
  if constexpr (kIsOfGroups) {
    return {parameters_};
  } else {
    return [this]<std::size_t... place>(std::index_sequence<place...>) {
      return FormulasOf<D>{parameters_[place]...};
    }
    (std::make_index_sequence<kPlaceCount>());
  }
}

template <class D>
bool Distribution<D>::AreValid(const FormulasOf<D>& formulas) const {
  constexpr auto& kParameters = D::kFacts.parameters;
  if constexpr (kIsOfGroups) {
    if (parameters_.empty() || parameters_.size() % kValueCount != 0) return false;
    for (std::size_t i = 0; i < parameters_.size(); ++i) {
      if (!IsInRange(parameters_[i], kParameters[i % kValueCount].range)) return false;
    }
  } else {
    const bool areInRange = [&]<std::size_t... place>(std::index_sequence<place...>) {
      return (IsInRange(parameters_[place], kParameters[place].range) && ...);
    }
    (std::make_index_sequence<kPlaceCount>());  // a threshold is in the range of no parameter: finite
    if (!areInRange) return false;
  }
  if constexpr (requires { formulas.AreConsistent(); }) return formulas.AreConsistent();
  return true;
}

template <class D>
template <DistributionFunction kFunction>
double Distribution<D>::AtOne(double x) const {
  const FormulasOf<D> formulas = Formulas();
  return AreValid(formulas) ? forms::At<kFunction>(formulas, x) : InvalidResult(kFunction);
}

template <class D>
template <DistributionFunction kFunction>
void Distribution<D>::OverArray(In x, Out out) const {
  assert(out.size() >= x.size());
  const FormulasOf<D> formulas = Formulas();
  if (!AreValid(formulas)) {
    std::fill_n(out.begin(), x.size(), InvalidResult(kFunction));
  } else if constexpr (requires { forms::kMethod<kFunction>(formulas, x, out); }) {
    forms::kMethod<kFunction>(formulas, x, out);
  } else if constexpr (requires { formulas.Prepared(x.size()); }) {
    auto prepared = formulas.Prepared(x.size());
    forms::Over<kFunction>(prepared, x, out);
  } else {
    forms::Over<kFunction>(formulas, x, out);
  }
}

template <class D>
bool Distribution<D>::IsValid() const {
  return AreValid(Formulas());
}
template <class D>
double Distribution<D>::Density(double x) const {
  return AtOne<DistributionFunction::kDensity>(x);
}
template <class D>
double Distribution<D>::LogDensity(double x) const {
  return AtOne<DistributionFunction::kLogDensity>(x);
}
template <class D>
double Distribution<D>::Cdf(double x) const {
  return AtOne<DistributionFunction::kCdf>(x);
}
template <class D>
double Distribution<D>::Complement(double x) const {
  return AtOne<DistributionFunction::kComplement>(x);
}
template <class D>
double Distribution<D>::Quantile(double p) const {
  return AtOne<DistributionFunction::kQuantile>(p);
}
template <class D>
double Distribution<D>::ComplementQuantile(double q) const {
  return AtOne<DistributionFunction::kComplementQuantile>(q);
}
template <class D>
void Distribution<D>::Density(In x, Out out) const {
  OverArray<DistributionFunction::kDensity>(x, out);
}
template <class D>
void Distribution<D>::LogDensity(In x, Out out) const {
  OverArray<DistributionFunction::kLogDensity>(x, out);
}
template <class D>
void Distribution<D>::Cdf(In x, Out out) const {
  OverArray<DistributionFunction::kCdf>(x, out);
}
template <class D>
void Distribution<D>::Complement(In x, Out out) const {
  OverArray<DistributionFunction::kComplement>(x, out);
}
template <class D>
void Distribution<D>::Quantile(In p, Out out) const {
  OverArray<DistributionFunction::kQuantile>(p, out);
}
template <class D>
void Distribution<D>::ComplementQuantile(In q, Out out) const {
  OverArray<DistributionFunction::kComplementQuantile>(q, out);
}

template <class D>
double Distribution<D>::Mean() const {
  const FormulasOf<D> formulas = Formulas();
  return AreValid(formulas) ? formulas.Mean() : kInvalidProbability;
}
template <class D>
double Distribution<D>::Variance() const {
  const FormulasOf<D> formulas = Formulas();
  return AreValid(formulas) ? formulas.Variance() : kInvalidProbability;
}

template <class D>
double Distribution<D>::LogLikelihood(In sorted) const {
  const FormulasOf<D> formulas = Formulas();
  if (!AreValid(formulas)) return kInvalidProbability;
  if constexpr (requires { formulas.LogLikelihood(sorted); }) {
    return formulas.LogLikelihood(sorted);
  } else {
    return forms::LogLikelihoodByDistinctValues(sorted, [this](In x, Out out) { LogDensity(x, out); });
  }
}

template <class D>
EstimateResult Distribution<D>::Estimate(const EstimationInput& input) {
  return FormulasOf<D>::Estimate(input);
}

template <class D>
constinit const DistributionEntry Distribution<D>::kEntry = [
]<std::size_t... function>(std::index_sequence<function...>) {
  return DistributionEntry{
      D::kFacts,
      [](In values, double offset) { return OfValues(values, offset).IsValid(); },
      {[](double x, In values, double offset) {
        return OfValues(values, offset).template AtOne<DistributionFunction{function}>(x);
      }...},
      {[](In x, In values, double offset, Out out) {
        OfValues(values, offset).template OverArray<DistributionFunction{function}>(x, out);
      }...},
      [](In values, double offset) { return OfValues(values, offset).Mean(); },
      [](In values, double offset) { return OfValues(values, offset).Variance(); },
      [](In sorted, In values, double offset) { return OfValues(values, offset).LogLikelihood(sorted); },
      Estimate};
}
(std::make_index_sequence<kDistributionFunctionCount>());

}  // namespace brenvolt
