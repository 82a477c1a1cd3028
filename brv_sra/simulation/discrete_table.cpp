#include "brv_sra/simulation/discrete_table.h"

#include <algorithm>
#include <cmath>

#include "host/numeric/distributions.h"

namespace brenvolt::sra {
namespace {

constexpr double kProbabilityScale = 1073741824.0;  // 2^30
constexpr double kSmallestKept = 1.0 / 2147483648.0;
// Below this mean the walk starts at 0, where exp(-mean) is still worth keeping.
constexpr double kSmallMean = 21.4;
constexpr std::array<int, 5> kShifts{24, 18, 12, 6, 0};
constexpr double kDrawScale = 4294967295.0;
constexpr std::uint32_t kLargestDraw = 4294967294U;

std::uint32_t Rounded(double probability) {
  return static_cast<std::uint32_t>(std::round(probability * kProbabilityScale));
}

std::vector<double> SmallMeanProbabilities(double mean) {
  std::vector<double> probabilities{std::exp(-mean)};
  for (double k = 1;; ++k) {
    const double next = probabilities.back() * mean / k;
    if (!(next > kSmallestKept)) return probabilities;
    probabilities.push_back(next);
  }
}

// Walks from the mode up and down; `first` becomes the smallest value kept.
std::vector<double> LargeMeanProbabilities(double mean, double& first) {
  const double mode = std::round(mean);
  std::vector<double> below;
  const double atMode = poisson::Density(mode, mean);
  double p = atMode;
  double k = mode;
  while (k > 0 && p * k / mean >= kSmallestKept) {
    p = p * k / mean;
    --k;
    below.push_back(p);
  }
  first = k;
  std::vector<double> probabilities(below.rbegin(), below.rend());
  p = atMode;
  k = mode;
  while (p > kSmallestKept) {
    probabilities.push_back(p);
    ++k;
    p = p * mean / k;
  }
  return probabilities;
}

}  // namespace

DiscreteTable DiscreteTable::Poisson(double mean) {
  double first = 0;
  const std::vector<double> probabilities =
      mean < kSmallMean ? SmallMeanProbabilities(mean) : LargeMeanProbabilities(mean, first);
  std::vector<std::uint32_t> rounded(probabilities.size());
  std::ranges::transform(probabilities, rounded.begin(), Rounded);
  return {first, rounded};
}

DiscreteTable::DiscreteTable(double firstValue, const std::vector<std::uint32_t>& probabilities)
    : firstValue_(firstValue),
      mostProbable_(
          static_cast<std::uint32_t>(std::ranges::max_element(probabilities) - probabilities.begin())) {
  std::uint32_t end = 0;
  for (std::size_t digit = 0; digit < kDigits; ++digit) {
    // A probability of a whole 2^30 has 64 for its leading digit; all others stay below 64.
    const std::uint32_t mask = digit == 0 ? 127 : 63;
    for (std::size_t value = 0; value < probabilities.size(); ++value) {
      const std::uint32_t copies = (probabilities[value] >> kShifts[digit]) & mask;
      tables_[digit].insert(tables_[digit].end(), copies, static_cast<std::uint32_t>(value));
    }
    end += static_cast<std::uint32_t>(tables_[digit].size()) << kShifts[digit];
    ends_[digit] = end;
  }
}

double DiscreteTable::Lookup(double uniform) const {
  const std::uint32_t draw = std::min(static_cast<std::uint32_t>(uniform * kDrawScale), kLargestDraw);
  const std::uint32_t j = draw >> 2;
  std::uint32_t start = 0;
  for (std::size_t digit = 0; digit < kDigits; ++digit) {
    if (j < ends_[digit]) return firstValue_ + tables_[digit][(j - start) >> kShifts[digit]];
    start = ends_[digit];
  }
  return firstValue_ + mostProbable_;
}

}  // namespace brenvolt::sra
