#include "host/models/transformations/values.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdio>

#include "host/base/number_text.h"

namespace brenvolt::pmml {
namespace {

constexpr double kSecondsPerDay = 86400;

// Reads exactly `digits` digits off the front of the text.
std::optional<int> TakeDigits(std::string_view& text, std::size_t digits) {
  int number = 0;
  if (text.size() < digits) return std::nullopt;
  const auto [end, error] = std::from_chars(text.data(), text.data() + digits, number);
  if (error != std::errc() || end != text.data() + digits || text[0] == '-') return std::nullopt;
  text.remove_prefix(digits);
  return number;
}

bool TakeMark(std::string_view& text, char mark) {
  if (!text.starts_with(mark)) return false;
  text.remove_prefix(1);
  return true;
}

// YYYY-MM-DD off the front of the text, as days since 1970-01-01.
std::optional<double> TakeDate(std::string_view& text) {
  constexpr std::size_t kYearDigits = 4;
  const auto year = TakeDigits(text, kYearDigits);
  if (!year || !TakeMark(text, '-')) return std::nullopt;
  const auto month = TakeDigits(text, 2);
  if (!month || !TakeMark(text, '-')) return std::nullopt;
  const auto day = TakeDigits(text, 2);
  if (!day) return std::nullopt;
  const std::chrono::year_month_day date(std::chrono::year{*year},
                                         std::chrono::month{static_cast<unsigned>(*month)},
                                         std::chrono::day{static_cast<unsigned>(*day)});
  if (!date.ok()) return std::nullopt;
  return static_cast<double>(std::chrono::sys_days(date).time_since_epoch().count());
}

// HH:MM:SS with a fraction of the seconds, the whole text, as seconds since midnight.
std::optional<double> ReadTime(std::string_view text) {
  constexpr int kHours = 24;
  constexpr int kSixty = 60;
  const auto hour = TakeDigits(text, 2);
  if (!hour || !TakeMark(text, ':')) return std::nullopt;
  const auto minute = TakeDigits(text, 2);
  if (!minute || !TakeMark(text, ':')) return std::nullopt;
  const auto second = text.starts_with('-') ? std::nullopt : ParseNumber(text);
  if (!second || *hour >= kHours || *minute >= kSixty || *second >= kSixty + 1) return std::nullopt;
  return (*hour * kSixty + *minute) * double{kSixty} + *second;
}

std::optional<double> ReadDate(std::string_view text) {
  const auto days = TakeDate(text);
  return text.empty() ? days : std::nullopt;
}

std::optional<double> ReadDateTime(std::string_view text) {
  const auto days = TakeDate(text);
  if (!days) return std::nullopt;
  if (text.empty()) return *days * kSecondsPerDay;
  if (!TakeMark(text, 'T') && !TakeMark(text, ' ')) return std::nullopt;
  const auto seconds = ReadTime(text);
  return seconds ? std::optional(*days * kSecondsPerDay + *seconds) : std::nullopt;
}

std::optional<double> ReadTruth(std::string_view text) {
  if (text == "true" || text == "1" || text == "TRUE" || text == "True") return 1;
  if (text == "false" || text == "0" || text == "FALSE" || text == "False") return 0;
  return std::nullopt;
}

std::string DateText(double days) {
  const std::chrono::year_month_day date(
      std::chrono::sys_days(std::chrono::days(static_cast<int>(std::floor(days)))));
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02u-%02u", static_cast<int>(date.year()),
                static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()));
  return text.data();
}

std::string TimeText(double seconds) {
  constexpr int kSixty = 60;
  const int whole = static_cast<int>(seconds);
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%02d:%02d:%02d", whole / (kSixty * kSixty),
                whole / kSixty % kSixty, whole % kSixty);
  return text.data();
}

// A text that spells a date where the type counts from a year, or the count itself.
std::optional<double> ReadCount(std::string_view text, std::optional<double> sinceEpoch, double epoch) {
  if (sinceEpoch) return *sinceEpoch - epoch;
  return ReadReal(text);
}

}  // namespace

double DaysToYear(int year) {
  return static_cast<double>(
      std::chrono::sys_days(std::chrono::year{year} / std::chrono::January / 1).time_since_epoch().count());
}

TypeInfo ReadDataType(const Element& element, TypeInfo otherwise, const char* attribute) {
  const auto text = element.Find(attribute);
  if (!text) return otherwise;
  struct Counting {
    std::string_view prefix;
    DataType type;
  };
  constexpr std::array<Counting, 2> kCounting{
      {{"dateDaysSince[", DataType::kDaysSince}, {"dateTimeSecondsSince[", DataType::kSecondsSince}}};
  for (const Counting& counting : kCounting) {
    if (!text->starts_with(counting.prefix) || !text->ends_with(']')) continue;
    const auto year =
        ParseInteger(text->substr(counting.prefix.size(), text->size() - counting.prefix.size() - 1));
    constexpr int kLastYear = 9999;
    if (year && *year >= 0 && *year <= kLastYear) return {counting.type, *year};
  }
  return {element.Choice<DataType>(attribute, {{"string", DataType::kText},
                                               {"integer", DataType::kInteger},
                                               {"float", DataType::kFloat},
                                               {"double", DataType::kDouble},
                                               {"boolean", DataType::kBoolean},
                                               {"date", DataType::kDate},
                                               {"time", DataType::kTime},
                                               {"dateTime", DataType::kDateTime},
                                               {"timeSeconds", DataType::kTimeSeconds}})};
}

OpType ReadOpType(const Element& element, OpType otherwise, const char* attribute) {
  return element.Choice<OpType>(attribute,
                                {{"continuous", OpType::kContinuous},
                                 {"categorical", OpType::kCategorical},
                                 {"ordinal", OpType::kOrdinal}},
                                otherwise);
}

std::optional<double> ParseValue(TypeInfo type, std::string_view text) {
  text = TrimXml(text);
  switch (type.type) {
    case DataType::kText:
      return std::nullopt;
    case DataType::kFloat: {
      const auto number = ReadReal(text);
      return number ? std::optional<double>(static_cast<float>(*number)) : std::nullopt;
    }
    case DataType::kInteger:
    case DataType::kDouble:
      return ReadReal(text);
    case DataType::kBoolean:
      return ReadTruth(text);
    case DataType::kDate:
      return ReadDate(text);
    case DataType::kTime:
      return ReadTime(text);
    case DataType::kDateTime:
      return ReadDateTime(text);
    case DataType::kDaysSince:
      return ReadCount(text, ReadDate(text), DaysToYear(type.year));
    case DataType::kSecondsSince:
      return ReadCount(text, ReadDateTime(text), DaysToYear(type.year) * kSecondsPerDay);
    case DataType::kTimeSeconds:
      return ReadCount(text, ReadTime(text), 0);
  }
  return std::nullopt;
}

std::string FormatValue(TypeInfo type, double value) {
  constexpr double kMostDays = 1e6;
  const double days = type.type == DataType::kDateTime ? std::floor(value / kSecondsPerDay) : value;
  if (std::isnan(value)) return {};
  switch (type.type) {
    case DataType::kBoolean:
      return value != 0 ? "true" : "false";
    case DataType::kDate:
      return std::fabs(days) < kMostDays ? DateText(days) : ShortestNumber(value);
    case DataType::kTime:
      return value >= 0 && value < kSecondsPerDay ? TimeText(value) : ShortestNumber(value);
    case DataType::kDateTime:
      return std::fabs(days) < kMostDays ? DateText(days) + "T" + TimeText(value - days * kSecondsPerDay)
                                         : ShortestNumber(value);
    default:
      return ShortestNumber(value);
  }
}

Interval ReadInterval(const Element& element) {
  struct Closure {
    bool low;
    bool high;
  };
  const auto closure = element.Choice<Closure>("closure", {{"openOpen", {false, false}},
                                                           {"openClosed", {false, true}},
                                                           {"closedOpen", {true, false}},
                                                           {"closedClosed", {true, true}}});
  Interval interval;
  interval.includesLow = closure.low;
  interval.includesHigh = closure.high;
  interval.low = element.Real("leftMargin", interval.low);
  interval.high = element.Real("rightMargin", interval.high);
  element.RefuseAnythingElse();
  return interval;
}

bool Domain::IsValid(double x) const {
  if (std::ranges::find(invalid, x) != invalid.end()) return false;
  if (valid.empty() && intervals.empty()) return true;
  return std::ranges::find(valid, x) != valid.end() ||
         std::ranges::any_of(intervals, [x](const Interval& interval) { return interval.Holds(x); });
}

bool Domain::IsMissing(double x) const {
  return std::ranges::find(missing, x) != missing.end();
}

}  // namespace brenvolt::pmml
