// The functions of a distribution, one vocabulary for all:
//
//   Density(x), LogDensity(x), Cdf(x), Complement(x) = 1 - Cdf(x) without cancellation,
//   Quantile(p), ComplementQuantile(q): the x with Complement(x) = q,
//   Mean(), Variance(): infinite if the integral is or a double cannot hold it, never NaN,
//   LogLikelihood(sorted): the sum of LogDensity.
//
// Discrete distributions: Density is the probability of x, Quantile the smallest value whose probability, as
// Cdf gives it, reaches p. A threshold shifts the support: a distribution with threshold t at x is the one
// without at x - t.
//
// NaN in, NaN out. p = 0 and p = 1 give the ends of the support. Invalid parameters give kInvalidProbability
// from all but the quantiles, and kInvalidQuantile from these, as does a p outside [0, 1]. Accuracy: 1e-13
// relative in the body, 1e-10 in the tails down to probabilities of 1e-300.
//
// The forms over arrays give the bits of the forms at one value; `out` is at least as long as the input and
// may be the input itself. Many values are better asked for together: some distributions prepare what they
// share.
#pragma once

#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <span>
#include <type_traits>

#include "host/numeric/distributions/common/distribution_facts.h"
#include "host/numeric/estimation/distribution_estimate.h"
#include "host/numeric/vector/distribution_values.h"

namespace brenvolt {

enum class DistributionFunction : std::uint8_t {
  kDensity,
  kLogDensity,
  kCdf,
  kComplement,
  kQuantile,
  kComplementQuantile
};
inline constexpr std::size_t kDistributionFunctionCount = 6;

constexpr bool TakesProbability(DistributionFunction function) {
  return function == DistributionFunction::kQuantile || function == DistributionFunction::kComplementQuantile;
}

// What a function returns if it has no answer.
constexpr double InvalidResult(DistributionFunction function) {
  return TakesProbability(function) ? kInvalidQuantile : kInvalidProbability;
}

// A distribution for callers that are told at run time which: its facts, and its functions over its values
// in the order of the parameters. A wrong number of values is invalid. Distributions without an offset ignore
// it.
struct DistributionEntry {
  using In = std::span<const double>;
  using Out = std::span<double>;
  using AtOne = double (*)(double x, In values, double offset);
  using OverArray = void (*)(In x, In values, double offset, Out out);

  DistributionFacts facts;
  bool (*isValid)(In values, double offset);
  std::array<AtOne, kDistributionFunctionCount> atOne;  // by DistributionFunction
  std::array<OverArray, kDistributionFunctionCount> overArray;
  double (*mean)(In values, double offset);
  double (*variance)(In values, double offset);
  double (*logLikelihood)(In sorted, In values, double offset);
  EstimateResult (*estimate)(const EstimationInput& input);
};

// The formulas of the distribution D, defined together with it.
template <class D>
struct FormulasOf;

// A distribution with its parameters: Distribution<Weibull>(scale, shape, threshold). D has its facts as
// D::kFacts.
template <class D>
class Distribution {
 public:
  using In = std::span<const double>;
  using Out = std::span<double>;

  static constexpr bool kIsOfGroups = D::kFacts.isUserDefined;
  static constexpr std::size_t kValueCount = D::kFacts.ParameterCount();  // of one group
  static constexpr std::size_t kPlaceCount = kValueCount + (D::kFacts.HasOffset() ? 1 : 0);

  // A threshold comes last, and is 0 if it is left out.
  template <std::convertible_to<double>... P>
  requires(!kIsOfGroups && sizeof...(P) >= kValueCount &&
           sizeof...(P) <= kPlaceCount) explicit Distribution(P... parameters)
      : parameters_{static_cast<double>(parameters)...} {}
  // Repeated groups, which must outlive it.
  template <std::convertible_to<In> V>
  requires(kIsOfGroups) explicit Distribution(const V& values) : parameters_(values) {}

  bool IsValid() const;
  double Density(double x) const;
  double LogDensity(double x) const;
  double Cdf(double x) const;
  double Complement(double x) const;
  double Quantile(double p) const;
  double ComplementQuantile(double q) const;
  void Density(In x, Out out) const;
  void LogDensity(In x, Out out) const;
  void Cdf(In x, Out out) const;
  void Complement(In x, Out out) const;
  void Quantile(In p, Out out) const;
  void ComplementQuantile(In q, Out out) const;
  double Mean() const;
  double Variance() const;
  // Over finite values in ascending order, of which equal ones are evaluated once if there is no formula
  // for arrays. -infinity or NaN if one lies outside the support.
  double LogLikelihood(In sorted) const;

  // The fit to a sample. The formulas say how each parameter is estimated.
  static EstimateResult Estimate(const EstimationInput& input);

  static constinit const DistributionEntry kEntry;

 private:
  using Parameters = std::conditional_t<kIsOfGroups, In, std::array<double, kPlaceCount>>;

  Distribution() = default;
  static Distribution OfValues(In values, double offset);

  FormulasOf<D> Formulas() const;
  bool AreValid(const FormulasOf<D>& formulas) const;
  template <DistributionFunction kFunction>
  double AtOne(double x) const;
  template <DistributionFunction kFunction>
  void OverArray(In x, Out out) const;

  Parameters parameters_;
};

}  // namespace brenvolt
