// The statistic of the Anderson-Darling test.
#pragma once

#include <cstddef>
#include <span>

namespace brenvolt {

// A² = -n - (1/n) sum (2i - 1) ln z_i + (2n - 2i + 1) ln(1 - z_i) of the probabilities z_i = F(x_i) of sorted
// data, ascending (Anderson & Darling 1954). The probabilities come in parts, in order; same bits as of all at
// once if every part but the last is a multiple of 512 long. Terms are summed with compensation: for a
// million values the error stays near 1e-10, what the subtraction of n leaves of a double.
class AndersonDarlingSum {
 public:
  explicit AndersonDarlingSum(std::size_t count) : count_(static_cast<double>(count)) {}

  // z_i and 1 - z_i count as 2^-53 at least, so that a value at or beyond an end of the support counts ln
  // 2^-53.
  void Add(std::span<const double> probabilities);
  // The same if 1 - z_i is known without cancellation, and both are above 0: they count as they are.
  void Add(std::span<const double> probabilities, std::span<const double> complements);

  double Statistic() const;

 private:
  void AddBlock(std::span<double> lower, std::span<double> upper);
  void AddTerm(double term);

  double count_;
  std::size_t added_ = 0;
  double total_ = 0;
  double lost_ = 0;  // of the total, to rounding (Neumaier 1974)
};

}  // namespace brenvolt
