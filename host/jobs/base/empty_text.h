// An empty text where a value is expected: mostly a variable of a script that is not set.
#pragma once

#include <string_view>

namespace brenvolt {

// What is said of it.
inline constexpr const char* kEmptyText = "expected a value, got an empty text";

// Whether it means something for a field of a job: that what the data have is left out.
constexpr bool MayBeEmpty(std::string_view field) {
  return field == "weights" || field == "select";
}

}  // namespace brenvolt
