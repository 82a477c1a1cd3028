// What the profiler tells of one simulated response: its capability, its summary tables and its graphs. Knows
// no dialog.
//
// Runs without a prediction (missing or not finite) take part in nothing and are counted where a table has a
// place for them. docs/reference/capability.md gives the formulas; the names of rows and columns are those of
// host/analysis/result_columns.h.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "brv_sra/base/run_progress.h"
#include "brv_sra/fitting/fit_state.h"
#include "host/graphs/graph.h"
#include "host/statistics/specification_limits.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt::sra {

// A response in a simulated sheet, whose first `predictors` columns are the predictors and whose others are
// the responses. The sheet must outlive it.
struct SimulatedResponse {
  const Spreadsheet& sheet;
  std::size_t predictors = 0;
  std::size_t response = 0;    // among the responses, from 0
  SpecificationLimits limits;  // NaN if not given
  bool independent = true;     // the runs of each other; confidence limits are known for such runs alone

  const Variable& Column() const { return sheet.VariableAt(predictors + response); }
};

// The fits of the response with the distributions of best_fit_candidates.h, with tests and ranks. No fits,
// and `invalid`, where the runs are too few or too alike for a density: no more different values than a
// frequency table lists one by one. Makes up to a dozen fits: keep the result as long as the sheet. Progress
// and cancellation reach `port`; throws UserCancelled.
VariableFit FitResponse(const SimulatedResponse& response, const RunProgress& bars);

// Capability of the response, whose limits are valid, one case per statistic, with confidence limits where it has any. With
// fits of which the best is not the normal distribution and the normal one is rejected at 5 % (Anderson & Darling), indices
// and parts per million by the points of the best distribution follow, which the column "(Params Description)" names; they
// are missing otherwise.
std::unique_ptr<Spreadsheet> CapabilityDocument(const SimulatedResponse& response, const VariableFit& fit);

// In the order in which they are shown; kept apart by their place.
enum class SummaryDocument : std::size_t {
  kStatistics,    // one case: count, missing, moments
  kCorrelations,  // one case per predictor: Pearson's and Spearman's coefficient, each with its p-value
  kPercentiles,   // one case per percentile, with limits of 95 % confidence
  kFrequencies,   // one case per class, named by its text where it has one, otherwise by its number from 1
  kSensitivity    // one case per predictor, the one that drives the response most first
};
inline constexpr std::size_t kSummaryDocuments = 5;
std::vector<std::unique_ptr<Spreadsheet>> SummaryDocuments(const SimulatedResponse& response);

// A graph of two panels: the histogram with the best fit, if there is one, and a line for each value of
// the limits and the target that is given; and a tornado graph, a bar of the rank correlation for each
// predictor, the longest first. Throws Error if no run has a prediction.
Graph SummaryGraphs(const SimulatedResponse& response, const VariableFit& fit);

}  // namespace brenvolt::sra
