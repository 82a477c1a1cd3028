// What simulated runs of the profiler told, as numbers: read once from the documents that it shows.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "host/analysis/analysis_table_doc.h"
#include "host/analysis/result_table.h"

namespace brenvolt {

// Rows of the tables are by the columns of result_columns.h.
struct ResponseResults {
  std::string name;
  ResultRow statistics;
  std::vector<ResultRow> correlations;    // one row per predictor
  std::vector<ResultRow> percentiles;     // "percentile.0.135", …
  std::vector<ResultRow> frequencies;     // one row per class
  std::vector<ResultRow> sensitivity;     // one row per predictor, the most influential first
  ResultRow allPredictors;                // the sensitivity to all together
  std::optional<ResultTable> capability;  // one row per statistic; with a specification
};

struct ProfileResults {
  std::int64_t runs = 0;
  std::vector<ResponseResults> responses;
  // One row per specified response, then that of all; where there is any.
  std::optional<ResultTable> defects;
  std::vector<std::string> notes;  // on the defects
};

// From the tables of a response's summary, in the order in which the profiler shows them; Error for another
// number of tables than it shows.
ResponseResults ReadResponseResults(const std::string& name,
                                    std::span<const std::shared_ptr<CAnalysisTableDoc>> summary);
// Puts the table of defect rates into the results, the further lines of its title as notes.
void TakeDefects(const CAnalysisTableDoc& document, ProfileResults& results);

}  // namespace brenvolt
