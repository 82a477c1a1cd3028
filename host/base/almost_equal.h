// Comparison of reals within a few units in the last place, and the value that means "not set".
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>

namespace brenvolt {

// A parameter, offset, statistic, p-value (the real) or count (the integer) that was not entered, not
// computed, or is invalid. Always tested with IsNotSet, never with ==.
inline constexpr double kNotSet = -444.0;
inline constexpr std::int32_t kNotSetCount = -444;

// The widest distance in units in the last place at which two reals count as equal.
inline constexpr std::int64_t kAlmostEqualUlps = 15;

// The place of a finite real in the order of all reals: neighbours differ by 1, both zeros are 0.
constexpr std::int64_t OrderedBits(double x) noexcept {
  const auto bits = std::bit_cast<std::int64_t>(x);
  return bits < 0 ? static_cast<std::int64_t>(0x8000000000000000ULL - static_cast<std::uint64_t>(bits))
                  : bits;
}

// True when a and b are finite and at most 15 representable doubles apart. A non-finite value equals nothing.
inline bool AlmostEqual(double a, double b) noexcept {
  if (!std::isfinite(a) || !std::isfinite(b)) return false;
  const std::int64_t left = OrderedBits(a);
  const std::int64_t right = OrderedBits(b);
  const std::uint64_t distance = left > right
                                     ? static_cast<std::uint64_t>(left) - static_cast<std::uint64_t>(right)
                                     : static_cast<std::uint64_t>(right) - static_cast<std::uint64_t>(left);
  return distance <= static_cast<std::uint64_t>(kAlmostEqualUlps);
}

inline bool IsNotSet(double x) noexcept {
  return AlmostEqual(x, kNotSet);
}

// True when a value of a variable is missing: not a number, or equal to the variable's missing-data code.
inline bool IsMissingValue(double x, double missingCode) noexcept {
  return std::isnan(x) || AlmostEqual(x, missingCode);
}

// True when x lies within the tolerance of the whole number below it.
inline bool IsWholeNumber(double x) noexcept {
  return AlmostEqual(x, std::floor(x));
}

}  // namespace brenvolt
