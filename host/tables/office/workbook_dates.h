// Dates of workbooks and statistical packages as texts: "2024-02-29", with the time where there is one. Times of day and durations
// without a date are numbers of hours.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace brenvolt {

// Days since 1970-01-01 of a day of the Gregorian calendar.
std::int64_t DaysOf(std::int64_t year, unsigned month, unsigned day);

std::string DateText(int year, int month, int day, int hour, int minute, double second);
// The date that a number of days since the origin shows, which is itself in days since 1970-01-01.
std::string DateText(double serial, std::int64_t origin);

inline constexpr double kHoursOfDay = 24;

// What a format shows a number as.
enum class Shown : std::uint8_t { kNumber, kDate, kTime };

// Of a code such as "yyyy-mm-dd hh:mm", in which letters stand for parts of a date or time.
Shown ShownBy(std::string_view code);
// The same for the numbers of formats that files need not define (ECMA-376, part 1, 18.8.30).
Shown ShownByBuiltIn(std::size_t number);

// Hours of "PT01H30M00S" (ISO 8601); nothing for a text of another form, and for years and months, whose length is unknown.
std::optional<double> HoursOfDuration(std::string_view text);

// How a variable of a statistical package counts time.
struct TimeScale {
  Shown shown = Shown::kDate;
  std::int64_t origin = 0;  // of dates, in days since 1970-01-01
  double unitsOfDay = 1;
};
enum class Package : std::uint8_t { kSpss, kStata, kSas };
// By the name of the variable's format, such as "DATE11", "%td" or "MMDDYY10.".
std::optional<TimeScale> TimeScaleOf(Package package, std::string_view format);

// True for a number of days since 1900 that spreadsheet programs show as a date, and for one since 1970 of years from 1 to 9999.
bool IsSerial(double value);
bool IsDay(double daysSince1970);

}  // namespace brenvolt
