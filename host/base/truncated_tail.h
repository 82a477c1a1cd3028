// The share of a distribution that a simulation between tails leaves out on either side.
#pragma once

namespace brenvolt {

inline constexpr double kTruncatedTail = 0.005;

}  // namespace brenvolt
