// The log-likelihood of mode c sums ln f over the values, with f(x) = 2 (x - a) / ((b - a)(c - a)) below c,
// 2 / (b - a) at c and 2 (b - x) / ((b - a)(b - c)) above. On either side ln f is ln(x - a) or ln(b - x) plus
// a term without x, and the values of low density are those nearest the extreme, so that running sums of the
// two logarithms answer for every c.
#include "host/numeric/estimation/triangular_estimator.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <numeric>
#include <vector>

#include "host/numeric/estimation/estimator_support.h"
#include "host/numeric/vector/vector_forms.h"

namespace brenvolt {
namespace {

constexpr double kLeastDensity = 1e-10;  // values below are left out of the search
constexpr double kTolerance = 1e-8;      // of the log-likelihood at the ends of the bracket
constexpr std::size_t kScanSteps = 100;

// Sums of a function of the values over ranges of them.
class RangeSums {
 public:
  // The logarithms of sign (x - origin) are summed, infinite ones left out.
  RangeSums(std::span<const double> sorted, double sign, double origin)
      : sorted_(sorted), sign_(sign), origin_(origin) {
    estimation::CompensatedSum sum;
    blocks_.reserve(sorted.size() / kBlock + 2);
    for (std::size_t begin = 0; begin < sorted.size(); begin += kBlock) {
      blocks_.push_back({sum.Sum(), sum.Rest()});
      const std::size_t end = std::min(begin + kBlock, sorted.size());
      sum.Add(Direct(begin, end));
    }
    blocks_.push_back({sum.Sum(), sum.Rest()});
  }

  // Over [begin, end).
  double Sum(std::size_t begin, std::size_t end) const {
    if (end <= begin) return 0;
    const std::size_t first = (begin + kBlock - 1) / kBlock;
    const std::size_t last = end / kBlock;
    if (first >= last) return Direct(begin, end);
    const double whole =
        (blocks_[last].sum - blocks_[first].sum) + (blocks_[last].rest - blocks_[first].rest);
    return Direct(begin, first * kBlock) + whole + Direct(last * kBlock, end);
  }

 private:
  static constexpr std::size_t kBlock = 128;
  struct Running {
    double sum;
    double rest;
  };

  double Direct(std::size_t begin, std::size_t end) const {
    std::array<double, kBlock> logarithms;
    double total = 0;
    while (begin < end) {
      const std::size_t count = std::min(kBlock, end - begin);
      for (std::size_t i = 0; i < count; ++i) logarithms[i] = sign_ * (sorted_[begin + i] - origin_);
      const std::span<double> part(logarithms.data(), count);
      elementary::Log(part, part);
      for (const double l : part) total += std::isinf(l) ? 0 : l;
      begin += count;
    }
    return total;
  }

  std::span<const double> sorted_;
  double sign_;
  double origin_;
  std::vector<Running> blocks_;  // before each block, and of all
};

class Likelihood {
 public:
  explicit Likelihood(std::span<const double> sorted)
      : sorted_(sorted),
        a_(sorted.front()),
        b_(sorted.back()),
        aboveMinimum_(sorted, 1, a_),
        belowMaximum_(sorted, -1, b_) {}

  // What the search compares: over the values whose density is not below kLeastDensity.
  double operator()(double c) const {
    const std::size_t below = Place(std::ranges::lower_bound(sorted_, c));
    const std::size_t above = Place(std::ranges::upper_bound(sorted_, c));
    const double top = 2 / (b_ - a_);
    const auto isCounted = [top](double fraction) { return top * fraction >= kLeastDensity; };
    // The densities rise to c and fall from it: the values that count are next to c.
    const auto left = std::partition_point(sorted_.begin(), sorted_.begin() + Distance(below),
                                           [&](double x) { return !isCounted((x - a_) / (c - a_)); });
    const auto right = std::partition_point(sorted_.begin() + Distance(above), sorted_.end(),
                                            [&](double x) { return isCounted((b_ - x) / (b_ - c)); });
    const double sum = SumOfSides(c, {Place(left), below, above, Place(right)});
    return top >= kLeastDensity ? sum + static_cast<double>(above - below) * LogTop() : sum;
  }

 private:
  // Places in the sorted values: [first, below) count on the left of the mode, [above, last) on its right.
  struct Sides {
    std::size_t first;
    std::size_t below;
    std::size_t above;
    std::size_t last;
  };

  static std::ptrdiff_t Distance(std::size_t places) { return static_cast<std::ptrdiff_t>(places); }
  std::size_t Place(std::span<const double>::iterator at) const {
    return static_cast<std::size_t>(at - sorted_.begin());
  }
  double LogTop() const { return std::numbers::ln2 - std::log(b_ - a_); }

  double SumOfSides(double c, const Sides& at) const {
    double sum = aboveMinimum_.Sum(at.first, at.below) + belowMaximum_.Sum(at.above, at.last);
    if (at.first < at.below) sum += static_cast<double>(at.below - at.first) * (LogTop() - std::log(c - a_));
    if (at.above < at.last) sum += static_cast<double>(at.last - at.above) * (LogTop() - std::log(b_ - c));
    return sum;
  }

  std::span<const double> sorted_;
  double a_;
  double b_;
  RangeSums aboveMinimum_;
  RangeSums belowMaximum_;
};

std::size_t CountDistinct(std::span<const double> sorted) {
  std::size_t count = 1;
  for (std::size_t i = 1; i < sorted.size(); ++i) count += sorted[i] != sorted[i - 1] ? 1 : 0;
  return count;
}

// The best midpoint between visited values: from the second distinct value on, every step-th is visited.
double ScanForMode(std::span<const double> sorted, const Likelihood& likelihood,
                   const std::function<void()>& poll) {
  constexpr double kLowest = -1e307;
  const std::size_t distinct = CountDistinct(sorted);
  const std::size_t step = distinct > kScanSteps ? distinct / kScanSteps : 1;
  double best = sorted.front();
  double bestValue = kLowest;
  double previous = sorted.front();
  std::size_t place = 0;  // of sorted[i] among the distinct values
  for (std::size_t i = 1; i < sorted.size(); ++i) {
    if (sorted[i] == sorted[i - 1]) continue;
    if (place++ % step != 0) continue;
    poll();
    const double candidate = std::midpoint(previous, sorted[i]);
    previous = sorted[i];
    const double value = likelihood(candidate);
    if (!(value > bestValue)) continue;
    best = candidate;
    bestValue = value;
  }
  return best;
}

struct Bracket {
  double low;
  double middle;
  double high;

  bool operator==(const Bracket&) const = default;
};

// Ends at the tolerance or when the bracket stops moving. One of the two must happen: once the middle
// lies between the ends (after one step that is not the last case, and that case draws the ends towards the
// middle), the ends only move towards each other, and a bracket whose ends stay changes its middle at most
// twice.
double RefineMode(double a, double b, double start, const Likelihood& likelihood,
                  const std::function<void()>& poll) {
  Bracket at{a + (b - a) / 10, start, b - (b - a) / 10};
  for (;;) {
    poll();
    const double low = likelihood(at.low);
    const double middle = likelihood(at.middle);
    const double high = likelihood(at.high);
    const Bracket before = at;
    if (high >= low && high >= middle) {
      at = {at.middle, std::midpoint(at.high, at.middle), at.high};
    } else if (low >= middle) {
      at = {at.low, std::midpoint(at.middle, at.low), at.middle};
    } else {
      at = {std::midpoint(at.middle, at.low), at.middle, std::midpoint(at.high, at.middle)};
    }
    if (std::abs(low - high) < kTolerance || at == before) return at.middle;
  }
}

}  // namespace

EstimationResult<TriangularEstimate> EstimateTriangular(std::span<const double> sorted,
                                                        const std::function<void()>& poll) {
  if (sorted.empty()) return Fault{EstimationFault::kNoValues};
  if (AlmostEqual(sorted.front(), sorted.back())) return Fault{EstimationFault::kNoSpread};
  const double a = sorted.front();
  const double b = sorted.back();
  if (!std::isfinite(b - a)) return Fault{EstimationFault::kNotFinite};
  const Likelihood likelihood(sorted);
  return TriangularEstimate{a, b, RefineMode(a, b, ScanForMode(sorted, likelihood, poll), likelihood, poll)};
}

}  // namespace brenvolt
