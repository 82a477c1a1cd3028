// Rank correlation between simulated variables by the method of Iman & Conover (1982), "A distribution-free
// approach to inducing rank correlation among input variables", Commun. Stat. Simul. Comput. 11(3).
//
// The values of each variable are those that its generator draws; only their order is changed, so that the
// ranks within the columns follow those of normal scores that have the target as their correlation matrix.
//
// The sample matrix is the one large array: it holds the scores, then their ranks, then the samples. Besides
// it there are buffers for some columns at a time, at most half of its size (one column at least).
#pragma once

#include <cstddef>
#include <optional>
#include <span>

#include "brv_sra/base/fault.h"
#include "brv_sra/base/run_progress.h"
#include "brv_sra/matrix/correlation_target.h"
#include "brv_sra/simulation/sampling/simulation_design.h"
#include "host/controls/progress_bar.h"

namespace brenvolt::sra {

struct CorrelationInduction {
  // False when the scores' own chance correlation could not be taken back, because there are too few samples
  // for the variables (as many samples as variables, or fewer) or a column of scores is constant; the target
  // is then met only as closely as chance allows.
  bool scoreCorrection = true;
  // Set when the target was not positive definite and a repaired one is used.
  std::optional<CorrelationRepair> repair;
};

// Fills the sample matrix (numberOfSamples x variables of the design, row-major) by the generator of the
// design's method (kLatinHypercubeImanConover: Latin hypercube; else Monte Carlo) and induces the target.
// `target` is k x k, row-major, over the k variables that take part, in order; only the part below the
// diagonal is read. Draws the k permutations of the scores, then the samples, on from where the process's
// stream stands; a single sample is only generated. Never fails silently: kCorrelationsUnusable
// (correlation_target.h), kNotSampled. On failure the sample matrix holds nothing of use. Throws
// UserCancelled.
Result<CorrelationInduction> InduceRankCorrelation(const SimulationDesign& design,
                                                   std::span<const double> target, std::span<double> matrix,
                                                   const RunProgress& progress);

// scores (n x k, row-major): column after column the normal quantiles of i / (n + 1), i = 1 … n, in the order
// of a random permutation (van der Waerden 1952).
void BuildVanDerWaerdenScores(std::span<double> scores, std::size_t n, std::size_t k, ProgressBar& progress);

// Replaces the values of each column (n x k, row-major, finite) by their ranks from 0, -0 before +0. Equal
// values, which continuous scores hardly ever give, are ranked by row: any sort would do for the rest.
void ReplaceByRanks(std::span<double> scores, std::size_t n, std::size_t k, ProgressBar& progress);

// Generates the samples of the variables that take part and puts in each of their places the value of the
// rank, from 0, that stands there in the sample matrix. False when a variable cannot be sampled.
bool ReorderByScoreRanks(const SimulationDesign& design, std::span<double> matrix, ProgressBar& progress);

}  // namespace brenvolt::sra
