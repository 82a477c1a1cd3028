// The names of the columns of result tables: the module's texts, and what a program looks columns up by.
#pragma once

#include <string_view>

namespace brenvolt::result_column {

inline constexpr std::string_view kKind = "Kind";
inline constexpr std::string_view kCount = "Valid N";
inline constexpr std::string_view kMissing = "Missing";
inline constexpr std::string_view kMean = "Mean";
inline constexpr std::string_view kStandardDeviation = "Std.Dev.";
inline constexpr std::string_view kSkewness = "Skewness";
inline constexpr std::string_view kKurtosis = "Kurtosis";
inline constexpr std::string_view kMinimum = "Minimum";
inline constexpr std::string_view kMaximum = "Maximum";
inline constexpr std::string_view kPercentile = "P";  // followed by the percent
inline constexpr std::string_view kCode = "Code";
inline constexpr std::string_view kDescription = "(Params Description)";
inline constexpr std::string_view kKolmogorovSmirnov = "K-S d";
inline constexpr std::string_view kKolmogorovSmirnovPValue = "K-S p-value";
inline constexpr std::string_view kLogLikelihood = "Log-likelihood";
inline constexpr std::string_view kOffset = "Offset";
inline constexpr std::string_view kParameter = "Parameter ";  // followed by its number in catalogue order

}  // namespace brenvolt::result_column
