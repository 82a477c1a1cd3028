// Draws from a discrete distribution in constant time by condensed table lookup.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace brenvolt::sra {

// Marsaglia, Tsang & Wang (2004), "Fast generation of discrete random variables", J. Stat. Software 11(3):
// 30-bit integer probabilities taken apart into five base-64 digits, with a table for each digit.
//
// Rounded probabilities need not add up to 2^30; draws beyond their sum give the most probable value.
class DiscreteTable {
 public:
  // The largest Poisson mean with a table: beyond it the tables outgrow their use.
  static constexpr double kLargestPoissonMean = 1e8;

  // The table of the Poisson distribution, 0 < mean <= kLargestPoissonMean.
  static DiscreteTable Poisson(double mean);

  // The value for a uniform deviate in [0, 1).
  double Lookup(double uniform) const;

 private:
  // `probabilities[i]` is the 30-bit integer probability of firstValue + i.
  DiscreteTable(double firstValue, const std::vector<std::uint32_t>& probabilities);

  static constexpr int kDigits = 5;

  double firstValue_;
  std::uint32_t mostProbable_ = 0;
  std::array<std::uint32_t, kDigits> ends_{};  // where the share of each digit's table ends
  std::array<std::vector<std::uint32_t>, kDigits> tables_;
};

}  // namespace brenvolt::sra
