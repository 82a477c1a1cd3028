// Bounds of how many runs an analysis makes: a job refuses what lies outside them, a dialog replaces it.
#pragma once

#include <cstdint>

namespace brenvolt {

inline constexpr std::int32_t kFewestProfilerRuns = 100;
inline constexpr std::int32_t kMostProfilerRuns = 100'000;
inline constexpr std::int32_t kUsualProfilerRuns = 5000;

}  // namespace brenvolt
