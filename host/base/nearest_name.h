// The name that somebody probably meant.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace brenvolt {

// The first of the names closest to what was written, whatever the case, by the letters to insert, remove, change or
// swap (Damerau 1964); empty if none is closer than a third of the letters.
std::string NearestName(std::string_view written, std::span<const std::string> names);
// To go behind a message: "; did you mean NAME?"; empty if there is none.
std::string NearestNameHint(std::string_view written, std::span<const std::string> names);

}  // namespace brenvolt
