// Bounds of how many runs an analysis makes: a job refuses what lies outside them, a dialog replaces it.
#pragma once

#include <cstdint>

namespace brenvolt {

inline constexpr std::int32_t kFewestProfilerRuns = 100;
inline constexpr std::int32_t kMostProfilerRuns = 100'000;
inline constexpr std::int32_t kUsualProfilerRuns = 5000;

// Samples of a simulation that goes to a file or is only summarised.
inline constexpr double kMostFileSamples = 1e12;

}  // namespace brenvolt
