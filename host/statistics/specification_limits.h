// What a response may be: its specification.
#pragma once

#include <cmath>
#include <limits>

namespace brenvolt {

// NaN if a value is not given.
struct SpecificationLimits {
  double lower = std::numeric_limits<double>::quiet_NaN();
  double upper = std::numeric_limits<double>::quiet_NaN();
  double target = std::numeric_limits<double>::quiet_NaN();

  bool HasLower() const { return !std::isnan(lower); }
  bool HasUpper() const { return !std::isnan(upper); }
  bool HasTarget() const { return !std::isnan(target); }

  // At least one limit is given; what is given is finite; the lower limit is below the upper one; the target,
  // if there is one, lies within the limits, which it may touch.
  bool IsValid() const {
    if (!HasLower() && !HasUpper()) return false;
    if (std::isinf(lower) || std::isinf(upper) || std::isinf(target)) return false;
    return !(lower >= upper) && !(target < lower) && !(target > upper);
  }
  // Strictly outside: a value on a limit is within. A NaN is neither.
  bool IsBelow(double x) const { return x < lower; }
  bool IsAbove(double x) const { return x > upper; }
  bool IsDefect(double x) const { return IsBelow(x) || IsAbove(x); }
};

}  // namespace brenvolt
