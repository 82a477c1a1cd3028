// The parametric bootstrap of the goodness-of-fit tests: p-values that hold although the parameters were
// estimated from the tested data (Stute, Gonzáles Manteiga & Presedo Quindimil 1993; Babu & Rao 2004).
//
// Samples of the size of the data are drawn from the fitted distribution, the distribution is estimated again
// from each as it was from the data, and each sample is tested against its own estimate. The p-value is the
// share of the samples, the data counted among them, that are at least as far from their estimate as the data
// from theirs: (1 + number as far) / (number + 1), never below 1 / (samples + 1).
//
// A sample that cannot be fitted is not counted; one for which a test has no statistic does not count for
// that test. Chi-square tests of different degrees of freedom are compared by their plain p-values.
//
// Extreme value and Pareto distributions of a shape below -1 are left out: their density is infinite at the
// upper end, where no estimator follows it, so that samples also lie far from their estimates and every fit,
// however bad, would pass.
//
// The samples of a fit depend on the seed, the variable's number, the distribution and the fit alone: neither
// the process's random stream nor the number of threads nor what else is fitted touches them, and the first
// samples of many are those of few.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "brv_sra/base/run_progress.h"
#include "brv_sra/fitting/estimation.h"
#include "brv_sra/fitting/fit_state.h"
#include "host/numeric/random/random_stream.h"

namespace brenvolt::sra {

// A fit to be judged, with what the bootstrap has to know about its data.
struct BootstrapJob {
  DistributionFit* fit;  // tested; takes the result
  std::int64_t count;    // values of its data
  RandomStream stream;   // of its own
  // Estimates the distribution from a sample as the fit was from the data. Called from several threads.
  std::function<DistributionFit(const SortedSample& sample, const Poll& poll)> estimate;
};

// Fills the bootstrap result of every job, on all processors, while the calling thread advances a bar. Jobs
// without a valid fit, and those left out, keep a result without samples. Memory: a sample, and what its
// estimate needs, per thread; of large samples few are held at a time. Throws UserCancelled.
void RunBootstrap(std::span<const BootstrapJob> jobs, std::int32_t samples, ChiSquareBinning binning,
                  const RunProgress& bars);

// The bootstrap of every valid fit of a run, as its fit specification asks for it.
void BootstrapResults(std::vector<VariableFit>& results, const FitSpecification& specification,
                      const RunProgress& bars);

}  // namespace brenvolt::sra
