// One variable of a simulation: its range of probabilities and values, and its draws, whole columns at a
// time.
//
// Everything here is a pure function of a place in the random stream; no call moves the process's stream. The
// order of draws is that of values drawn one after another: a Monte Carlo value takes one uniform deviate u
// for its fallback, used or not, then up to five candidates of one or two uniform deviates each
// (candidates.h), and is the first candidate within the range of values, otherwise the value at the probability
// lower + u (upper - lower). Distributions without candidates are at that probability at once.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "brv_sra/distributions/specified_distribution.h"
#include "brv_sra/simulation/sampling/candidates.h"
#include "brv_sra/simulation/sampling/simulation_design.h"
#include "host/base/cancellation.h"
#include "host/numeric/random/random_stream.h"
#include "host/numeric/vector/vector_forms.h"

namespace brenvolt::sra {

class VariableSampler {
 public:
  // `truncate` keeps to the values between the probabilities 0.005 and 0.995; under kUserSpecified the
  // distribution's own limits narrow the range further.
  VariableSampler(const DistributionSpecification& specification, bool truncate,
                  ParameterSource source = ParameterSource::kUserSpecified);
  VariableSampler(const VariableSampler&) = delete;
  VariableSampler& operator=(const VariableSampler&) = delete;

  // False when the distribution cannot be sampled; the other members must then not be called.
  bool IsValid() const { return valid_; }
  // The range of probabilities, 0 <= lower <= upper <= 1. Of a discrete distribution the lower end is the
  // distribution function at the lower limit, so inversion does not reach that limit itself.
  double LowerProbability() const { return lowerProbability_; }
  double UpperProbability() const { return upperProbability_; }
  // The range of values; -1e300 and 1e300 mean no limit.
  double LowestValue() const { return lowest_; }
  double HighestValue() const { return highest_; }

  // The largest magnitude of the values at the ends of the range of probabilities.
  double LargestMagnitude() const;

  // Replaces probabilities by the values at them. A probability that rounding has brought to 0 or 1, or
  // beyond the range, counts as the nearest one inside; a value that rounding has brought beyond the range of
  // values becomes the nearest one inside.
  void Invert(std::span<double> probabilities) const;

  const Candidates& NaturalGenerator() const { return *candidates_; }
  // Uniform deviates of every Monte Carlo value, if no candidate can be rejected; otherwise nothing.
  std::optional<std::size_t> FixedDraws() const;
  // Monte Carlo values, with FixedDraws() only: `out` takes values of which the first draws at `position`.
  void DrawFixed(const RandomStream& stream, std::uint64_t position, std::span<double> out) const;
  // Monte Carlo values of any type; returns the position of the draw after the last one used. Throws
  // UserCancelled soon after a request.
  std::uint64_t DrawInOrder(const RandomStream& stream, std::uint64_t position, std::span<double> out,
                            const Cancellation& cancelled = kNeverCancelled) const;

  // Latin hypercube values: out[i] is a uniform point, the draw at position + i, of the stratum strata[i],
  // counted from 0, of `samples` strata of equal probability.
  void DrawStrata(const RandomStream& stream, std::uint64_t position, std::size_t samples,
                  std::span<const std::int32_t> strata, std::span<double> out) const;
  // A whole column of them: a permutation of the strata, then one draw within each. Returns the position of
  // the draw after the last one used. Throws UserCancelled soon after a request.
  std::uint64_t DrawStratified(const RandomStream& stream, std::uint64_t position, std::span<double> out,
                               const Cancellation& cancelled = kNeverCancelled) const;

 private:
  void SetRanges(bool truncate, ParameterSource source);
  bool HasValues() const;
  template <class Stratum>
  void FillStrata(const RandomStream& stream, std::uint64_t position, std::size_t samples,
                  std::span<const Stratum> strata, std::span<double> out) const;
  // The range, or one of so many strata of it.
  vector_forms::ProbabilityRange RangeOfStrata(std::size_t strata) const;
  // Of probabilities in the range.
  void InvertInside(std::span<double> probabilities) const;

  DistributionSpecification specification_;
  SpecifiedDistribution distribution_;  // views specification_
  std::optional<Candidates> candidates_;
  bool valid_ = false;
  double lowerProbability_ = 0;
  double upperProbability_ = 1;
  double leastProbability_ = 0;  // the ends to which probabilities are brought
  double mostProbability_ = 1;
  double lowest_;
  double highest_;
  double leastValue_;  // the first and the last value of the type within these
  double mostValue_;
};

// How many draws a column of `samples` values takes, if that is known before they are made.
std::optional<std::uint64_t> ColumnDrawCount(const VariableSampler& sampler, bool latinHypercube,
                                             std::uint64_t samples);

}  // namespace brenvolt::sra
