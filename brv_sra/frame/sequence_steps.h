// The numbers of the steps of the analysis.
#pragma once

#include <cstdint>

namespace brenvolt::sra::step {

inline constexpr std::int32_t kInit = 100;
inline constexpr std::int32_t kStartup = 101;
inline constexpr std::int32_t kFit = 102;
inline constexpr std::int32_t kFitResults = 103;
inline constexpr std::int32_t kSimulation = 104;  // from a later dialog: no return step
inline constexpr std::int32_t kSimulationResults = 105;
inline constexpr std::int32_t kSimulationFromStartup =
    106;  // the same dialog, returning to the startup dialog
inline constexpr std::int32_t kDesign = 107;
inline constexpr std::int32_t kProfiler = 108;

}  // namespace brenvolt::sra::step
