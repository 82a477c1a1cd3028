// What the makers of graphs share about the sorted sample that they are given.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace brenvolt {

// Throws Error about `where` unless there is a value and all are finite and ascend.
void RequireSorted(std::span<const double> values, const char* where);

// Of a larger sample only some order statistics are shown: this many of each tail, where fits fail and single
// values matter, some whose distances grow from there inwards, and this many evenly spaced by rank over all.
inline constexpr std::size_t kShownOfEachTail = 100;
inline constexpr std::size_t kShownByRank = 2000;

// The ranks (0 to count - 1) of the order statistics to show, ascending: all of a sample that is small
// enough. The same for every sample of the size; the extremes are always among them.
std::vector<std::size_t> ShownRanks(std::size_t count);
// "2178 of 1000000 points are shown", or empty when all are.
std::string ShownNote(std::size_t shown, std::size_t count);

}  // namespace brenvolt
