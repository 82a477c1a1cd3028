// The module's texts by number. Every text that a person can see stands in one of the tables *_texts.h and
// column_headings.h; the names of the numbers stand in resource_numbers.h. Looking a text up allocates nothing.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace brenvolt::sra {

// The text of a string resource, or an empty text for a number without one. The text lives as long as the
// module.
std::string_view ResourceString(std::int32_t number);

// A resource with its conversions ("%s", "%d", "%i") replaced by the arguments in order. The texts are the
// module's own, so conversions and arguments always match; an argument is put in as it stands, percent signs
// included.
std::string FormatResource(std::int32_t number, std::string_view argument);
std::string FormatResource(std::int32_t number, std::string_view first, std::string_view second);
std::string FormatResource(std::int32_t number, std::string_view first, int second);

}  // namespace brenvolt::sra
