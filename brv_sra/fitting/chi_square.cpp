#include "brv_sra/fitting/chi_square.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/distributions/specified_distribution.h"
#include "host/base/axis_scaling.h"
#include "host/numeric/goodness_of_fit/chi_square_tail.h"
#include "host/numeric/vector/distribution_values.h"

namespace brenvolt::sra {
namespace {

using Boundaries = std::vector<double>;

struct Range {
  double minimum;
  double maximum;
  double step;
  int steps;
};

// Whole steps by construction; what rounding leaves of the quotient does not lose one.
Range RoundRange(double minimum, double maximum) {
  Range range{minimum, maximum, 0.0, 0};
  range.step = RoundAxis(range.minimum, range.maximum, kMostBins, kFewestBins);
  const double steps = range.maximum / range.step - range.minimum / range.step;
  if (range.step > 0 && steps < 2.0 * kMostBins) range.steps = static_cast<int>(std::lround(steps));
  return range;
}

Boundaries EqualProbabilities(const SpecifiedDistribution& distribution, const Range& range) {
  Boundaries boundaries;
  const double share = 1.0 / range.steps;
  for (int i = 1; i < range.steps; ++i) boundaries.push_back(distribution.Quantile(i * share));
  return boundaries;
}

Boundaries EqualIntervals(const Range& range) {
  Boundaries boundaries;
  const double width = range.maximum / range.steps - range.minimum / range.steps;
  for (int i = 1; i < range.steps; ++i) boundaries.push_back(range.minimum + i * width);
  return boundaries;
}

// Whole numbers, or groups of them, from the smallest value up to the one before the largest.
Boundaries WholeNumbers(double minimum, double maximum) {
  double first = std::floor(minimum);
  double last = std::ceil(maximum);
  double step = 1.0;
  if (last - first >= kMostBins) step = RoundAxis(first, last, kMostBins, kFewestBins);
  Boundaries boundaries;
  for (int i = 0; i < kMostBins && first + i * step < last; ++i) boundaries.push_back(first + i * step);
  return boundaries;
}

// The codes of a histogram but the largest; none if there are more than bins.
Boundaries HistogramCodes(std::span<const double> values) {
  Boundaries codes;
  for (std::size_t i = 0; i + 1 < values.size(); i += 2) codes.push_back(values[i]);
  std::sort(codes.begin(), codes.end());
  codes.erase(std::unique(codes.begin(), codes.end()), codes.end());
  if (codes.size() > static_cast<std::size_t>(kMostBins)) return {};
  if (!codes.empty()) codes.pop_back();
  return codes;
}

Boundaries BoundariesOf(const DistributionSpecification& fit, const SpecifiedDistribution& distribution,
                        double minimum, double maximum, ChiSquareBinning binning) {
  if (!IsContinuous(fit.code)) {
    Boundaries codes;
    if (fit.code == DistributionCode::kHistogram) codes = HistogramCodes(fit.values);
    if (codes.empty()) codes = WholeNumbers(minimum, maximum);
    codes.push_back(kTopBoundary);
    return codes;
  }
  const Range range = RoundRange(minimum, maximum);
  if (range.steps < 1) return {};
  Boundaries boundaries = binning == ChiSquareBinning::kEqualIntervals
                              ? EqualIntervals(range)
                              : EqualProbabilities(distribution, range);
  boundaries.push_back(binning == ChiSquareBinning::kEqualIntervals ? range.maximum : kTopBoundary);
  return boundaries;
}

// P(low < X <= high) from the smaller tail, where the difference does not cancel.
double Probability(const SpecifiedDistribution& distribution, double low, double high) {
  const double below = distribution.Cdf(low);
  return below < 0.5 ? distribution.Cdf(high) - below
                     : distribution.Complement(low) - distribution.Complement(high);
}

// Index by index over the boundaries: the first bin open below, the last above.
std::vector<double> Probabilities(const SpecifiedDistribution& distribution, const Boundaries& boundaries) {
  std::vector<double> probabilities;
  const std::size_t last = boundaries.size() - 1;
  if (last == 0) return {1.0};
  probabilities.push_back(distribution.Cdf(boundaries[0]));
  for (std::size_t i = 1; i < last; ++i)
    probabilities.push_back(Probability(distribution, boundaries[i - 1], boundaries[i]));
  probabilities.push_back(distribution.Complement(boundaries[last - 1]));
  return probabilities;
}

bool AreIncreasing(const Boundaries& boundaries) {
  for (std::size_t i = 0; i < boundaries.size(); ++i) {
    if (!std::isfinite(boundaries[i]) || boundaries[i] == kInvalidQuantile) return false;
    if (i > 0 && boundaries[i] < boundaries[i - 1]) return false;
  }
  return !boundaries.empty();
}

// How far rounding may part a value less the offset from a boundary that it equals on paper, as round data
// and round boundaries often do.
double RoundingOf(std::span<const double> sorted, double offset) {
  constexpr double kRelative = 16.0 * std::numeric_limits<double>::epsilon();
  return kRelative * std::max({std::abs(sorted.front()), std::abs(sorted.back()), std::abs(offset)});
}

void AddTo(ChiSquareBin& bin, const ChiSquareBin& other) {
  bin.upper = std::max(bin.upper, other.upper);
  bin.observed += other.observed;
  bin.expected += other.expected;
}

// A group that grows from one end of the bins and is finished when it expects enough.
class Tail {
 public:
  void Add(const ChiSquareBin& bin) {
    if (isOpen_) {
      AddTo(groups_.back(), bin);
    } else {
      groups_.push_back(bin);
    }
    isOpen_ = groups_.back().expected < kLeastExpectedCount;
  }
  // Takes what the tail has not finished into `rest`.
  void GiveRest(std::vector<ChiSquareBin>& rest) {
    if (!isOpen_) return;
    rest.push_back(groups_.back());
    groups_.pop_back();
  }
  const std::vector<ChiSquareBin>& Groups() const { return groups_; }

 private:
  std::vector<ChiSquareBin> groups_;
  bool isOpen_ = false;
};

// The bin around the expected median: the tails on both sides of it grow towards each other.
std::size_t MiddleOf(std::span<const ChiSquareBin> bins) {
  double total = 0;
  for (const ChiSquareBin& bin : bins) total += bin.expected;
  double before = 0;
  for (std::size_t i = 0; i < bins.size(); ++i) {
    before += bins[i].expected;
    if (before >= total / 2) return i;
  }
  return bins.size() - 1;
}

}  // namespace

std::vector<ChiSquareBin> ChiSquareBins(const DistributionSpecification& fit, std::span<const double> sorted,
                                        ChiSquareBinning binning) {
  const double offset = HasOffset(fit.code) && !IsNotSet(fit.offset) ? fit.offset : 0.0;
  const SpecifiedDistribution distribution(fit.code, fit.values, 0.0);
  if (sorted.empty() || !distribution.IsValid() || !std::isfinite(offset)) return {};
  const Boundaries boundaries =
      BoundariesOf(fit, distribution, sorted.front() - offset, sorted.back() - offset, binning);
  if (!AreIncreasing(boundaries)) return {};
  const std::vector<double> probabilities = Probabilities(distribution, boundaries);

  std::vector<ChiSquareBin> bins;
  const auto n = static_cast<double>(sorted.size());
  double counted = 0;
  const double slack = RoundingOf(sorted, offset);
  for (std::size_t i = 0; i < boundaries.size(); ++i) {
    const bool isLast = i + 1 == boundaries.size();
    const auto end = std::upper_bound(sorted.begin(), sorted.end(), boundaries[i] + slack,
                                      [offset](double boundary, double x) { return boundary < x - offset; });
    const double upTo = isLast ? n : static_cast<double>(end - sorted.begin());
    bins.push_back({boundaries[i], upTo - counted, n * probabilities[i]});
    counted = upTo;
  }
  return bins;
}

std::vector<ChiSquareBin> MergeSmallBins(std::span<const ChiSquareBin> bins) {
  if (bins.empty()) return {};
  const std::size_t middle = MiddleOf(bins);
  Tail lower;
  Tail upper;
  for (std::size_t i = 0; i < middle; ++i) lower.Add(bins[i]);
  for (std::size_t i = bins.size() - 1; i > middle; --i) upper.Add(bins[i]);
  std::vector<ChiSquareBin> rest{bins[middle]};
  lower.GiveRest(rest);
  upper.GiveRest(rest);
  ChiSquareBin centre = rest.front();
  for (std::size_t i = 1; i < rest.size(); ++i) AddTo(centre, rest[i]);

  std::vector<ChiSquareBin> merged = lower.Groups();
  merged.push_back(centre);
  merged.insert(merged.end(), upper.Groups().rbegin(), upper.Groups().rend());
  if (centre.expected >= kLeastExpectedCount || merged.size() == 1) return merged;
  const std::size_t at = lower.Groups().size();
  const bool joinsLower =
      at > 0 && (at + 1 == merged.size() || merged[at - 1].expected <= merged[at + 1].expected);
  const std::size_t neighbour = joinsLower ? at - 1 : at + 1;
  AddTo(merged[neighbour], centre);
  merged.erase(merged.begin() + static_cast<std::ptrdiff_t>(at));
  return merged;
}

ChiSquareResult ComputeChiSquareTest(const DistributionFit& fit, std::span<const double> sorted,
                                     ChiSquareBinning binning, bool withPValue) {
  if (!fit.IsValid()) return {};
  const std::vector<ChiSquareBin> bins = MergeSmallBins(ChiSquareBins(fit.specification, sorted, binning));
  if (bins.size() < 2) return {};
  ChiSquareResult result;
  result.statistic = 0;
  for (const ChiSquareBin& bin : bins) {
    const double difference = bin.observed - bin.expected;
    result.statistic += difference * difference / bin.expected;
  }
  if (!std::isfinite(result.statistic)) return {};
  result.degreesOfFreedom = std::max(1, static_cast<std::int32_t>(bins.size()) - 1 - fit.estimatedParameters);
  if (withPValue) result.pValue = ChiSquareTail(result.statistic, result.degreesOfFreedom);
  return result;
}

}  // namespace brenvolt::sra
