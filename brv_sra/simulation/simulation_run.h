// The run of a simulation: from the variables' distribution properties to a new spreadsheet.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "brv_sra/simulation/design_correlations.h"
#include "brv_sra/simulation/simulation_design.h"
#include "brv_sra/simulation/simulation_state.h"
#include "host/controls/progress_bar.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt::sra {

// The variables of a sheet that carry distribution properties, numbered from 1.
std::vector<std::int16_t> VariablesWithDistributions(Spreadsheet& sheet);

// The design over the best distribution of each variable, continuous variables first. Throws
// CDispatchException with the reader's message when a property is missing or invalid.
SimulationDesign ReadDesign(Spreadsheet& sheet, const SimulationOptions& options);

// True when a sample matrix of this size is within the limit of 2,000,000,000 bytes.
bool FitsSampleLimit(std::size_t variables, std::int64_t samples);

// Which variable cannot be sampled, and why; empty where none shows a fault.
std::string FaultyVariable(const SimulationDesign& design);

struct SimulationRun {
  SimulationStatus status = SimulationStatus::kSuccess;
  std::unique_ptr<Spreadsheet> output;  // null on failure, and for the method that produces nothing
  std::string where;                    // the variable or the correlation at fault, where there is one
  std::string fault;                    // what to say before the status: an error that ended the re-ordering
  std::optional<SimulatedCorrelations> correlations;  // of a method that induces correlation
};

// Seeds the stream, generates the samples and builds the output sheet (simulation_output.h). The methods that
// induce correlation take the design's, where its variables are two or more; kMatrixFailure without them. The
// normal-to-anything method succeeds and produces nothing. `updating` as of BuildOutput. Throws
// UserCancelled.
SimulationRun RunSimulation(const SimulationDesign& design, bool seeded, double seed, ProgressPort& port,
                            bool updating = false);

}  // namespace brenvolt::sra
