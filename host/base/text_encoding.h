// Text in other encodings than UTF-8, by the names that iconv knows them by.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace brenvolt {

// True for a name such as "windows-1252" or "UTF-16LE" that bytes can be read by.
bool IsEncodingName(const std::string& name);

// Thrown where bytes are no text in their encoding.
struct EncodingFault {
  std::size_t offset;  // of the first byte that is none
  std::size_t line;    // from 1
};

// The text of `bytes` in UTF-8, without a byte-order mark. Throws EncodingFault. The name must be one.
std::string ToUtf8(std::string_view bytes, const std::string& encoding);

}  // namespace brenvolt
