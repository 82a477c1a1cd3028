#include "host/tables/office/workbook_dates.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <iterator>

#include "host/base/number_text.h"

namespace brenvolt {
namespace {

constexpr double kSecondsOfDay = 86400;

// Formats of the packages, without their widths.
constexpr std::string_view kSpssDates[] = {"DATE", "ADATE", "EDATE", "SDATE",    "JDATE",
                                           "QYR",  "MOYR",  "WKYR",  "DATETIME", "YMDHMS"};
constexpr std::string_view kSpssTimes[] = {"TIME", "DTIME", "MTIME"};
constexpr std::string_view kSasDates[] = {
    "DATE",    "DAY",     "DDMMYY",   "MMDDYY",   "YYMMDD",   "DDMMYYD",  "MMDDYYD", "YYMMDDD", "DDMMYYS",
    "MMDDYYS", "YYMMDDS", "DDMMYYP",  "MMDDYYP",  "YYMMDDP",  "YYMMDDN",  "MONYY",   "YYMM",    "YYMON",
    "YYQ",     "JULIAN",  "WEEKDATE", "WEEKDATX", "WORDDATE", "WORDDATX", "E8601DA", "B8601DA", "IS8601DA"};
constexpr std::string_view kSasMoments[] = {"DATETIME", "DATEAMPM", "MDYAMPM",
                                            "E8601DT",  "B8601DT",  "IS8601DT"};
constexpr std::string_view kSasTimes[] = {"TIME", "TIMEAMPM", "HHMM",    "HOUR",    "MMSS",
                                          "TOD",  "E8601TM",  "B8601TM", "IS8601TM"};

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

// Whether the letters "m" at the start of a code, with no hours before them, are months, not minutes of "mm:ss".
bool IsMonth(std::string_view code) {
  const std::size_t end = code.find_first_not_of("mM");
  const std::string_view rest = end == std::string_view::npos ? std::string_view() : code.substr(end);
  if (rest.starts_with(']')) return false;
  const std::size_t seconds = rest.find_first_not_of(":.\\ ");
  return seconds == std::string_view::npos || (rest[seconds] != 's' && rest[seconds] != 'S');
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

Shown ShownBy(std::string_view code) {
  char closing = 0;  // of what is shown as it stands
  bool hasTime = false;
  bool hasDate = false;
  for (std::size_t i = 0; i < code.size(); ++i) {
    const char c = code[i];
    if (closing != 0) {
      if (c == closing) closing = 0;
      continue;
    }
    // What follows a semicolon is for negative numbers.
    if (c == ';' && (hasTime || hasDate)) break;
    if (c == '"') closing = '"';
    // Brackets hold colours and conditions, or counts of hours as in [h]:mm.
    if (c == '[' &&
        (i + 1 >= code.size() || (code[i + 1] != 'h' && code[i + 1] != 'm' && code[i + 1] != 's')))
      closing = ']';
    if (c == '\\' || c == '_' || c == '*') ++i;
    // Digits behind a date are fractions of a second.
    if (!hasTime && !hasDate && (c == '0' || c == '#' || c == '?')) return Shown::kNumber;
    hasDate = hasDate || std::string_view("yYdD").find(c) != std::string_view::npos;
    hasTime = hasTime || std::string_view("hHsS").find(c) != std::string_view::npos;
    // Alone they are months, behind hours or before seconds minutes.
    if ((c == 'm' || c == 'M') && !hasTime && !hasDate) hasDate = IsMonth(code.substr(i));
    if (c == 'G') return Shown::kNumber;  // General
  }
  return hasDate ? Shown::kDate : hasTime ? Shown::kTime : Shown::kNumber;
}

Shown ShownByBuiltIn(std::size_t number) {
  if ((number >= 18 && number <= 21) || (number >= 45 && number <= 47)) return Shown::kTime;
  const bool isDate =
      (number >= 14 && number <= 22) || (number >= 27 && number <= 36) || (number >= 50 && number <= 58);
  return isDate ? Shown::kDate : Shown::kNumber;
}

std::optional<double> HoursOfDuration(std::string_view text) {
  const bool isNegative = text.starts_with('-');
  if (isNegative) text.remove_prefix(1);
  if (!text.starts_with('P')) return std::nullopt;
  text.remove_prefix(1);
  double hours = 0;
  bool inTime = false;
  bool hasPart = false;
  while (!text.empty()) {
    if (!inTime && text.front() == 'T') {
      inTime = true;
      text.remove_prefix(1);
      continue;
    }
    const std::size_t length = text.find_first_not_of("0123456789.");
    const auto count = length == std::string_view::npos ? std::nullopt : ParseNumber(text.substr(0, length));
    if (!count) return std::nullopt;
    const char unit = text[length];
    text.remove_prefix(length + 1);
    hasPart = true;
    if (!inTime && unit == 'D') {
      hours += *count * kHoursOfDay;
    } else if (inTime && unit == 'H') {
      hours += *count;
    } else if (inTime && unit == 'M') {
      hours += *count / 60;
    } else if (inTime && unit == 'S') {
      hours += *count / 3600;
    } else {
      return std::nullopt;
    }
  }
  if (!hasPart) return std::nullopt;
  return isNegative ? -hours : hours;
}

std::optional<TimeScale> TimeScaleOf(Package package, std::string_view format) {
  const std::int64_t origin = package == Package::kSpss ? DaysOf(1582, 10, 14) : DaysOf(1960, 1, 1);
  if (package == Package::kStata) {
    if (format.starts_with("%-")) format.remove_prefix(1);
    format.remove_prefix(std::min<std::size_t>(1, format.size()));
    if (format.starts_with("tc") || format.starts_with("tC"))
      return TimeScale{Shown::kDate, origin, 1000 * kSecondsOfDay};
    // The first letter of the dates of old releases.
    const bool isDay = format.starts_with("td") || format.starts_with('d');
    return isDay ? std::optional(TimeScale{Shown::kDate, origin, 1}) : std::nullopt;
  }
  const std::string_view name = format.substr(0, format.find_last_not_of("0123456789.") + 1);
  const auto isOf = [name](const auto& names) { return std::ranges::find(names, name) != std::end(names); };
  if (package == Package::kSpss) {
    if (isOf(kSpssDates)) return TimeScale{Shown::kDate, origin, kSecondsOfDay};
    if (isOf(kSpssTimes)) return TimeScale{Shown::kTime, 0, kSecondsOfDay};
    return std::nullopt;
  }
  if (isOf(kSasDates)) return TimeScale{Shown::kDate, origin, 1};
  if (isOf(kSasMoments)) return TimeScale{Shown::kDate, origin, kSecondsOfDay};
  if (isOf(kSasTimes)) return TimeScale{Shown::kTime, 0, kSecondsOfDay};
  return std::nullopt;
}

bool IsSerial(double value) {
  constexpr double kLast = 2958465;  // the 31st of December 9999
  return value >= 0 && value <= kLast + 1;
}

bool IsDay(double daysSince1970) {
  return daysSince1970 >= static_cast<double>(DaysOf(1, 1, 1)) &&
         daysSince1970 < static_cast<double>(DaysOf(10000, 1, 1));
}

}  // namespace brenvolt
