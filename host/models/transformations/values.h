// Types and values of fields. Every value is a double: a number as itself, a truth value as 1 or 0, a date as
// days since 1970-01-01, a time as seconds since midnight, a date with time as seconds since 1970-01-01, a
// text as its number in the text pool, and NaN if the value is missing.
#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/models/document/pmml_document.h"

namespace brenvolt::pmml {

inline constexpr double kMissing = std::numeric_limits<double>::quiet_NaN();

enum class DataType : std::uint8_t {
  kText,
  kInteger,
  kFloat,  // values are rounded to single precision
  kDouble,
  kBoolean,
  kDate,
  kTime,
  kDateTime,
  kDaysSince,     // dateDaysSince[1960] and its like
  kSecondsSince,  // dateTimeSecondsSince[1960] and its like
  kTimeSeconds
};

enum class OpType : std::uint8_t { kContinuous, kCategorical, kOrdinal };

struct TypeInfo {
  DataType type = DataType::kDouble;
  int year = 1970;  // of kDaysSince and kSecondsSince

  bool IsText() const { return type == DataType::kText; }
};
inline constexpr TypeInfo kText{DataType::kText};
inline constexpr TypeInfo kDouble{DataType::kDouble};
inline constexpr TypeInfo kInteger{DataType::kInteger};
inline constexpr TypeInfo kTruth{DataType::kBoolean};

// The attribute dataType of an element, or the one of another name; `otherwise` if it has none.
TypeInfo ReadDataType(const Element& element, TypeInfo otherwise, const char* attribute = "dataType");
OpType ReadOpType(const Element& element, OpType otherwise, const char* attribute = "optype");

// The number that a text stands for as a value of the type, which must not be text; nothing if it stands for
// none.
std::optional<double> ParseValue(TypeInfo type, std::string_view text);

// A value of a type other than text as text.
std::string FormatValue(TypeInfo type, double value);

// Days from 1970-01-01 to the first of January of a year.
double DaysToYear(int year);

struct Interval {
  double low = -std::numeric_limits<double>::infinity();
  double high = std::numeric_limits<double>::infinity();
  bool includesLow = true;
  bool includesHigh = true;

  bool Holds(double x) const {
    return (includesLow ? x >= low : x > low) && (includesHigh ? x <= high : x < high);
  }
};
Interval ReadInterval(const Element& element);

// Which values a field may take.
struct Domain {
  std::vector<double> valid;  // if there are any, only these and the intervals
  std::vector<double> invalid;
  std::vector<double> missing;
  std::vector<Interval> intervals;

  bool Restricts() const { return !valid.empty() || !invalid.empty() || !intervals.empty(); }
  bool IsValid(double x) const;
  bool IsMissing(double x) const;
};

// A field as the data dictionary describes it.
struct Field {
  std::string name;
  TypeInfo type;
  OpType opType = OpType::kContinuous;
  std::vector<std::string> labels;  // of the valid values, in the order of the dictionary
  std::vector<std::string> displayLabels;
  Domain domain;  // `valid` in the same order
};

}  // namespace brenvolt::pmml
