#include "host/tables/editing/cell_text.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "host/base/error.h"
#include "host/base/lower_case.h"
#include "host/base/quoted.h"
#include "host/base/utf8.h"

namespace brenvolt {
namespace {

bool IsMissingWord(std::string_view text) {
  return text.empty() || text == "NA" || LowerCase(text) == "nan";
}

}  // namespace

std::string CellText(const Variable& variable, std::size_t row, NumberLocale locale) {
  if (variable.IsMissing(row)) return {};
  const double value = variable.Values()[row];
  if (variable.Type() == VariableType::kText) {
    if (const auto label = variable.Label(value)) return std::string(*label);
  }
  std::string text = ShortestNumber(value);
  std::ranges::replace(text, '.', locale.decimalSeparator);
  return text;
}

CellReader::CellReader(const Variable& variable, NumberLocale locale) : variable_(variable), locale_(locale) {
  if (variable.Type() != VariableType::kText) return;
  for (const auto& [code, text] : variable.Labels()) {
    codes_.emplace(text, code);
    lastCode_ = std::max(lastCode_, std::floor(code));
  }
}

double CellReader::Read(std::string_view text) {
  const std::string_view trimmed = Trim(text);
  if (IsMissingWord(trimmed)) return variable_.MissingCode();
  if (variable_.Type() == VariableType::kText) return ReadText(trimmed);
  const std::string lower = LowerCase(trimmed);
  if (lower == "inf") return std::numeric_limits<double>::infinity();
  if (lower == "-inf") return -std::numeric_limits<double>::infinity();
  double value = 0;
  switch (ReadNumber(trimmed, locale_, value)) {
    case NumberReading::kNumber:
      return value;
    case NumberReading::kTooLarge:
      throw Error(Quoted(trimmed) + " is too large for a number", variable_.Name());
    case NumberReading::kNoNumber:
      break;
  }
  // A copy from elsewhere may have a decimal point.
  if (const auto travelled = ParseTravelledNumber(trimmed)) return *travelled;
  throw Error("expected a number, got " + Quoted(trimmed), variable_.Name());
}

double CellReader::ReadText(std::string_view text) {
  if (!IsText(text)) throw Error("the text is not UTF-8", variable_.Name());
  const auto [found, isNew] = codes_.try_emplace(std::string(text), lastCode_ + 1);
  if (isNew) {
    // The missing-data code cannot stand for a text.
    if (IsMissingValue(found->second, variable_.MissingCode())) ++found->second;
    lastCode_ = found->second;
    newLabels_[lastCode_] = found->first;
  }
  return found->second;
}

}  // namespace brenvolt
