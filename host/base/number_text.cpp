#include "host/base/number_text.h"

#include <langinfo.h>
#include <locale.h>

#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <mutex>

namespace brenvolt {
namespace {

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

std::string ShortestNumber(double x) {
  if (std::isnan(x)) return "nan";
  std::array<char, 32> buffer;
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), x).ptr;
  return {buffer.data(), end};
}

std::string FormatNumber(const char* format, double x) {
  // The program never calls setlocale for numbers, so printf writes a point.
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

std::optional<double> ParseNumber(std::string_view text, NumberLocale locale) {
  if (!text.empty() && text.front() == '+') {
    text.remove_prefix(1);
    if (!text.empty() && text.front() == '-') return std::nullopt;
  }
  const std::size_t digit = !text.empty() && text.front() == '-' ? 1 : 0;
  if (digit >= text.size()) return std::nullopt;
  const char first = text[digit];
  if (!(first >= '0' && first <= '9') && first != locale.decimalSeparator) return std::nullopt;

  std::string pointed;
  if (locale.decimalSeparator != '.') {
    if (text.find('.') != std::string_view::npos) return std::nullopt;
    pointed = text;
    const auto separator = pointed.find(locale.decimalSeparator);
    if (separator != std::string::npos) pointed[separator] = '.';
    text = pointed;
  }
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (end != text.data() + text.size()) return std::nullopt;
  if (error == std::errc::result_out_of_range) {
    const auto exponent = text.find_first_of("eE");
    const bool tiny = (exponent != std::string_view::npos && text.substr(exponent + 1).starts_with('-')) ||
                      text.substr(digit).starts_with("0.") || text.substr(digit).starts_with('.');
    return tiny ? std::optional(digit == 1 ? -0.0 : 0.0) : std::nullopt;
  }
  if (error != std::errc()) return std::nullopt;
  return value;
}

std::optional<int> ParseInteger(std::string_view text) {
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
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
