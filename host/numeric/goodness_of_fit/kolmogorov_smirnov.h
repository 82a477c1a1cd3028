// The Kolmogorov-Smirnov test of a sample against a fully specified distribution.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

#include "host/base/result.h"
#include "host/numeric/distributions/distribution_table.h"

namespace brenvolt {

enum class TestFault : std::uint8_t {
  kNoValues,
  kNotANumber,    // an offset or a statistic
  kNoProbability  // the parameters are invalid, or a probability could not be computed
};

// The statistic D = sup |F_n(x) - F(x)| of `sortedData` (ascending, finite) less `offset` against a
// distribution. Both sides of every jump of the empirical and, for discrete distributions, of the fitted
// distribution function count.
Result<double, TestFault> TestKolmogorovSmirnov(const AnyDistribution& distribution,
                                                std::span<const double> sortedData, double offset = 0.0);

// The largest distance so far, fed with F(x) and the limit F(x-) of one of n values after the other in
// ascending order. With i values fed, F_n is i/n from this value on and at least (i-1)/n before it. F rises
// between values, so its distance above F_n is greatest just before a value, its distance below at one; among
// equal values the first and the last give the two.
class KolmogorovSmirnovDistance {
 public:
  explicit KolmogorovSmirnovDistance(std::size_t n) : n_(static_cast<double>(n)) {}

  void Feed(double at, double before) {
    isComplete_ = isComplete_ && at >= 0.0 && at <= 1.0 && before >= 0.0 && before <= 1.0;
    const double above = before - fed_ / n_;
    fed_ += 1.0;
    greatest_ = std::max({greatest_, above, fed_ / n_ - at});
  }
  // False once a value was no probability.
  bool IsComplete() const { return isComplete_; }
  double Greatest() const { return greatest_; }

 private:
  double n_;
  double fed_ = 0.0;
  double greatest_ = 0.0;
  bool isComplete_ = true;
};

// The statistic of values z_i = F(x_i) of sorted data from a continuous distribution, D = max(i/n - z_i, z_i
// - (i-1)/n).
double KolmogorovSmirnovStatistic(std::span<const double> sortedProbabilities);

// P(D_n >= d) under the hypothesis, for n >= 1 and any d but NaN. Method and accuracy stand with the
// definition.
Result<double, TestFault> KolmogorovSmirnovPValue(std::int64_t n, double d);

}  // namespace brenvolt
