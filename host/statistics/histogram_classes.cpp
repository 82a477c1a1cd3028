#include "host/statistics/histogram_classes.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <iterator>
#include <numeric>

#include "host/base/axis_scaling.h"
#include "host/base/number_text.h"

namespace brenvolt {
namespace {

constexpr int kMostClasses = 50;
constexpr double kMostPerFewest = 2.5;

// Rounded to what a person would write, so that a value typed as a bound lies on it: 12 * 0.2 is 2.4.
double AsWritten(double x) {
  return ParseNumber(FormatNumber("%.15g", x)).value_or(x);
}

std::vector<double> EvenBounds(double from, double to, std::size_t count) {
  std::vector<double> exact;
  std::vector<double> written;
  for (std::size_t i = 0; i <= count; ++i) {
    exact.push_back(std::lerp(from, to, static_cast<double>(i) / static_cast<double>(count)));
    written.push_back(AsWritten(exact.back()));
  }
  // Steps close to the spacing of doubles leave no room for rounding.
  const bool ascend = std::ranges::adjacent_find(written, std::greater_equal()) == written.end();
  return ascend ? written : exact;
}

HistogramClasses ContinuousClasses(std::span<const double> sorted) {
  const double sturges = 1 + std::ceil(std::log2(static_cast<double>(sorted.size())));
  const int fewest = std::min(static_cast<int>(sturges), static_cast<int>(kMostClasses / kMostPerFewest));
  double from = sorted.front();
  double to = sorted.back();
  const double step = RoundAxis(from, to, static_cast<int>(kMostPerFewest * fewest), fewest);
  // The difference of the limits may be beyond the largest double.
  const auto count = static_cast<std::size_t>(std::round(to / step - from / step));
  return {EvenBounds(from, to, count), step};
}

// Classes of `step` whole numbers each, the first of which begins with a multiple of the step.
HistogramClasses WholeNumberClasses(double least, double most) {
  double step = 1;
  if (most - least >= kMostClasses) {
    double from = least;
    double to = most;
    step = std::max(1.0, RoundAxis(from, to, kMostClasses - 1, kMostClasses / 3));
  }
  const double from = std::floor(least / step) * step;
  const auto count = static_cast<std::size_t>(std::floor((most - from) / step)) + 1;
  const double to = from + static_cast<double>(count) * step;
  return {EvenBounds(from - 0.5, to - 0.5, count), step};
}

HistogramClasses DistinctValueClasses(const std::vector<double>& distinct) {
  HistogramClasses classes;
  const double reach = distinct.size() > 1 ? (distinct[1] - distinct[0]) / 2 : 0.5;
  classes.bounds.push_back(distinct.front() - reach);
  for (std::size_t i = 1; i < distinct.size(); ++i) {
    classes.bounds.push_back(std::midpoint(distinct[i - 1], distinct[i]));
  }
  classes.bounds.push_back(distinct.back() + (distinct.back() - classes.bounds.back()));
  if (distinct.size() == 1) classes.bounds.back() = distinct.front() + reach;
  return classes;
}

// Beyond this, a half to either side is no longer exact.
constexpr double kLargestWholeNumber = 1e15;

}  // namespace

bool AreWhole(std::span<const double> sorted) {
  return std::ranges::all_of(sorted, [](double x) { return x == std::floor(x); }) &&
         std::abs(sorted.front()) < kLargestWholeNumber && std::abs(sorted.back()) < kLargestWholeNumber;
}

HistogramClasses ClassesOf(std::span<const double> sorted, bool continuous) {
  if (continuous) return ContinuousClasses(sorted);
  if (AreWhole(sorted)) return WholeNumberClasses(sorted.front(), sorted.back());
  std::vector<double> distinct;
  std::ranges::unique_copy(sorted, std::back_inserter(distinct));
  if (distinct.size() <= kMostClasses) return DistinctValueClasses(distinct);
  return {ContinuousClasses(sorted).bounds, 1};
}

}  // namespace brenvolt
