// The names of the rows and columns in the profiler's tables of a response: the module's texts, and what a
// program looks them up by.
#pragma once

#include <string_view>

namespace brenvolt::response_table {

// Rows of the capability table, in their order; statistics and their names in result_columns.h stand there
// too.
inline constexpr std::string_view kLowerLimit = "LSL";
inline constexpr std::string_view kTarget = "Target";
inline constexpr std::string_view kUpperLimit = "USL";
inline constexpr std::string_view kWithinDeviation = "Std.Dev. (within)";
inline constexpr std::string_view kNormalPValue = "Normal: A-D p-value";
inline constexpr std::string_view kCp = "Cp";
inline constexpr std::string_view kCpl = "Cpl";
inline constexpr std::string_view kCpu = "Cpu";
inline constexpr std::string_view kCpk = "Cpk";
inline constexpr std::string_view kCpm = "Cpm";
inline constexpr std::string_view kPp = "Pp";
inline constexpr std::string_view kPpl = "Ppl";
inline constexpr std::string_view kPpu = "Ppu";
inline constexpr std::string_view kPpk = "Ppk";
inline constexpr std::string_view kObservedBelow = "PPM below LSL, observed";
inline constexpr std::string_view kObservedAbove = "PPM above USL, observed";
inline constexpr std::string_view kObservedTotal = "PPM, observed";
inline constexpr std::string_view kWithinBelow = "PPM below LSL, expected (within)";
inline constexpr std::string_view kWithinAbove = "PPM above USL, expected (within)";
inline constexpr std::string_view kWithinTotal = "PPM, expected (within)";
inline constexpr std::string_view kOverallBelow = "PPM below LSL, expected (overall)";
inline constexpr std::string_view kOverallAbove = "PPM above USL, expected (overall)";
inline constexpr std::string_view kOverallTotal = "PPM, expected (overall)";
inline constexpr std::string_view kLowPoint = "0.135 % point";
inline constexpr std::string_view kMedianPoint = "50 % point";
inline constexpr std::string_view kHighPoint = "99.865 % point";
inline constexpr std::string_view kPercentilePp = "Pp (percentiles)";
inline constexpr std::string_view kPercentilePpl = "Ppl (percentiles)";
inline constexpr std::string_view kPercentilePpu = "Ppu (percentiles)";
inline constexpr std::string_view kPercentilePpk = "Ppk (percentiles)";
inline constexpr std::string_view kPercentileBelow = "PPM below LSL, expected (percentiles)";
inline constexpr std::string_view kPercentileAbove = "PPM above USL, expected (percentiles)";
inline constexpr std::string_view kPercentileTotal = "PPM, expected (percentiles)";

// Columns of the tables.
inline constexpr std::string_view kLowerConfidence = "Lower 95 %";
inline constexpr std::string_view kUpperConfidence = "Upper 95 %";
inline constexpr std::string_view kCoverage = "Coverage";
inline constexpr std::string_view kPearson = "Pearson";
inline constexpr std::string_view kPearsonPValue = "Pearson p-value";
inline constexpr std::string_view kSpearman = "Spearman";
inline constexpr std::string_view kSpearmanPValue = "Spearman p-value";
inline constexpr std::string_view kClassFrom = "From";
inline constexpr std::string_view kClassTo = "To";
inline constexpr std::string_view kClassCount = "Count";
inline constexpr std::string_view kClassCumulativeCount = "Cumulative count";
inline constexpr std::string_view kClassPercent = "Percent";
inline constexpr std::string_view kClassCumulativePercent = "Cumulative percent";
inline constexpr std::string_view kRankContribution = "Contribution to variance";
inline constexpr std::string_view kStandardizedCoefficient = "Standardized coefficient";
inline constexpr std::string_view kLinearContribution = "Linear contribution";
inline constexpr std::string_view kFirstOrder = "First-order share";

}  // namespace brenvolt::response_table
