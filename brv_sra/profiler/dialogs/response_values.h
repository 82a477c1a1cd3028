// The values of a simulated response, as its tables and graphs take them.
#pragma once

#include <span>
#include <vector>

#include "brv_sra/profiler/dialogs/result_documents.h"
#include "host/statistics/moments.h"
#include "host/statistics/sensitivity.h"

namespace brenvolt::sra {

// One per run, in the order of the runs; NaN if there is no prediction.
std::vector<double> ResponseValues(const SimulatedResponse& response);
// The predictions alone, ascending.
std::vector<double> SortedValues(std::span<const double> values);
// Whether there are no more different values than a frequency table lists one by one.
bool HasFewValues(std::span<const double> sorted);
Moments MomentsOf(const SimulatedResponse& response);
// Over the runs in which nothing is missing.
SensitivityTable ResponseSensitivity(const SimulatedResponse& response);

}  // namespace brenvolt::sra
