#include "host/base/visible_text.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>

#include "host/base/utf8.h"

namespace brenvolt {
namespace {

constexpr std::uint32_t kDelete = 0x7f;
constexpr std::uint32_t kLastC1 = 0x9f;

bool IsObeyed(std::uint32_t character) {
  const bool isControl = character < ' ' || (character >= kDelete && character <= kLastC1);
  // The Unicode Bidirectional Algorithm (UAX #9), 2.1 to 2.6, and the separators of lines and paragraphs.
  const bool isDirection = character == 0x061c || character == 0x200e || character == 0x200f ||
                           (character >= 0x2028 && character <= 0x202e) ||
                           (character >= 0x2066 && character <= 0x2069);
  return isControl || isDirection;
}

// The length of the well-formed sequence that a text begins with, 0 where it begins with none.
std::size_t SequenceLength(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text.front());
  const std::size_t length = lead < 0x80 ? 1 : lead < 0xe0 ? 2 : lead < 0xf0 ? 3 : 4;
  if (length == 1) return 1;
  return text.size() >= length && IsText(text.substr(0, length)) ? length : 0;
}

std::uint32_t CharacterIn(std::string_view sequence) {
  const auto lead = static_cast<unsigned char>(sequence.front());
  if (sequence.size() == 1) return lead;
  std::uint32_t character = lead & (0xffU >> (sequence.size() + 1));
  for (const char part : sequence.substr(1))
    character = character << 6 | (static_cast<unsigned char>(part) & 0x3fU);
  return character;
}

void AppendCode(std::string& text, const char* form, std::uint32_t code) {
  char written[16];
  std::snprintf(written, sizeof written, form, code);
  text += written;
}

std::string Visible(std::string_view text, std::string_view kept) {
  const auto isPlain = [&](char c) {
    const auto byte = static_cast<unsigned char>(c);
    return (byte >= ' ' && byte < kDelete) || kept.find(c) != std::string_view::npos;
  };
  std::string visible;
  visible.reserve(text.size());
  while (!text.empty()) {
    const auto plain = static_cast<std::size_t>(std::ranges::find_if_not(text, isPlain) - text.begin());
    visible += text.substr(0, plain);
    text.remove_prefix(plain);
    if (text.empty()) break;
    const std::size_t length = SequenceLength(text);
    const std::string_view sequence = text.substr(0, std::max<std::size_t>(length, 1));
    if (length == 0) {
      AppendCode(visible, "\\x%02x", static_cast<unsigned char>(sequence.front()));
    } else if (const std::uint32_t character = CharacterIn(sequence); IsObeyed(character)) {
      AppendCode(visible, "\\u%04x", character);
    } else {
      visible += sequence;
    }
    text.remove_prefix(sequence.size());
  }
  return visible;
}

}  // namespace

std::string VisibleText(std::string_view text) {
  return Visible(text, "\n");
}

std::string VisibleLine(std::string_view text) {
  return Visible(text, {});
}

}  // namespace brenvolt
