// Numbers of result tables for people, in the form of their quantities.
#pragma once

#include <string>

#include "host/analysis/result_table.h"

namespace brenvolt {

// A number for people, to `digits` significant digits; "-" for a value that does not exist (NaN).
std::string ReadableNumber(double value, int digits = 6);
// The digits in which a number shows a hundredth of `spread`: from `least` to 17.
int DigitsFor(double value, double spread, int least);
// A number in the form of its quantity; `digits` are those of a measure.
std::string QuantityText(double value, Quantity quantity, int digits = 6);
// The number of a row in the form of its column.
std::string Cell(const ResultRow& row, const ResultColumn& column, int digits = 6);

}  // namespace brenvolt
