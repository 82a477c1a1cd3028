// Cells of a sheet as people see and type them: numbers in the user's locale, texts by their labels, missing values
// empty.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>

#include "host/base/number_text.h"
#include "host/tables/variable.h"

namespace brenvolt {

// Numbers in full: the text reads back as exactly this value. Empty for a missing value.
std::string CellText(const Variable& variable, std::size_t row, NumberLocale locale);

// Reads what is typed or pasted into cells of one variable, which must outlive it.
class CellReader {
 public:
  CellReader(const Variable& variable, NumberLocale locale);

  // The value that the text stands for. Empty, NA and nan are missing, in the variable's missing-data code. Of a text
  // variable, a text that it does not have yet gets the next code. Throws Error if a number is expected and the text is
  // none, or too large.
  double Read(std::string_view text);
  // The labels that the texts read so far need beside those that the variable has.
  const std::map<double, std::string>& NewLabels() const { return newLabels_; }

 private:
  double ReadText(std::string_view text);

  const Variable& variable_;
  NumberLocale locale_;
  std::unordered_map<std::string, double> codes_;  // of a text variable
  double lastCode_ = 0;
  std::map<double, std::string> newLabels_;
};

}  // namespace brenvolt
