// The places of the set bits of a long mask, gathered eight bits at a time without a branch.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace brenvolt {

namespace place_list {

// For each byte, the places of its set bits, packed into the low bytes of a word.
constexpr std::array<std::uint64_t, 256> MakeTable() {
  std::array<std::uint64_t, 256> table = {};
  for (std::size_t bits = 0; bits < table.size(); ++bits) {
    int count = 0;
    for (std::uint64_t place = 0; place < 8; ++place) {
      if ((bits >> place & 1U) != 0) table[bits] |= place << (8 * count++);
    }
  }
  return table;
}

inline constexpr std::array<std::uint64_t, 256> kTable = MakeTable();

}  // namespace place_list

class PlaceList {
 public:
  static constexpr std::size_t kMostPlaces = 256;  // a place fits into a byte

  // The places first, first + 1, … of those bits that are set; all below kMostPlaces.
  void Add(std::uint8_t bits, std::size_t first) {
    static_assert(std::endian::native == std::endian::little);
    constexpr std::uint64_t kEachByte = 0x0101010101010101ULL;
    const std::uint64_t word = place_list::kTable[bits] + first * kEachByte;
    std::memcpy(places_ + size_, &word, sizeof word);
    size_ += static_cast<std::size_t>(std::popcount(bits));
  }

  std::size_t Size() const { return size_; }
  std::size_t operator[](std::size_t i) const { return places_[i]; }

 private:
  std::size_t size_ = 0;
  std::uint8_t places_[kMostPlaces + sizeof(std::uint64_t)];
};

}  // namespace brenvolt
