// The first lines of a text as rows of cells under a delimiter, taken apart leniently: what detection looks at.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace brenvolt {

struct SampleCell {
  std::string text;  // without quotes
  bool quoted = false;
};

struct SampleRow {
  std::size_t offset = 0;  // in the text
  std::size_t line = 0;    // from 1
  std::vector<SampleCell> cells;
};

// The rows of the text that are neither blank nor begin with `comment`. A quote that is not closed within the text is
// a character as others are.
std::vector<SampleRow> SampleRows(std::string_view text, char delimiter, char comment);

// A number with decimal point or comma and groups of digits.
struct NumberForm {
  char decimal = '.';
  char thousands = 0;

  bool operator==(const NumberForm&) const = default;
};
// All forms, the simpler ones first.
extern const std::vector<NumberForm> kNumberForms;

bool IsNumberOf(std::string_view text, const NumberForm& form);
bool IsNumberOfAnyForm(std::string_view text);
// A number in which the mark before three digits may be a decimal sign or separate thousands, such as 1,234.
bool IsNumberOfTwoMeanings(std::string_view text, char mark);

// What stands in place of a missing value in many files: "-", "n/a", "?".
bool LooksMissing(std::string_view text);
// A date, a time, or both.
bool LooksLikeDate(std::string_view text);

}  // namespace brenvolt
