#include "host/graphs/sorted_values.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "host/base/error.h"

namespace brenvolt {

namespace {

// Beside the tails the distance to the next rank is the rank over this.
constexpr std::size_t kRanksOfStep = 25;

}  // namespace

void RequireSorted(std::span<const double> values, const char* where) {
  if (values.empty()) throw Error("expected at least one value", where);
  if (!std::ranges::all_of(values, [](double x) { return std::isfinite(x); })) {
    throw Error("a value is not finite", where);
  }
  if (!std::ranges::is_sorted(values)) throw Error("the values are not sorted", where);
}

std::vector<std::size_t> ShownRanks(std::size_t count) {
  std::vector<std::size_t> ranks;
  if (count <= kShownByRank + 2 * kShownOfEachTail) {
    ranks.resize(count);
    std::iota(ranks.begin(), ranks.end(), std::size_t{0});
    return ranks;
  }
  for (std::size_t i = 0; i < kShownOfEachTail; ++i) {
    ranks.push_back(i);
    ranks.push_back(count - 1 - i);
  }
  const double step = static_cast<double>(count - 1) / (kShownByRank - 1);
  // Their distance grows inwards, so that no gap stands beside the tails.
  for (std::size_t i = kShownOfEachTail; static_cast<double>(i) < step * kRanksOfStep;
       i += std::max<std::size_t>(1, i / kRanksOfStep)) {
    ranks.push_back(i);
    ranks.push_back(count - 1 - i);
  }
  for (std::size_t i = 0; i < kShownByRank; ++i) {
    ranks.push_back(
        std::min(static_cast<std::size_t>(std::llround(static_cast<double>(i) * step)), count - 1));
  }
  std::ranges::sort(ranks);
  ranks.erase(std::unique(ranks.begin(), ranks.end()), ranks.end());
  return ranks;
}

std::string ShownNote(std::size_t shown, std::size_t count) {
  if (shown == count) return {};
  return std::to_string(shown) + " of " + std::to_string(count) + " points are shown";
}

}  // namespace brenvolt
