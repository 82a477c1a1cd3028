// A report of results as a front end shows them, whatever made them: of tables and pictures alone, without the words that
// the reports of jobs have.
#pragma once

#include <span>
#include <string>

#include "host/jobs/reports/shown_origin.h"
#include "host/reporting/report.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt {

// A table or a graph, which must outlive the call.
struct ShownResult {
  std::string title;
  const Spreadsheet* table = nullptr;
  const Graph* graph = nullptr;
};

// A section for each result. Of long and wide tables the beginning is there, and a note that says so.
Report ShownReport(std::string title, std::span<const ShownResult> results, const ShownOrigin& origin = {});

}  // namespace brenvolt
