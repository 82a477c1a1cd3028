// The results of a fit as spreadsheets: what a person reads, a program takes, and automation returns.
#pragma once

#include <memory>
#include <span>

#include "brv_sra/fitting/fit_state.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt::sra {

// Columns of the tables below, by name; a value that does not exist is missing.
namespace fit_column {
inline constexpr std::string_view kKind = "Kind";  // text: continuous or discrete
inline constexpr std::string_view kCount = "Valid N";
inline constexpr std::string_view kMissing = "Missing";
inline constexpr std::string_view kMean = "Mean";
inline constexpr std::string_view kStandardDeviation = "Std.Dev.";
inline constexpr std::string_view kSkewness = "Skewness";
inline constexpr std::string_view kKurtosis = "Kurtosis";
inline constexpr std::string_view kMinimum = "Minimum";
inline constexpr std::string_view kMaximum = "Maximum";
inline constexpr std::string_view kCode = "Code";
inline constexpr std::string_view kDescription = "(Params Description)";  // text
inline constexpr std::string_view kStatistic = "K-S d";
inline constexpr std::string_view kPValue = "K-S p-value";
inline constexpr std::string_view kLogLikelihood = "Log-likelihood";
inline constexpr std::string_view kOffset = "Offset";
inline constexpr std::string_view kParameter = "Parameter ";  // followed by its number in catalogue order
}  // namespace fit_column

// One case per variable, named after it: its moments.
std::unique_ptr<Spreadsheet> SummaryTable(std::span<const VariableFit> results);

// One case per fitted distribution of a variable, best first, named by its display name; titled by the
// criterion.
std::unique_ptr<Spreadsheet> RankedTable(const VariableFit& fit, RankingCriterion criterion);

}  // namespace brenvolt::sra
