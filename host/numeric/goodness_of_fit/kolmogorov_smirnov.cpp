// The statistic of the Kolmogorov-Smirnov test. Data pass through the distribution function in pieces, so
// that a test allocates nothing.
#include "host/numeric/goodness_of_fit/kolmogorov_smirnov.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>

namespace brenvolt {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

}  // namespace

double KolmogorovSmirnovStatistic(std::span<const double> sortedProbabilities) {
  if (sortedProbabilities.empty()) return kNotSet;
  KolmogorovSmirnovDistance distance(sortedProbabilities.size());
  for (const double z : sortedProbabilities) distance.Feed(z, z);
  return distance.IsComplete() ? distance.Greatest() : kNotSet;
}

Result<double, TestFault> TestKolmogorovSmirnov(const AnyDistribution& distribution,
                                                std::span<const double> sortedData, double offset) {
  if (sortedData.empty()) return Fault{TestFault::kNoValues};
  if (!std::isfinite(offset)) return Fault{TestFault::kNotANumber};
  const bool isDiscrete = !distribution.Facts().isContinuous;

  constexpr std::size_t kPiece = 1024;
  std::array<double, kPiece> x;
  std::array<double, kPiece> at;
  std::array<double, kPiece> before;
  KolmogorovSmirnovDistance distance(sortedData.size());
  for (std::size_t start = 0; start < sortedData.size(); start += kPiece) {
    const std::size_t size = std::min(kPiece, sortedData.size() - start);
    for (std::size_t i = 0; i < size; ++i) x[i] = sortedData[start + i] - offset;
    const std::span<const double> values(x.data(), size);
    distribution.Cdf(values, at);
    if (isDiscrete) {
      for (std::size_t i = 0; i < size; ++i) x[i] = std::nextafter(x[i], -kInfinity);
      distribution.Cdf(values, before);
    }
    for (std::size_t i = 0; i < size; ++i) distance.Feed(at[i], isDiscrete ? before[i] : at[i]);
  }
  if (!distance.IsComplete()) return Fault{TestFault::kNoProbability};
  return distance.Greatest();
}

}  // namespace brenvolt
