#include "host/analysis/quantity_text.h"

#include <algorithm>
#include <cmath>

#include "host/base/number_text.h"
#include "host/base/p_value_text.h"

namespace brenvolt {

std::string ReadableNumber(double value, int digits) {
  return std::isnan(value) ? "-" : FormatNumber(("%." + std::to_string(digits) + "g").c_str(), value);
}

int DigitsFor(double value, double spread, int least) {
  constexpr int kExact = 17;  // of a double
  if (!(value != 0 && std::isfinite(value) && spread > 0)) return least;
  const double leading = std::floor(std::log10(std::abs(value))) - std::floor(std::log10(spread));
  return static_cast<int>(std::clamp<double>(leading + 3, least, kExact));
}

std::string QuantityText(double value, Quantity quantity, int digits) {
  constexpr int kStatisticDigits = 4;
  constexpr double kHalfPart = 0.5;
  if (std::isnan(value)) return "-";
  switch (quantity) {
    case Quantity::kPartsPerMillion:
      // A part that is rounded away is not 0.
      return value > 0 && value < kHalfPart ? "<1" : FormatNumber("%.0f", value);
    case Quantity::kMeasure:
    case Quantity::kLocation:
      return ReadableNumber(value, digits);
    case Quantity::kCount:
      return FormatNumber("%.0f", value);
    case Quantity::kStatistic:
      return ReadableNumber(value, kStatisticDigits);
    case Quantity::kPValue:
      return PValueText(value);
    case Quantity::kInformation:
      return FormatNumber("%.2f", value);
  }
  return {};
}

std::string Cell(const ResultRow& row, const ResultColumn& column, int digits) {
  if (column.quantity == Quantity::kLocation && row.Has("standard_deviation"_column))
    digits = DigitsFor(row.Number(column), row.Number("standard_deviation"_column), digits);
  return QuantityText(row.Number(column), column.quantity, digits);
}

}  // namespace brenvolt
