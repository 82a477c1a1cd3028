// Draws from a discrete distribution in constant time by condensed table lookup.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "brv_sra/distributions/specification.h"

namespace brenvolt::sra {

// Marsaglia, Tsang & Wang (2004), "Fast generation of discrete random variables", J. Stat. Software 11(3):
// 30-bit integer probabilities taken apart into five base-64 digits, with a table for each digit.
//
// Rounded probabilities need not add up to 2^30; draws beyond their sum give the most probable value.
class DiscreteTable {
 public:
  // The largest support with a table: beyond it the tables outgrow every cache.
  static constexpr std::size_t kMostValues = std::size_t{1} << 17;
  // How far rounding and rare values may take the total of the probabilities from 1.
  static constexpr double kMostShareLost = 1e-5;

  // The table of a valid binomial, Poisson or geometric distribution. Nothing for another type, and where 30
  // bits cannot carry the distribution: too many values, or too large a share on values too rare to be kept.
  static std::optional<DiscreteTable> Of(const DistributionSpecification& specification);

  // The value for a uniform deviate in [0, 1); the smallest and the largest that there is.
  double Lookup(double uniform) const;
  double Lowest() const { return lowest_; }
  double Highest() const { return highest_; }

 private:
  static constexpr int kDigits = 5;

  // `probabilities[i]` is the 30-bit integer probability of firstValue + i.
  DiscreteTable(double firstValue, const std::vector<std::uint32_t>& probabilities);

  double firstValue_;
  double lowest_;
  double highest_;
  std::uint32_t mostProbable_ = 0;
  std::array<std::uint32_t, kDigits> ends_{};  // where the share of each digit's table ends
  std::array<std::vector<std::uint32_t>, kDigits> tables_;
};

}  // namespace brenvolt::sra
