#include "host/base/utf8.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace brenvolt {
namespace {

// A unit of the fast path, which only tells whether all bytes are in 1..127.
constexpr std::size_t kStride = 64;

bool IsPlainAscii(const char* bytes) {
  constexpr std::uint64_t kHighBits = 0x8080808080808080U;
  constexpr std::uint64_t kOnes = 0x0101010101010101U;
  std::uint64_t suspicious = 0;
  for (std::size_t i = 0; i < kStride; i += sizeof(std::uint64_t)) {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes + i, sizeof word);
    // Subtracting one borrows into the high bit of a zero byte. A false alarm needs a zero byte next to it.
    suspicious |= (word | (word - kOnes)) & kHighBits;
  }
  return suspicious == 0;
}

// The well-formed sequences by their first byte: length and the range of the second byte. All further bytes
// lie in 80..BF.
struct Sequence {
  std::uint8_t firstLow, firstHigh;
  std::size_t length;
  std::uint8_t secondLow, secondHigh;
};
constexpr Sequence kSequences[] = {
    {0xC2, 0xDF, 2, 0x80, 0xBF}, {0xE0, 0xE0, 3, 0xA0, 0xBF}, {0xE1, 0xEC, 3, 0x80, 0xBF},
    {0xED, 0xED, 3, 0x80, 0x9F}, {0xEE, 0xEF, 3, 0x80, 0xBF}, {0xF0, 0xF0, 4, 0x90, 0xBF},
    {0xF1, 0xF3, 4, 0x80, 0xBF}, {0xF4, 0xF4, 4, 0x80, 0x8F},
};

// The length of the well-formed character at the start of `bytes`, or 0.
std::size_t CharacterLength(std::string_view bytes) {
  const auto at = [&](std::size_t i) { return static_cast<std::uint8_t>(bytes[i]); };
  const auto within = [](std::uint8_t byte, std::uint8_t low, std::uint8_t high) {
    return byte >= low && byte <= high;
  };
  if (within(at(0), 0x01, 0x7F)) return 1;
  const auto* const found = std::ranges::find_if(
      kSequences, [&](const Sequence& s) { return within(at(0), s.firstLow, s.firstHigh); });
  if (found == std::end(kSequences) || bytes.size() < found->length) return 0;
  if (!within(at(1), found->secondLow, found->secondHigh)) return 0;
  for (std::size_t i = 2; i < found->length; ++i) {
    if (!within(at(i), 0x80, 0xBF)) return 0;
  }
  return found->length;
}

}  // namespace

std::size_t FindNonText(std::string_view bytes) {
  std::size_t position = 0;
  while (position < bytes.size()) {
    if (bytes.size() - position >= kStride && IsPlainAscii(bytes.data() + position)) {
      position += kStride;
      continue;
    }
    // Walk past what stopped the fast path before trying it again.
    const std::size_t retry = std::min(bytes.size(), position + kStride);
    while (position < retry) {
      const std::size_t length = CharacterLength(bytes.substr(position));
      if (length == 0) return position;
      position += length;
    }
  }
  return std::string_view::npos;
}

}  // namespace brenvolt
