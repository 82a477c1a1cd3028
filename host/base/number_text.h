// Numbers as text and back. Plain forms use a decimal point whatever the locale; the locale-aware forms
// follow the user's decimal separator.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace brenvolt {

// How the user writes numbers.
struct NumberLocale {
  char decimalSeparator = '.';
};

// The user's number locale, from the environment (LC_ALL, LC_NUMERIC, LANG) at first use unless it was set.
NumberLocale UserNumberLocale();
void SetUserNumberLocale(NumberLocale locale);

// The shortest text that reads back as exactly x, with whole numbers below 1e15 in full: "0.1", "100000",
// "1e+300", "nan", "inf".
std::string ShortestNumber(double x);

// The same into a buffer, for loops over many numbers; returns the length.
inline constexpr std::size_t kShortestNumberCapacity = 32;
std::size_t WriteShortestNumber(double x, std::span<char, kShortestNumberCapacity> buffer);

// x by one printf format for reals ("%.12e", "%.4f"), with a decimal point in every locale.
std::string FormatNumber(const char* format, double x);

// The host's conversion of a plain number text into the user's locale: the decimal point becomes the user's
// separator.
std::string ParseTextBuffer(std::string_view plainNumber);

enum class NumberReading : std::uint8_t {
  kNumber,
  kTooLarge,  // spells a number, but one beyond the range of a double
  kNoNumber
};

// Reads the number that the whole of `text` spells, as ParseNumber does, and says why when there is none.
// `value` is written only for kNumber.
NumberReading ReadNumber(std::string_view text, NumberLocale locale, double& value);

// The number that the whole of `text` spells with the given separator, or nothing. No blanks, no group marks;
// "nan" and "inf" are not numbers here. A number too large for a double is refused; one too small becomes
// zero.
std::optional<double> ParseNumber(std::string_view text, NumberLocale locale = {});

// The same of a text that may come from a user with another separator: a decimal point or a decimal comma. No text has
// two readings, because group marks are not allowed.
std::optional<double> ParseTravelledNumber(std::string_view text);

// The same for whole numbers in the range of a 32-bit integer.
std::optional<int> ParseInteger(std::string_view text);

// The part of `text` between its leading and trailing blanks and tabs; the second form trims the left end
// only.
std::string_view Trim(std::string_view text);
std::string_view TrimLeft(std::string_view text);

}  // namespace brenvolt
