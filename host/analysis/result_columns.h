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
inline constexpr std::string_view kChiSquare = " Chi-square ";
inline constexpr std::string_view kChiSquarePValue = " Chi-square \n p-value ";
inline constexpr std::string_view kChiSquareDegrees = " Chi-square \n df ";
inline constexpr std::string_view kAndersonDarling = "   AD Stat   ";
inline constexpr std::string_view kAndersonDarlingPValue = " AD p-value ";
inline constexpr std::string_view kAic = "AIC";
inline constexpr std::string_view kBic = "BIC";
inline constexpr std::string_view kStandardError = "Std.Err. ";  // followed by the parameter's number
inline constexpr std::string_view kBootstrapKolmogorovSmirnov = "Bootstrap K-S p-value";
inline constexpr std::string_view kBootstrapChiSquare = "Bootstrap chi-square p-value";
inline constexpr std::string_view kBootstrapAndersonDarling = "Bootstrap AD p-value";
inline constexpr std::string_view kBootstrapSamples = "Bootstrap samples";
inline constexpr std::string_view kReason = "Reason";  // why a fit failed
// Of the details of one fit: one case per parameter.
inline constexpr std::string_view kValue = "Value";
inline constexpr std::string_view kCovariance = "Covariance ";  // with the parameter of that number

}  // namespace brenvolt::result_column
