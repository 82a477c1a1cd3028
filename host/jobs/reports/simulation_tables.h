// The tables of a simulation for people: the command prints them, reports hold them.
#pragma once

#include <cstddef>

#include "host/jobs/simulation_results.h"
#include "host/reporting/report.h"

namespace brenvolt {

// Moments and percentiles apart, so that a line fits a terminal.
struct SummaryTables {
  ReportTable moments;
  ReportTable percentiles;
};
SummaryTables TablesOf(const ResultTable& summary);

// A line for each pair, at most so many; of more those whose correlation asked for is the strongest, of equal ones those
// whose Spearman correlation is farthest from that of normal scores with the correlation used.
ReportTable CorrelationTable(const SimulationResults& results, std::size_t most);

}  // namespace brenvolt
