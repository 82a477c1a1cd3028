// The profiler's run: draws the predictors, correlates them, lets models and formulas predict, adds noise,
// and makes the spreadsheet of all that. Knows no dialog.
//
// The order of draws is part of the contract, so that a seed gives the same results on any number of cores:
// - the stream is seeded once;
// - without correlations, Monte Carlo values of the random predictors, column after column in their order
//   (sample_generation.h);
// - with them, and two random predictors or more: for each random predictor the permutation of its van der
//   Waerden scores, then Latin hypercube values of the random predictors, column after column
//   (correlation_induction.h);
// - normal deviates: for one dependent with noise, one per run; for several, for each run in order one for
//   each dependent that has noise, in their order. A run whose prediction is missing takes its deviates as well.
// A fixed predictor draws nothing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "brv_sra/base/fault.h"
#include "brv_sra/base/run_progress.h"
#include "brv_sra/matrix/correlation_target.h"
#include "brv_sra/profiler/defect_profile.h"
#include "brv_sra/profiler/profiler_design.h"
#include "host/models/unpredicted_cases.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt::sra {

struct ProfilerRun {
  // Without a title: the predictors, then the dependents, in the order of the design; one case for each run.
  // A prediction that is not a number is missing (NaN).
  std::unique_ptr<Spreadsheet> output;
  // Where the correlations of the predictors were not positive definite: what was used for them, over the
  // random predictors in order.
  std::optional<CorrelationRepair> repair;
  // By dependent, why runs have no prediction.
  std::vector<UnpredictedCases> unpredicted;
  // Whether the runs are independent of each other. Those of correlated predictors are not: they are stratified,
  // and vary less than independent ones, by a measure that is not known.
  bool independent = true;
  // False if chance correlations could not be taken back, because there are too few runs.
  bool scoreCorrection = true;
};

// Runs a design, whose number of runs may be any from 1 on. Throws UserCancelled, Error where a model refuses
// its input, std::bad_alloc.
Result<ProfilerRun> RunProfiler(const ProfilerDesign& design, const RunProgress& bars);

// Whether the design can be run, as far as can be told beforehand.
Result<void> CheckDesign(const ProfilerDesign& design);

// The columns of a run's output, with the limits that the design has now: what capability, summaries,
// sensitivity and the defect profile are made of. Dependents by name; those that are not in the design
// (any more) have no specification. The views live as long as the output is not changed.
struct ProfiledColumns {
  std::vector<ProfiledPredictor> predictors;
  std::vector<ProfiledResponse> responses;
};
// `predictors`: how many columns of the output are predictors; the others are dependents.
ProfiledColumns ColumnsOf(const Spreadsheet& output, std::size_t predictors, const ProfilerDesign& design);

}  // namespace brenvolt::sra
