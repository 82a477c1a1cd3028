// Order statistics of a sample that is too large to be kept or sorted: found in a few passes over it, in
// memory that does not grow with the sample.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "host/base/bytes.h"

namespace brenvolt {

// The values of given ranks. Whoever asks gives the whole sample, in pieces of any size and in any order,
// then ends the pass; and again, the same sample, until the search is done. Up to four passes: each tells 16
// more bits of the values sought, in the order of the numbers, and a value that few share the known bits with
// is found by keeping these (radix selection). Takes some 10 MB for twenty ranks.
class OrderStatisticSearch {
 public:
  // Ranks from 0, in any order, repeated or not; all below the number of values. No value may be NaN.
  explicit OrderStatisticSearch(std::span<const std::uint64_t> ranks);

  bool IsDone() const { return groups_.empty(); }
  void Add(std::span<const double> values);
  void EndPass();
  // The order statistic of ranks[index] as given to the constructor; when the search is done.
  double Value(std::size_t index) const { return values_[index]; }

  // What the values of this pass have told, as bytes, for a search that others help with: each gives some of the values,
  // and all tallies are added to one search, which ends the pass and hands the others what is known between two passes.
  void PutTally(ByteWriter& bytes) const;
  void AddTally(ByteReader& bytes);
  void PutKnown(ByteWriter& bytes) const;
  void TakeKnown(ByteReader& bytes);

 private:
  // Values whose first bits are known to be those of an order statistic sought.
  struct Group {
    std::uint64_t prefix = 0;
    std::uint64_t below = 0;          // values of the sample that are less than all of the group
    std::vector<std::size_t> sought;  // indexes of the ranks within the group
    bool keeps = false;               // whether its members are kept, or counted by their next bits
    std::vector<double> members;
    std::vector<std::uint64_t> counts;  // from the first value on
  };
  void FinishKept(Group& group);
  void Divide(const Group& group, std::vector<Group>& parts);
  void StartPass(std::vector<Group> groups);
  static void NeedCounts(Group& group);

  std::vector<std::uint64_t> ranks_;
  std::vector<double> values_;
  int knownBits_ = 0;
  std::vector<Group> groups_;              // ascending prefixes
  std::vector<std::uint8_t> isTopSought_;  // by the first 16 bits of a value, from the second pass on
};

}  // namespace brenvolt
