#include "host/base/number_text.h"

#include <langinfo.h>
#include <locale.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>
#include <mutex>

namespace brenvolt {
namespace {

constexpr double kWholeNumbersInFull = 1e15;
// Longer texts of numbers than this are rare enough to be copied to the heap.
constexpr std::size_t kLongNumber = 64;

std::mutex localeMutex;
std::optional<NumberLocale> userLocale;

NumberLocale LocaleOfEnvironment() {
  NumberLocale result;
  const locale_t environment = newlocale(LC_NUMERIC_MASK, "", nullptr);
  if (environment == nullptr) return result;
  const std::string_view separator = nl_langinfo_l(RADIXCHAR, environment);
  if (separator.size() == 1) result.decimalSeparator = separator.front();
  freelocale(environment);
  return result;
}

// Numbers of this thread are printed with a point while one of these lives.
class PlainNumberScope {
 public:
  PlainNumberScope() : former_(uselocale(PlainLocale())) {}
  ~PlainNumberScope() { uselocale(former_); }
  PlainNumberScope(const PlainNumberScope&) = delete;
  PlainNumberScope& operator=(const PlainNumberScope&) = delete;

 private:
  static locale_t PlainLocale() {
    static const locale_t plain = newlocale(LC_ALL_MASK, "C", nullptr);
    return plain;
  }

  locale_t former_;
};

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

// True when the nearest whole power of ten of an unsigned decimal number is negative. Only asked of numbers
// that are not doubles, so that the two answers are "nearly zero" and "too large".
bool IsBelowOne(std::string_view digits) {
  const auto exponentMark = std::min(digits.find_first_of("eE"), digits.size());
  const std::string_view mantissa = digits.substr(0, exponentMark);
  const auto point = static_cast<std::int64_t>(std::min(mantissa.find('.'), mantissa.size()));
  const auto leading = static_cast<std::int64_t>(mantissa.find_first_not_of("0."));
  std::string_view exponentText = digits.substr(std::min(exponentMark + 1, digits.size()));
  if (exponentText.starts_with('+')) exponentText.remove_prefix(1);
  std::int64_t exponent = 0;
  const auto error =
      std::from_chars(exponentText.data(), exponentText.data() + exponentText.size(), exponent).ec;
  // An exponent of this length outweighs any mantissa.
  if (error == std::errc::result_out_of_range) return exponentText.starts_with('-');
  // Both terms are lengths of texts, and the exponent may be near the end of its range.
  return exponent < leading - point;
}

// `text` starts as a number with a decimal point does.
NumberReading ReadPointNumber(std::string_view text, double& value) {
  double result = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), result);
  if (end != text.data() + text.size()) return NumberReading::kNoNumber;
  if (error == std::errc::result_out_of_range) {
    const bool negative = text.starts_with('-');
    if (!IsBelowOne(text.substr(negative ? 1 : 0))) return NumberReading::kTooLarge;
    result = negative ? -0.0 : 0.0;
  } else if (error != std::errc()) {
    return NumberReading::kNoNumber;
  }
  value = result;
  return NumberReading::kNumber;
}

}  // namespace

NumberLocale UserNumberLocale() {
  const std::lock_guard lock(localeMutex);
  if (!userLocale) userLocale = LocaleOfEnvironment();
  return *userLocale;
}

void SetUserNumberLocale(NumberLocale locale) {
  const std::lock_guard lock(localeMutex);
  userLocale = locale;
}

std::size_t WriteShortestNumber(double x, std::span<char, kShortestNumberCapacity> buffer) {
  char* const begin = buffer.data();
  char* const end = begin + buffer.size();
  // The sign of a not-a-number means nothing to a reader.
  if (std::isnan(x)) x = std::numeric_limits<double>::quiet_NaN();
  if (std::abs(x) < kWholeNumbersInFull && x == std::trunc(x) && !(x == 0 && std::signbit(x))) {
    return static_cast<std::size_t>(std::to_chars(begin, end, static_cast<std::int64_t>(x)).ptr - begin);
  }
  return static_cast<std::size_t>(std::to_chars(begin, end, x).ptr - begin);
}

std::string ShortestNumber(double x) {
  std::array<char, kShortestNumberCapacity> buffer;
  return {buffer.data(), WriteShortestNumber(x, buffer)};
}

std::string FormatNumber(const char* format, double x) {
  // A front end may have set the process's locale; printf must not follow it.
  const PlainNumberScope scope;
  const int length = std::snprintf(nullptr, 0, format, x);
  std::string text(static_cast<std::size_t>(length), '\0');
  std::snprintf(text.data(), text.size() + 1, format, x);
  return text;
}

std::string ParseTextBuffer(std::string_view plainNumber) {
  std::string text(plainNumber);
  const auto point = text.find('.');
  if (point != std::string::npos) text[point] = UserNumberLocale().decimalSeparator;
  return text;
}

NumberReading ReadNumber(std::string_view text, NumberLocale locale, double& value) {
  if (text.starts_with('+')) {
    text.remove_prefix(1);
    if (text.starts_with('-')) return NumberReading::kNoNumber;
  }
  const std::string_view digits = text.substr(text.starts_with('-') ? 1 : 0);
  // Turns away the words for infinity and not-a-number, and with them most texts.
  if (digits.empty() || !(IsDigit(digits.front()) || digits.front() == locale.decimalSeparator)) {
    return NumberReading::kNoNumber;
  }
  if (locale.decimalSeparator == '.') return ReadPointNumber(text, value);

  if (text.find('.') != std::string_view::npos) return NumberReading::kNoNumber;
  const auto separator = text.find(locale.decimalSeparator);
  if (separator == std::string_view::npos) return ReadPointNumber(text, value);
  if (text.size() > kLongNumber) {
    std::string pointed(text);
    pointed[separator] = '.';
    return ReadPointNumber(pointed, value);
  }
  std::array<char, kLongNumber> pointed;
  std::ranges::copy(text, pointed.begin());
  pointed[separator] = '.';
  return ReadPointNumber({pointed.data(), text.size()}, value);
}

std::optional<double> ParseNumber(std::string_view text, NumberLocale locale) {
  double value = 0;
  if (ReadNumber(text, locale, value) != NumberReading::kNumber) return std::nullopt;
  return value;
}

std::optional<double> ParseTravelledNumber(std::string_view text) {
  if (const auto value = ParseNumber(text)) return value;
  return ParseNumber(text, {','});
}

std::optional<int> ParseInteger(std::string_view text) {
  if (text.starts_with('+')) {
    text.remove_prefix(1);
    if (text.starts_with('-')) return std::nullopt;
  }
  int value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || text.empty()) return std::nullopt;
  return value;
}

std::string_view TrimLeft(std::string_view text) {
  const auto first = text.find_first_not_of(" \t");
  return first == std::string_view::npos ? std::string_view() : text.substr(first);
}

std::string_view Trim(std::string_view text) {
  text = TrimLeft(text);
  const auto last = text.find_last_not_of(" \t");
  return last == std::string_view::npos ? std::string_view() : text.substr(0, last + 1);
}

}  // namespace brenvolt
