// One variable of a simulation: its range of probabilities and values, and its draws.
#pragma once

#include <optional>

#include "brv_sra/distributions/law.h"
#include "brv_sra/distributions/specification.h"
#include "brv_sra/simulation/discrete_table.h"

namespace brenvolt::sra {

struct SamplingMethod;

class VariableSampler {
 public:
  // `truncate` keeps to the values between the probabilities 0.005 and 0.995; the distribution's own
  // truncation narrows the range further.
  VariableSampler(const DistributionSpecification& specification, bool truncate);
  VariableSampler(const VariableSampler&) = delete;
  VariableSampler& operator=(const VariableSampler&) = delete;

  // False when the distribution cannot be sampled; the other members must then not be called.
  bool IsValid() const { return valid_; }
  // The range of probabilities, 0 <= lower <= upper <= 1.
  double LowerProbability() const { return lowerProbability_; }
  double UpperProbability() const { return upperProbability_; }
  // The value at a probability.
  double Inverse(double p) const;
  // The next Monte Carlo value. Draws the fallback's uniform deviate first; a type with a natural generator
  // then draws up to five candidates and takes the first within the range, else the fallback by inversion.
  double DrawMonteCarlo() const;

 private:
  void SetRanges(bool truncate);
  double Candidate() const;

  DistributionSpecification specification_;
  Law law_;  // views specification_
  const SamplingMethod* method_;
  double offset_;
  bool natural_ = false;
  bool valid_ = false;
  double lowerProbability_ = 0;
  double upperProbability_ = 1;
  double lowest_;
  double highest_;
  std::optional<DiscreteTable> table_;
};

}  // namespace brenvolt::sra
