#include "brv_sra/simulation/sampling/discrete_table.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "host/numeric/distributions/binomial.h"
#include "host/numeric/distributions/poisson.h"

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

// The probabilities of first, first + 1, …
struct Support {
  double first = 0;
  std::vector<double> probabilities;
};

// Walks from `start`, which has the probability p, up and then down over the values worth keeping.
// up(p, k) turns the probability of k - 1 into that of k; down(p, k) that of k into that of k - 1. Gives up,
// with more values than any table takes, if they are too many.
template <class Up, class Down>
Support Walk(double start, double atStart, const Up& up, const Down& down) {
  Support support{start, {}};
  std::vector<double>& kept = support.probabilities;
  double p = atStart;
  while (support.first > 0 && kept.size() <= DiscreteTable::kMostValues) {
    p = down(p, support.first);
    if (!(p >= kSmallestKept)) break;
    kept.push_back(p);
    --support.first;
  }
  std::ranges::reverse(kept);
  kept.push_back(atStart);
  p = atStart;
  for (double k = start + 1; kept.size() <= DiscreteTable::kMostValues; ++k) {
    p = up(p, k);
    if (!(p > kSmallestKept)) break;
    kept.push_back(p);
  }
  return support;
}

Support PoissonSupport(double mean) {
  const auto up = [mean](double p, double k) { return p * mean / k; };
  const auto down = [mean](double p, double k) { return p * k / mean; };
  if (mean < kSmallMean) return Walk(0, std::exp(-mean), up, down);
  const double mode = std::round(mean);
  return Walk(mode, Distribution<Poisson>(mean).Density(mode), up, down);
}

// Walks from 0 if its probability is worth keeping, as for a small Poisson mean, otherwise from the mode.
Support BinomialSupport(double proportion, double trials) {
  const double q = 1 - proportion;
  const auto up = [=](double p, double k) { return p * ((trials - k + 1) * proportion) / (k * q); };
  const auto down = [=](double p, double k) { return p * (k * q) / ((trials - k + 1) * proportion); };
  const Distribution<Binomial> binomial(proportion, trials);
  const double atZero = binomial.Density(0);
  if (atZero > kSmallestKept) return Walk(0, atZero, up, down);
  const double mode = std::min(trials, std::floor((trials + 1) * proportion));
  return Walk(mode, binomial.Density(mode), up, down);
}

Support GeometricSupport(double proportion) {
  const double q = 1 - proportion;
  const auto up = [q](double p, double) { return p * q; };
  return Walk(0, proportion, up, up);
}

Support SupportOf(const DistributionSpecification& specification) {
  const std::vector<double>& v = specification.values;
  switch (specification.code) {
    case DistributionCode::kBinomial:
      return BinomialSupport(v[0], v[1]);
    case DistributionCode::kPoisson:
      return PoissonSupport(v[0]);
    case DistributionCode::kGeometric:
      return GeometricSupport(v[0]);
    default:
      return {};
  }
}

}  // namespace

std::optional<DiscreteTable> DiscreteTable::Of(const DistributionSpecification& specification) {
  const Support support = SupportOf(specification);
  const std::size_t count = support.probabilities.size();
  if (count == 0 || count > kMostValues) return std::nullopt;
  std::vector<std::uint32_t> rounded(count);
  std::ranges::transform(support.probabilities, rounded.begin(), Rounded);
  const double total = std::accumulate(rounded.begin(), rounded.end(), 0.0) / kProbabilityScale;
  if (std::abs(total - 1) > kMostShareLost) return std::nullopt;
  return DiscreteTable(support.first, rounded);
}

DiscreteTable::DiscreteTable(double firstValue, const std::vector<std::uint32_t>& probabilities)
    : firstValue_(firstValue),
      mostProbable_(
          static_cast<std::uint32_t>(std::ranges::max_element(probabilities) - probabilities.begin())) {
  const auto isPossible = [](std::uint32_t probability) { return probability != 0; };
  lowest_ = firstValue +
            static_cast<double>(std::ranges::find_if(probabilities, isPossible) - probabilities.begin());
  highest_ = firstValue + static_cast<double>(probabilities.size() - 1);
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
