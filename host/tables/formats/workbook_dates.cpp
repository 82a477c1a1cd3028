#include "host/tables/formats/workbook_dates.h"

#include <array>
#include <cmath>
#include <cstdio>

namespace brenvolt {
namespace {

constexpr double kSecondsOfDay = 86400;

struct Day {
  int year;
  int month;
  int day;
};
// Howard Hinnant's algorithms for dates, as in DaysOf.
Day DayOf(std::int64_t days) {
  days += 719468;
  const std::int64_t era = (days >= 0 ? days : days - 146096) / 146097;
  const auto dayOfEra = static_cast<unsigned>(days - era * 146097);
  const unsigned yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
  const unsigned dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  const unsigned month = (5 * dayOfYear + 2) / 153;
  const int number = static_cast<int>(month < 10 ? month + 3 : month - 9);
  const auto year =
      static_cast<int>(static_cast<std::int64_t>(yearOfEra) + era * 400 + (number <= 2 ? 1 : 0));
  return {year, number, static_cast<int>(dayOfYear - (153 * month + 2) / 5 + 1)};
}

}  // namespace

std::int64_t DaysOf(std::int64_t year, unsigned month, unsigned day) {
  year -= month <= 2 ? 1 : 0;
  const std::int64_t era = (year >= 0 ? year : year - 399) / 400;
  const auto yearOfEra = static_cast<unsigned>(year - era * 400);
  const unsigned dayOfYear = (153 * (month > 2 ? month - 3 : month + 9) + 2) / 5 + day - 1;
  const unsigned dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
  return era * 146097 + static_cast<std::int64_t>(dayOfEra) - 719468;
}

std::string DateText(int year, int month, int day, int hour, int minute, double second) {
  std::array<char, 64> text;
  std::snprintf(text.data(), text.size(), "%04d-%02d-%02d", year, month, day);
  std::string date = text.data();
  if (hour == 0 && minute == 0 && second == 0) return date;
  std::snprintf(text.data(), text.size(), " %02d:%02d:%02d", hour, minute, static_cast<int>(second));
  return date + text.data();
}

std::string DateText(double serial, std::int64_t origin) {
  const double days = std::floor(serial);
  const auto seconds = static_cast<int>(std::lround((serial - days) * kSecondsOfDay));
  const std::int64_t whole = static_cast<std::int64_t>(days) + seconds / static_cast<int>(kSecondsOfDay);
  const int rest = seconds % static_cast<int>(kSecondsOfDay);
  // The calendar that spreadsheets took over has a 29th of February 1900: days before it count from the 31st of December.
  const std::int64_t shift = origin == DaysOf(1899, 12, 30) && serial < 60 ? 1 : 0;
  const Day day = DayOf(origin + whole + shift);
  return DateText(day.year, day.month, day.day, rest / 3600, rest / 60 % 60, rest % 60);
}

bool IsDateFormat(std::string_view code) {
  char closing = 0;  // of what is shown as it stands
  bool hasDate = false;
  for (std::size_t i = 0; i < code.size(); ++i) {
    const char c = code[i];
    if (closing != 0) {
      if (c == closing) closing = 0;
      continue;
    }
    if (c == '"') closing = '"';
    // Brackets hold colours and conditions, or counts of hours as in [h]:mm.
    if (c == '[' &&
        (i + 1 >= code.size() || (code[i + 1] != 'h' && code[i + 1] != 'm' && code[i + 1] != 's')))
      closing = ']';
    if (c == '\\' || c == '_' || c == '*') ++i;
    // Digits behind a date are fractions of a second.
    if (!hasDate && (c == '0' || c == '#' || c == '?')) return false;
    hasDate = hasDate || std::string_view("yYmMdDhHsS").find(c) != std::string_view::npos;
    if (c == 'G') return false;  // General
  }
  return hasDate;
}

bool IsBuiltInDate(std::size_t number) {
  return (number >= 14 && number <= 22) || (number >= 27 && number <= 36) || (number >= 45 && number <= 47) ||
         (number >= 50 && number <= 58);
}

bool IsSerial(double value) {
  constexpr double kLast = 2958465;  // the 31st of December 9999
  return value >= 0 && value <= kLast + 1;
}

}  // namespace brenvolt
