// Dates of workbooks as texts: "2024-02-29", with the time where there is one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace brenvolt {

// Days since 1970-01-01 of a day of the Gregorian calendar.
std::int64_t DaysOf(std::int64_t year, unsigned month, unsigned day);

std::string DateText(int year, int month, int day, int hour, int minute, double second);
// The date that a number of days since the origin shows, which is itself in days since 1970-01-01.
std::string DateText(double serial, std::int64_t origin);

// True for a code of a format such as "yyyy-mm-dd hh:mm", in which letters stand for parts of a date or time.
bool IsDateFormat(std::string_view code);
// The same for the numbers of formats that files need not define (ECMA-376, part 1, 18.8.30).
bool IsBuiltInDate(std::size_t number);

// True for a number that spreadsheet programs show as a date.
bool IsSerial(double value);

}  // namespace brenvolt
