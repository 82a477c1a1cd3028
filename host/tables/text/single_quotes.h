// Text files whose fields stand in single quotes instead of double ones, as databases write them.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace brenvolt {

// The character between fields in single quotes, told from the beginning of a text; nothing where single quotes are letters as
// others: where one that begins a field is not closed at the end of a field of its line, or fields stand in double quotes.
std::optional<char> SeparatorOfSingleQuotes(std::string_view sample);

// The text with those fields in double quotes. Lines keep their numbers.
std::string WithDoubleQuotes(std::string_view text, char separator);

}  // namespace brenvolt
