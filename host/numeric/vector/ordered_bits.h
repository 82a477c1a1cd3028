// Reals as whole numbers of the same order.
#pragma once

#include <bit>
#include <cstdint>

namespace brenvolt {

// Unsigned whole numbers are ordered as the reals they represent, -0 before +0; x is not NaN.
inline std::uint64_t OrderedBits(double x) {
  constexpr std::uint64_t kSign = std::uint64_t{1} << 63;
  const auto bits = std::bit_cast<std::uint64_t>(x);
  return (bits & kSign) != 0 ? ~bits : bits | kSign;
}

// The real that the number represents.
inline double FromOrderedBits(std::uint64_t ordered) {
  constexpr std::uint64_t kSign = std::uint64_t{1} << 63;
  return std::bit_cast<double>((ordered & kSign) != 0 ? ordered & ~kSign : ~ordered);
}

}  // namespace brenvolt
