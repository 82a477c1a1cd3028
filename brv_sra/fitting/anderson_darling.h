// The Anderson-Darling statistic of a fully specified continuous distribution, and its distribution.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace brenvolt::sra {

// The statistic of probabilities that come in parts, in order; same bits as of all at once where every part
// but the last is a multiple of 512 long.
class AndersonDarlingSum {
 public:
  explicit AndersonDarlingSum(std::size_t count) : count_(static_cast<double>(count)) {}
  void Add(std::span<const double> probabilities);
  double Statistic() const;

 private:
  void AddTerm(double term);

  double count_;
  std::size_t added_ = 0;
  double total_ = 0;
  double lost_ = 0;  // of the total, to rounding (Neumaier 1974)
};

// A² = -n - (1/n) sum (2i - 1) ln z_i + (2n - 2i + 1) ln(1 - z_i) of the probabilities z_i = F(x_i) of sorted
// data, ascending (Anderson & Darling 1954). z_i and 1 - z_i count as 2^-53 at least, so that a value at or
// beyond an end of the support counts ln 2^-53. Throws NumericalException "andersonDarling: n <= 0" for no
// values. Terms are summed with compensation: for a million values the error stays near 1e-10, what the
// subtraction of n leaves of a double.
double andersonDarling(std::span<const double> probabilities);

// P(A² <= statistic) under the hypothesis for n values, in [0, 1]; NaN for a NaN statistic. Throws
// NumericalException "n <= 0" for n < 1. Exact for n = 1. Otherwise the limiting distribution with a
// correction proportional to 1/n from tables up to 5, an exponential tail beyond; 0 below 0.05. Its distance
// from the exact distribution by n: docs/evidence/anderson-darling.md.
double AndersonDarlingDistribution(std::int64_t n, double statistic);

}  // namespace brenvolt::sra
