// The report of a fit: what the fit results dialog's tables say, for people or for programs.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "apps/cli/data_options.h"
#include "host/jobs/fit_quantiles.h"
#include "host/jobs/fit_results.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt::cli {

// What was asked for, by the command's own names.
struct FitReportOptions {
  std::string rankBy;          // "ks", "chi-square", "anderson-darling", "aic" or "bic"
  std::string discreteRankBy;  // of discrete variables
  std::int32_t bootstrapSamples = 0;
  ReportFormat format = ReportFormat::kTable;
  std::vector<std::optional<FitQuantiles>> quantiles = {};  // of each variable
};

// What speaks against fits that are simulated, for people.
std::string CautionsText(const std::vector<FitCaution>& cautions);

// What is read off a fit, for people. Values show a hundredth of `spread`, the deviation of the data.
std::string QuantilesText(const FitQuantiles& found, double spread);

// Prints the results to standard output: per variable its moments and its ranked distributions, as tables or as one JSON
// object. Says which of the input's cases were used and how they were weighted, where that is not all of them alike.
void ReportFit(const std::vector<FittedVariable>& variables, const Spreadsheet& input,
               const FitReportOptions& options);

}  // namespace brenvolt::cli
