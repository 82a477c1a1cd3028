// Checks of text in UTF-8.
#pragma once

#include <cstddef>
#include <string_view>

namespace brenvolt {

inline constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// The offset of the first byte that cannot be part of text: a zero byte, or the first byte of a sequence that
// is not well-formed UTF-8 (The Unicode Standard, table 3-7); npos if all of `bytes` is text.
std::size_t FindNonText(std::string_view bytes);
inline bool IsText(std::string_view bytes) {
  return FindNonText(bytes) == std::string_view::npos;
}

}  // namespace brenvolt
