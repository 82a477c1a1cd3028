// What is a correlation, and which matrices of correlations variables can have: the one rule of dialogs, notation, files,
// windows and engines.
#pragma once

#include <cmath>
#include <optional>
#include <span>

#include "host/base/almost_equal.h"

namespace brenvolt {

// A correlation that was entered: from -1, within 15 units in the last place, to 1. What lies within the tolerance becomes -1;
// nothing for any other number.
inline std::optional<double> CorrelationEntry(double value) {
  if (!(value <= 1)) return std::nullopt;
  if (value >= -1) return value;
  return AlmostEqual(value, -1) ? std::optional(-1.0) : std::nullopt;
}

// An entry of a matrix that is stored: 1 on the diagonal, of a magnitude up to 1 elsewhere, both within 15 units in the last
// place.
inline bool IsStoredCorrelation(double value, bool onDiagonal) {
  if (onDiagonal) return AlmostEqual(value, 1.0);
  return std::abs(value) <= 1.0 || AlmostEqual(std::abs(value), 1.0);
}

// An eigenvalue that is not positive belongs to correlations that contradict each other, which a simulation repairs.
inline bool IsPositiveEigenvalue(double value) {
  return value > 0 && !AlmostEqual(value, 0.0);
}

}  // namespace brenvolt
