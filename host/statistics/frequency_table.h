// Frequency tables of a sample.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace brenvolt {

// Holds the values above `from` and not above `to`, the first class also its lower bound; or the values equal
// to both.
struct FrequencyClass {
  double from = 0;
  double to = 0;
  std::int64_t count = 0;
  std::int64_t cumulativeCount = 0;
  double percent = 0;  // of all values
  double cumulativePercent = 0;
};

// A sample of no more different values than this has a class for each.
inline constexpr std::size_t kMostSingleValues = 20;

// The table of finite ascending values: a class for each value if there are few, otherwise the classes of
// a histogram of continuous values (histogram_classes.h). Empty for an empty sample.
std::vector<FrequencyClass> FrequencyTable(std::span<const double> sorted);

// The same between given bounds, strictly ascending, two at least. Values outside count in the total alone,
// those below also in the cumulative counts.
std::vector<FrequencyClass> FrequencyTable(std::span<const double> sorted, std::span<const double> bounds);

}  // namespace brenvolt
