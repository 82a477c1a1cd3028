// The tables of fits to censored values for people: the command prints them, reports hold them.
#pragma once

#include <string>

#include "host/jobs/measured/censored_results.h"
#include "host/reporting/report.h"

namespace brenvolt {

// "n 70, missing 0: 12 exact, 58 right censored (read: 0 right, 1 exact)".
std::string CensoringText(const CensoredVariable& variable);
// By what the fits are ranked, and what their table shows.
std::string RankingText(const CensoredVariable& variable);
// The valid fits by rank. Below the table stands why others have none.
ReportTable CensoredRankingTable(const CensoredVariable& variable);
// Against what the values of a fit are to be told apart: half the distance between its quantiles of 16 % and 84 %.
double SpreadOf(const FittedValues& fit);
// Why there are no tests, in two lines.
std::string UntestedText();

}  // namespace brenvolt
