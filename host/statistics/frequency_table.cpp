#include "host/statistics/frequency_table.h"

#include <algorithm>

#include "host/statistics/histogram_classes.h"

namespace brenvolt {
namespace {

FrequencyClass MakeClass(double from, double to, std::size_t before, std::size_t through, std::size_t total) {
  const double unit = 100 / static_cast<double>(total);
  const auto count = static_cast<double>(through - before);
  return {from,
          to,
          static_cast<std::int64_t>(through - before),
          static_cast<std::int64_t>(through),
          count * unit,
          static_cast<double>(through) * unit};
}

// The number of values up to and including x.
std::size_t CountThrough(std::span<const double> sorted, double x) {
  return static_cast<std::size_t>(std::ranges::upper_bound(sorted, x) - sorted.begin());
}

}  // namespace

std::vector<FrequencyClass> FrequencyTable(std::span<const double> sorted) {
  std::vector<FrequencyClass> table;
  for (std::size_t before = 0; before < sorted.size();) {
    if (table.size() == kMostSingleValues) return FrequencyTable(sorted, ClassesOf(sorted, true).bounds);
    const double value = sorted[before];
    const std::size_t through = CountThrough(sorted, value);
    table.push_back(MakeClass(value, value, before, through, sorted.size()));
    before = through;
  }
  return table;
}

std::vector<FrequencyClass> FrequencyTable(std::span<const double> sorted, std::span<const double> bounds) {
  std::vector<FrequencyClass> table;
  if (sorted.empty()) return table;
  auto before = static_cast<std::size_t>(std::ranges::lower_bound(sorted, bounds[0]) - sorted.begin());
  for (std::size_t i = 1; i < bounds.size(); ++i) {
    const std::size_t through = CountThrough(sorted, bounds[i]);
    table.push_back(MakeClass(bounds[i - 1], bounds[i], before, through, sorted.size()));
    before = through;
  }
  return table;
}

}  // namespace brenvolt
