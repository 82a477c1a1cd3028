// The natural generators: candidates for Monte Carlo values of the distributions that have a quicker way to a value
// than inversion.
#pragma once

#include <cstddef>
#include <optional>
#include <span>

#include "brv_sra/distributions/specification.h"
#include "brv_sra/distributions/specified_distribution.h"
#include "brv_sra/simulation/sampling/discrete_table.h"

namespace brenvolt::sra {

struct NaturalGenerator;

// Candidates of one valid distribution. A candidate is a pure function of the next one or two uniform
// deviates:
//   normal, log-normal, folded and half normal  one, by way of a normal deviate
//   Gaussian mixture                            one that picks the component, one for the normal deviate
//   binomial, Poisson, geometric                one, looked up in the table; none without a table
//   Bernoulli                                   one, u: 1 if u < proportion, otherwise 0
//   user-defined levels                         one, u: the first level whose cumulative proportion reaches u
//   all others                                  none: they are always inverted
class Candidates {
 public:
  static constexpr std::size_t kMostDraws = 2;

  // A specification must outlive the object.
  explicit Candidates(const DistributionSpecification& specification);

  // Uniform deviates that a candidate takes; 0 if the type is always inverted.
  std::size_t Draws() const { return draws_; }
  // out[i] becomes the candidate of first[i] and, if it takes two, second[i]. `out` has the length of the
  // input, and may be `second`.
  void Fill(std::span<const double> first, std::span<const double> second, std::span<double> out) const;
  // No candidate lies beyond these.
  double Lowest() const { return lowest_; }
  double Highest() const { return highest_; }

 private:
  const DistributionSpecification& specification_;
  const NaturalGenerator* generator_;
  std::optional<DiscreteTable> table_;
  std::size_t draws_;
  double lowest_ = 0;
  double highest_ = 0;
};

}  // namespace brenvolt::sra
