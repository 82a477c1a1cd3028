#include "host/base/utf8.h"

#include <cstdint>

namespace brenvolt {
namespace {

// The length of the sequence that a leading byte begins, 0 for a byte that begins none.
std::size_t SequenceLength(unsigned char lead) {
  if (lead < 0x80) return 1;
  if (lead >= 0xC2 && lead <= 0xDF) return 2;
  if (lead >= 0xE0 && lead <= 0xEF) return 3;
  return lead >= 0xF0 && lead <= 0xF4 ? 4 : 0;
}

// The smallest code point that needs a sequence of each length.
constexpr std::uint32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};

}  // namespace

bool IsText(std::string_view bytes) {
  for (std::size_t i = 0; i < bytes.size();) {
    const auto lead = static_cast<unsigned char>(bytes[i]);
    const std::size_t length = SequenceLength(lead);
    if (length == 0 || lead == 0 || i + length > bytes.size()) return false;
    std::uint32_t code = length == 1 ? lead : lead & (0x7FU >> length);
    for (std::size_t k = 1; k < length; ++k) {
      const auto next = static_cast<unsigned char>(bytes[i + k]);
      if ((next & 0xC0U) != 0x80U) return false;
      code = (code << 6U) | (next & 0x3FU);
    }
    const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
    if (code < kSmallest[length] || code > 0x10FFFF || surrogate) return false;
    i += length;
  }
  return true;
}

}  // namespace brenvolt
