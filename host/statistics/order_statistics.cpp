#include "host/statistics/order_statistics.h"

#include <algorithm>
#include <utility>

#include "host/numeric/vector/ordered_bits.h"

namespace brenvolt {
namespace {

constexpr int kKeyBits = 64;
constexpr int kBitsPerPass = 16;
constexpr std::size_t kParts = std::size_t{1} << kBitsPerPass;
constexpr std::uint64_t kMostKept = kParts;

}  // namespace

OrderStatisticSearch::OrderStatisticSearch(std::span<const std::uint64_t> ranks)
    : ranks_(ranks.begin(), ranks.end()), values_(ranks.size()) {
  if (ranks.empty()) return;
  Group all;
  for (std::size_t i = 0; i < ranks.size(); ++i) all.sought.push_back(i);
  groups_.push_back(std::move(all));
}

void OrderStatisticSearch::NeedCounts(Group& group) {
  if (!group.keeps && group.counts.empty()) group.counts.assign(kParts, 0);
}

void OrderStatisticSearch::Add(std::span<const double> values) {
  if (IsDone()) return;
  std::ranges::for_each(groups_, NeedCounts);
  if (knownBits_ == 0) {
    std::vector<std::uint64_t>& counts = groups_.front().counts;
    for (const double x : values) ++counts[OrderedBits(x) >> (kKeyBits - kBitsPerPass)];
    return;
  }
  for (const double x : values) {
    const std::uint64_t key = OrderedBits(x);
    if (isTopSought_[key >> (kKeyBits - kBitsPerPass)] == 0) continue;
    const std::uint64_t prefix = key >> (kKeyBits - knownBits_);
    const auto group = std::ranges::lower_bound(groups_, prefix, {}, &Group::prefix);
    if (group == groups_.end() || group->prefix != prefix) continue;
    if (group->keeps) {
      group->members.push_back(x);
    } else {
      ++group->counts[(key >> (kKeyBits - knownBits_ - kBitsPerPass)) % kParts];
    }
  }
}

void OrderStatisticSearch::EndPass() {
  std::vector<Group> parts;
  for (Group& group : groups_) {
    NeedCounts(group);
    if (group.keeps) {
      FinishKept(group);
    } else {
      Divide(group, parts);
    }
  }
  knownBits_ += kBitsPerPass;
  StartPass(std::move(parts));
}

void OrderStatisticSearch::FinishKept(Group& group) {
  std::ranges::sort(group.members, {}, OrderedBits);
  for (const std::size_t i : group.sought) values_[i] = group.members[ranks_[i] - group.below];
}

// The parts of a group that hold an order statistic sought; those of which every bit is known are found.
void OrderStatisticSearch::Divide(const Group& group, std::vector<Group>& parts) {
  std::vector<std::size_t> sought = group.sought;
  std::ranges::sort(sought, {}, [this](std::size_t i) { return ranks_[i]; });
  std::uint64_t below = group.below;
  std::size_t next = 0;
  for (std::size_t part = 0; part < kParts && next < sought.size(); ++part) {
    const std::uint64_t end = below + group.counts[part];
    Group found;
    found.prefix = group.prefix << kBitsPerPass | part;
    found.below = below;
    found.keeps = group.counts[part] <= kMostKept;
    while (next < sought.size() && ranks_[sought[next]] < end) found.sought.push_back(sought[next++]);
    below = end;
    if (found.sought.empty()) continue;
    if (knownBits_ + kBitsPerPass == kKeyBits) {
      for (const std::size_t i : found.sought) values_[i] = FromOrderedBits(found.prefix);
    } else {
      parts.push_back(std::move(found));
    }
  }
}

void OrderStatisticSearch::StartPass(std::vector<Group> groups) {
  groups_ = std::move(groups);
  isTopSought_.assign(groups_.empty() ? 0 : kParts, 0);
  for (const Group& group : groups_) isTopSought_[group.prefix >> (knownBits_ - kBitsPerPass)] = 1;
}

// Counts are few at first: then the ones other than 0 are listed with their places.
void OrderStatisticSearch::PutTally(ByteWriter& bytes) const {
  for (const Group& group : groups_) {
    bytes.Put(group.members);
    const auto empty = static_cast<std::size_t>(std::ranges::count(group.counts, std::uint64_t{0}));
    const bool isDense = group.counts.size() - empty > kParts / 2;
    bytes.Put(isDense);
    if (isDense) {
      bytes.Put(group.counts);
      continue;
    }
    std::vector<std::uint64_t> listed;
    for (std::size_t part = 0; part < group.counts.size(); ++part)
      if (group.counts[part] > 0) listed.insert(listed.end(), {part, group.counts[part]});
    bytes.Put(listed);
  }
}

void OrderStatisticSearch::AddTally(ByteReader& bytes) {
  for (Group& group : groups_) {
    NeedCounts(group);
    const auto members = bytes.GetList<double>();
    group.members.insert(group.members.end(), members.begin(), members.end());
    const bool isDense = bytes.Get<bool>();
    const auto numbers = bytes.GetList<std::uint64_t>();
    if (isDense) {
      for (std::size_t part = 0; part < kParts; ++part) group.counts[part] += numbers.at(part);
    } else {
      for (std::size_t i = 0; i + 1 < numbers.size(); i += 2) group.counts.at(numbers[i]) += numbers[i + 1];
    }
  }
}

void OrderStatisticSearch::PutKnown(ByteWriter& bytes) const {
  bytes.Put(values_);
  bytes.Put(knownBits_);
  bytes.Put<std::uint64_t>(groups_.size());
  for (const Group& group : groups_) {
    bytes.Put(group.prefix);
    bytes.Put(group.below);
    bytes.Put(group.keeps);
    bytes.Put(group.sought);
  }
}

void OrderStatisticSearch::TakeKnown(ByteReader& bytes) {
  values_ = bytes.GetList<double>();
  knownBits_ = bytes.Get<int>();
  std::vector<Group> groups(bytes.Get<std::uint64_t>());
  for (Group& group : groups) {
    group.prefix = bytes.Get<std::uint64_t>();
    group.below = bytes.Get<std::uint64_t>();
    group.keeps = bytes.Get<bool>();
    group.sought = bytes.GetList<std::size_t>();
  }
  StartPass(std::move(groups));
}

}  // namespace brenvolt
