// Text without the difference of capitals, for words of the program's own languages.
#pragma once

#include <string>
#include <string_view>

namespace brenvolt {

// The letters A to Z become a to z; all other bytes stay.
inline std::string LowerCase(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  return lower;
}

}  // namespace brenvolt
