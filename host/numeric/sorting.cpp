// Bramas (2017), "A novel hybrid quicksort algorithm vectorized using AVX-512", and Blacher, Giesen, Sanders
// & Wassenberg (2022), "Vectorized and performance-portable quicksort", whose implementation in Highway sorts
// here.
#include "host/numeric/sorting.h"

#include <hwy/contrib/sort/vqsort.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <vector>

namespace brenvolt {
namespace {

// Below this length the plain sort is as fast as the dispatch to the vectorised one.
constexpr std::size_t kSmall = 32;

constexpr std::uint64_t kSignBit = std::uint64_t{1} << 63;

// The sorter's scratch memory is kept for the life of the thread.
const hwy::Sorter& ThreadSorter() {
  thread_local const hwy::Sorter sorter;
  return sorter;
}

std::ptrdiff_t CountNegativeZeros(std::span<const double> values) {
  return std::ranges::count_if(values, [](double x) { return std::bit_cast<std::uint64_t>(x) == kSignBit; });
}

// The minima and maxima of the vectorised sort take either of two zeros, so that not even the number of
// negative ones is kept; the zeros are written anew.
void OrderZeros(std::span<double> sorted, std::ptrdiff_t negative) {
  const auto zeros = std::ranges::equal_range(sorted, 0.0);
  std::fill(zeros.begin(), zeros.begin() + negative, -0.0);
  std::fill(zeros.begin() + negative, zeros.end(), 0.0);
}

// An unsigned whole number that is ordered as the reals are; the largest for any NaN.
std::uint64_t KeyOf(double x) {
  if (std::isnan(x)) return std::numeric_limits<std::uint64_t>::max();
  const auto bits = std::bit_cast<std::uint64_t>(x);
  return (bits & kSignBit) != 0 ? ~bits : bits | kSignBit;
}

double ValueOf(std::uint64_t key) {
  if (key == std::numeric_limits<std::uint64_t>::max()) return std::numeric_limits<double>::quiet_NaN();
  return std::bit_cast<double>((key & kSignBit) != 0 ? key & ~kSignBit : ~key);
}

void SortKeys(std::vector<hwy::uint128_t>& keys) {
  if (keys.size() > kSmall) return ThreadSorter()(keys.data(), keys.size(), hwy::SortAscending());
  std::ranges::sort(keys, [](const hwy::uint128_t& a, const hwy::uint128_t& b) {
    return a.hi != b.hi ? a.hi < b.hi : a.lo < b.lo;
  });
}

std::vector<hwy::uint128_t> SortedKeys(std::span<const double> values) {
  std::vector<hwy::uint128_t> keys(values.size());
  for (std::size_t i = 0; i < values.size(); ++i) {
    keys[i].hi = KeyOf(values[i]);
    keys[i].lo = i;
  }
  SortKeys(keys);
  return keys;
}

}  // namespace

void SortAscending(std::span<double> values) {
  const auto isNumber = [](double x) { return !std::isnan(x); };
  const auto end = std::partition(values.begin(), values.end(), isNumber);
  const std::span<double> numbers(values.begin(), end);
  const std::ptrdiff_t negativeZeros = CountNegativeZeros(numbers);
  if (numbers.size() <= kSmall) {
    std::sort(numbers.begin(), numbers.end());
  } else {
    ThreadSorter()(numbers.data(), numbers.size(), hwy::SortAscending());
  }
  OrderZeros(numbers, negativeZeros);
}

void SortPairs(std::span<ValueIndex> pairs) {
  std::vector<hwy::uint128_t> keys(pairs.size());
  for (std::size_t i = 0; i < pairs.size(); ++i) {
    keys[i].hi = KeyOf(pairs[i].value);
    keys[i].lo = pairs[i].index;
  }
  SortKeys(keys);
  for (std::size_t i = 0; i < pairs.size(); ++i) pairs[i] = {ValueOf(keys[i].hi), keys[i].lo};
}

void SortedOrder(std::span<const double> values, std::span<std::size_t> order) {
  const std::vector<hwy::uint128_t> keys = SortedKeys(values);
  for (std::size_t r = 0; r < keys.size(); ++r) order[r] = keys[r].lo;
}

void AverageRanks(std::span<const double> values, std::span<double> ranks) {
  const std::vector<hwy::uint128_t> keys = SortedKeys(values);
  for (std::size_t first = 0; first < keys.size();) {
    const double value = values[keys[first].lo];
    std::size_t last = first + 1;
    while (last < keys.size() && values[keys[last].lo] == value) ++last;
    const double rank = std::isnan(value) ? value : 0.5 * static_cast<double>(first + 1 + last);
    for (std::size_t r = first; r < last; ++r) ranks[keys[r].lo] = rank;
    first = last;
  }
}

}  // namespace brenvolt
