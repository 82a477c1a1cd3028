#include <uchardet/uchardet.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>

#include "host/base/text_encoding.h"
#include "host/base/utf8.h"
#include "host/tables/text/text_detection.h"

namespace brenvolt {
namespace {

struct Mark {
  std::string_view bytes;
  const char* encoding;
};
constexpr std::array kMarks{Mark{kByteOrderMark, "UTF-8"}, Mark{{"\xFF\xFE\0\0", 4}, "UTF-32LE"},
                            Mark{{"\0\0\xFE\xFF", 4}, "UTF-32BE"}, Mark{"\xFF\xFE", "UTF-16LE"},
                            Mark{"\xFE\xFF", "UTF-16BE"}};

// Text in UTF-16 without a mark is mostly of characters below 256: every other byte is zero.
const char* Utf16Without(std::string_view sample) {
  if (sample.size() < 4) return nullptr;
  std::array<std::size_t, 2> zeros{};
  for (std::size_t i = 0; i < sample.size(); ++i) zeros[i % 2] += sample[i] == '\0' ? 1 : 0;
  const std::size_t half = sample.size() / 2;
  if (zeros[1] * 10 > half * 8 && zeros[0] * 10 < half) return "UTF-16LE";
  if (zeros[0] * 10 > half * 8 && zeros[1] * 10 < half) return "UTF-16BE";
  return nullptr;
}

// True if all but a character that the end of the sample may have cut is UTF-8.
bool IsUtf8Sample(std::string_view sample, bool cut) {
  constexpr std::size_t kLongestSequence = 4;
  const std::size_t fault = FindNonText(sample);
  return fault == std::string_view::npos || (cut && fault + kLongestSequence > sample.size());
}

// In texts of Western Europe bytes from 0x80 to 0x9F are few: the euro, dashes, quotes and the like. In those of East Asia
// they begin characters.
bool IsStrangeInWestern(std::string_view sample) {
  constexpr std::string_view kUsual = "\x80\x85\x91\x92\x93\x94\x95\x96\x97\x99";
  std::size_t beyond = 0;
  std::size_t strange = 0;
  for (const char c : sample) {
    const auto byte = static_cast<std::uint8_t>(c);
    if (byte < 0x80) continue;
    ++beyond;
    strange += byte < 0xA0 && kUsual.find(c) == std::string_view::npos ? 1 : 0;
  }
  return strange * 4 > beyond;
}

std::string Guessed(std::string_view sample) {
  const std::unique_ptr<uchardet, void (*)(uchardet_t)> guesser(uchardet_new(), uchardet_delete);
  uchardet_handle_data(guesser.get(), sample.data(), sample.size());
  uchardet_data_end(guesser.get());
  return uchardet_get_charset(guesser.get());
}

}  // namespace

DetectedEncoding DetectEncoding(std::string_view bytes) {
  for (const Mark& mark : kMarks) {
    if (bytes.starts_with(mark.bytes)) return {mark.encoding, mark.bytes.size(), false};
  }
  const std::string_view sample = bytes.substr(0, kSampleBytes);
  if (const char* wide = Utf16Without(sample)) return {wide, 0, false};
  if (IsUtf8Sample(sample, sample.size() < bytes.size())) return {};
  if (sample.find('\0') != std::string_view::npos) return {};  // no text at all, which reading will say

  // Few characters beyond ASCII tell nothing: those of Western Europe are the most frequent.
  constexpr std::ptrdiff_t kTelling = 12;
  const auto beyond =
      std::ranges::count_if(sample, [](char c) { return static_cast<std::uint8_t>(c) >= 0x80; });
  std::string guessed = Guessed(sample);
  const bool isWestern = guessed.starts_with("ISO-8859-1") || guessed == "WINDOWS-1252" || guessed.empty() ||
                         guessed == "ASCII" || guessed == "UTF-8";
  if (beyond < kTelling || isWestern || !IsEncodingName(guessed))
    return {"windows-1252", 0, (beyond < kTelling && !isWestern) || IsStrangeInWestern(sample)};
  return {std::move(guessed), 0, true};
}

}  // namespace brenvolt
