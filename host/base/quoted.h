// Names and words that users wrote, in messages.
#pragma once

#include <string>
#include <string_view>

namespace brenvolt {

// The text between single quotes.
inline std::string Quoted(std::string_view text) {
  return "'" + std::string(text) + "'";
}

}  // namespace brenvolt
