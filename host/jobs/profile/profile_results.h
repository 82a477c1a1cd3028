// What simulated runs of the profiler told, as numbers: read once from the documents that it shows.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <variant>
#include <vector>

#include "host/analysis/analysis_table_doc.h"
#include "host/analysis/result_table.h"
#include "host/graphs/graph.h"
#include "host/jobs/notation/design_text.h"

namespace brenvolt {

// How a response follows a predictor: its mean in classes of the predictor's values that hold equally many runs.
struct PredictedProfile {
  std::string predictor;
  std::vector<double> values;      // the median of each class, ascending
  std::vector<std::string> names;  // of the values, if they stand for texts; else none
  std::vector<double> means;       // of the response in that class
};

// Why some runs have no prediction.
struct UnpredictedRuns {
  std::string reason;  // for programs: "missing", "unknown", "outside-range", "no-result"
  std::string text;    // for people
  std::string field;   // empty if no field is the reason
  std::string values;  // the value, or the range of the values
  std::int64_t runs = 0;
};
// The fields by which programs know it, as take(name, value) in their order.
template <class Take>
void TakeFields(const UnpredictedRuns& unpredicted, Take take) {
  take("reason", unpredicted.reason);
  take("field", unpredicted.field);
  take("values", unpredicted.values);
  take("runs", unpredicted.runs);
}
// "field x, the value is missing"
std::string ReasonText(const UnpredictedRuns& unpredicted);

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
  std::vector<PredictedProfile>
      profiles;  // by predictor; none of classes, and where there were too many to draw
  std::vector<UnpredictedRuns> unpredicted;  // the most frequent reason first

  // Whether any run has a prediction.
  bool IsPredicted() const;
};

// What a predictor is drawn from, with its truncation: in the notation of distributions (host/jobs/notation/), followed by the
// gaps in what its models accept; "fixed at 3" for one that is fixed.
struct PredictorUse {
  std::string name;
  std::string distribution;
  std::optional<std::variant<double, std::string>> fixed = {};  // a number, or the name of a class
};

struct ProfileResults {
  std::int64_t runs = 0;
  std::string method;  // how the predictors are drawn, one of kSimulationMethods
  std::vector<PredictorUse> predictors;
  std::vector<NotedCorrelation> correlations;  // PredictorInputs::Correlations
  std::vector<ResponseResults> responses;
  // The exact counts, one row per specified response, then that of all; if there is any.
  std::optional<ResultTable> defects;
  std::vector<std::string> notes;  // on what the tables leave out
};

// Adds a response from the tables of its summary, in the order in which the profiler shows them, and that of its
// capability if there is one. The further lines of their titles are notes, each of which is taken once. Error
// for another number of tables than the profiler shows.
void TakeResponse(const std::string& name, std::span<const std::shared_ptr<CAnalysisTableDoc>> summary,
                  const CAnalysisTableDoc* capability, ProfileResults& results);
// Takes why runs of each response have no prediction.
void TakeUnpredicted(const CAnalysisTableDoc& document, ProfileResults& results);
// Takes the profiles of each response from the graph of them all; the simulated runs name the values of predictors of texts.
void TakeProfiles(const Graph& graph, const Spreadsheet& simulated, ProfileResults& results);
// Takes the table of the exact counts of defects, and the further lines of its title as notes.
void TakeDefects(const CAnalysisTableDoc& document, ProfileResults& results);

}  // namespace brenvolt
