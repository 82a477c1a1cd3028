// The graphs of a profiler run: every dependent against every predictor. Knows no dialog.
#pragma once

#include <cstddef>

#include "brv_sra/base/run_progress.h"
#include "brv_sra/profiler/profiler_run.h"
#include "host/graphs/graph.h"

namespace brenvolt::sra {

// The most cells of the matrix of profiles.
inline constexpr std::size_t kMostProfiles = 1024;
bool FitsProfileLimit(std::size_t predictors, std::size_t dependents);

// A graph titled "Profiles for predicted values" with a panel for each pair, the dependents below each other,
// their predictors side by side. A panel shows some runs as points, the first of them, since runs stand in
// random order, and the mean of the dependent over classes of the predictor that hold equally many runs as a
// line. Runs without a prediction are left out; the panels of a dependent without any are empty. Throws Error if
// the matrix has too many cells, or if no dependent has a prediction in any run; UserCancelled.
Graph ProfileGraph(const ProfiledColumns& columns, const RunProgress& bars);

}  // namespace brenvolt::sra
