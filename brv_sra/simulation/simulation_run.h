// The run of a simulation: from the variables' distribution properties to a new spreadsheet.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "brv_sra/base/fault.h"
#include "brv_sra/base/run_progress.h"
#include "brv_sra/distributions/sheet_property_store.h"
#include "brv_sra/simulation/design_correlations.h"
#include "brv_sra/simulation/sampling/simulation_design.h"
#include "brv_sra/simulation/simulation_state.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt::sra {

// The variables of a sheet that carry distribution properties, numbered from 1.
std::vector<std::int16_t> VariablesWithDistributions(const SheetPropertyStore& input);

// The design over the best distribution of each variable, continuous variables first. kDistributionMissing
// for a variable without one. Throws CDispatchException with the reader's message when a property is missing
// or invalid.
Result<SimulationDesign> ReadDesign(const SheetPropertyStore& input, const SimulationOptions& options);

// True when a sample matrix of this size is within the limit of 2,000,000,000 bytes.
bool FitsSampleLimit(std::size_t variables, std::int64_t samples);

// Whether every variable can be sampled, as far as is known beforehand: the first that cannot is the fault.
Result<void> CheckSampling(const SimulationDesign& design);
// The fault of a design that could not be sampled: the variable that shows it, or kNotSampled.
Fault SamplingFault(const SimulationDesign& design);

struct SimulationRun {
  std::unique_ptr<Spreadsheet> output;                // null for the method that produces nothing
  std::optional<SimulatedCorrelations> correlations;  // of a method that induces correlation
};

// Seeds the stream, generates the samples and builds the output sheet (simulation_output.h). The methods that
// induce correlation take the design's, if its variables are two or more; kCorrelationMissing without
// them. The normal-to-anything method succeeds and produces nothing. `updating` as of BuildOutput. Throws
// UserCancelled.
Result<SimulationRun> RunSimulation(const SimulationDesign& design, bool seeded, double seed,
                                    const RunProgress& bars, bool updating = false);

}  // namespace brenvolt::sra
