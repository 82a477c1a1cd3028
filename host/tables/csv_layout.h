// How a text of separated values is laid out beyond the two characters of its format: what a person may say of a
// file, or what is found by looking at it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/base/error.h"
#include "host/tables/csv.h"

namespace brenvolt {

struct CsvLayout : CsvFormat {
  explicit CsvLayout(const CsvFormat& format = {}) : CsvFormat(format) {}

  // Between groups of three digits before the decimal separator; 0: there are none. A blank stands for the
  // no-break spaces as well.
  char thousandsSeparator = 0;
  char comment = 0;               // begins lines that are passed over; 0: there are none
  std::size_t begin = 0;          // the offset of the first line that counts
  bool hasHeader = true;          // otherwise the columns are called Var1, Var2, …
  bool headerLacksFirst = false;  // the header does not name the first column, that of the names of the cases
  bool hasUnits = false;          // the line after the header holds the units, which become properties
  std::vector<std::string> missing;      // texts that mean a missing value, besides the usual ones
  std::vector<std::string> textColumns;  // names of columns that are texts whatever they hold
  // A column of numbers in which up to 1 % of the values are no numbers is refused instead of being read as texts:
  // throws StrayTextsError.
  bool refusesStrayTexts = false;
};

// The property of a variable that holds its unit.
inline constexpr const char* kUnitProperty = "unit";

// Texts in a column of numbers.
struct StrayTexts {
  struct Cell {
    std::string text;
    std::size_t line;
  };
  std::string column;
  std::size_t texts = 0;
  std::size_t values = 0;
  std::vector<Cell> first;  // at most three
};

// Texts that are so few in their columns that these must be columns of numbers.
class StrayTextsError : public Error {
 public:
  StrayTextsError(std::vector<StrayTexts> columns, const std::string& fileName)
      : Error("texts stand in columns of numbers", fileName), columns_(std::move(columns)) {}
  const std::vector<StrayTexts>& Columns() const noexcept { return columns_; }

 private:
  std::vector<StrayTexts> columns_;
};

// The number that a text with groups of digits spells. False, and `value` untouched, if it spells none.
bool ReadGroupedNumber(std::string_view text, char decimalSeparator, char thousandsSeparator, double& value);

// True for the texts that mean a missing value wherever they stand without quotes.
bool IsMissingWord(std::string_view text);

}  // namespace brenvolt
