// The tables of a fit for people: the command prints them, reports hold them.
#pragma once

#include <cstdint>
#include <string>

#include "host/jobs/fit_quantiles.h"
#include "host/jobs/fit_results.h"
#include "host/reporting/report.h"

namespace brenvolt {

// Skewness or kurtosis, which are 0 where they are no more than what the deviations from the mean, in units of their
// standard deviation, are rounded by.
std::string ShapeText(const ResultRow& moments, const ResultColumn& column);

// The fits of a variable by rank. The p-values are the bootstrap's where there was one. Below the table stands why
// distributions have no fit.
ReportTable RankingTable(const FittedVariable& variable, const std::string& rankedBy, bool bootstrapped);

// What was read off a fit to data of this spread. Below the table stands how its intervals are to be read.
ReportTable QuantileTable(const FitQuantiles& found, double spread);

// How the p-values are to be read. `bootstrapSamples` is 0 without a bootstrap.
std::string PValueNote(std::int32_t bootstrapSamples);

}  // namespace brenvolt
