// Bramas (2017), "A novel hybrid quicksort algorithm vectorized using AVX-512", and Blacher, Giesen, Sanders
// & Wassenberg (2022), "Vectorized and performance-portable quicksort", whose implementation in Highway sorts
// here.
#include "host/numeric/vector/sorting.h"

#include <hwy/contrib/sort/vqsort.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "host/numeric/vector/algebra_kernels.h"
#include "host/numeric/vector/ordered_bits.h"

namespace brenvolt {
namespace {

// Below this length the plain sort is as fast as the dispatch to the vectorised one.
constexpr std::size_t kSmall = 32;

// The sorter's scratch memory is kept for the life of the thread.
const hwy::Sorter& ThreadSorter() {
  thread_local const hwy::Sorter sorter;
  return sorter;
}

// The number that represents a real, the largest for any NaN.
constexpr std::uint64_t kNaNKey = std::numeric_limits<std::uint64_t>::max();

std::uint64_t KeyOf(double x) {
  return std::isnan(x) ? kNaNKey : OrderedBits(x);
}

double ValueOf(std::uint64_t key) {
  return key == kNaNKey ? std::numeric_limits<double>::quiet_NaN() : FromOrderedBits(key);
}

// Highway's sort has no form of 128 bits for narrower registers, and the standard sort takes its place there.
bool SortsVectorised(std::size_t n) {
  return n > kSmall && kernels::HasWideRegisters();
}

void SortKeys(std::vector<hwy::uint128_t>& keys) {
  if (SortsVectorised(keys.size())) return ThreadSorter()(keys.data(), keys.size(), hwy::SortAscending());
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

// Sorts through a buffer of keys, as long as `values`.
void SortThroughKeys(std::span<double> values, std::span<std::uint64_t> keys) {
  std::ranges::transform(values, keys.begin(), KeyOf);
  std::ranges::sort(keys);
  std::ranges::transform(keys, values.begin(), ValueOf);
}

void SortPlainly(std::span<double> values) {
  if (values.size() <= kSmall) {
    std::array<std::uint64_t, kSmall> keys;
    return SortThroughKeys(values, std::span(keys).first(values.size()));
  }
  std::vector<std::uint64_t> keys(values.size());
  SortThroughKeys(values, keys);
}

}  // namespace

// The keys take the place of the values, so that no memory is needed. Highway's sort of doubles
// themselves is of no use: its minima and maxima mix up the two zeros, and its padding turns infinity into
// the largest double.
void SortAscending(std::span<double> values) {
  static_assert(sizeof(double) == sizeof(std::uint64_t) && alignof(double) == alignof(std::uint64_t));
  if (!SortsVectorised(values.size())) return SortPlainly(values);
  for (double& x : values) {
    const std::uint64_t key = KeyOf(x);
    std::memcpy(&x, &key, sizeof x);
  }
  ThreadSorter()(reinterpret_cast<std::uint64_t*>(values.data()), values.size(), hwy::SortAscending());
  for (double& x : values) {
    std::uint64_t key;
    std::memcpy(&key, &x, sizeof x);
    x = ValueOf(key);
  }
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
