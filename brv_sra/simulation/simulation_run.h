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

struct SimulationRun {
  SimulationStatus status = SimulationStatus::kSuccess;
  std::unique_ptr<Spreadsheet> output;  // null on failure, and for the method that produces nothing
  std::string where;                    // the variable or the correlation at fault, where there is one
  std::optional<SimulatedCorrelations> correlations;  // of a method that induces correlation
};

// Seeds the stream, generates the samples and builds the output sheet: titled by the method, one variable per
// variable of the design that takes part, cases named 1, 2, … under "Sample #". The methods that induce
// correlation take the design's, where its variables are two or more; kMatrixFailure without them. The
// normal-to-anything method succeeds and produces nothing. `updating` says that the output takes the place of
// a former one, which changes what the progress is called. Throws UserCancelled.
SimulationRun RunSimulation(const SimulationDesign& design, bool seeded, double seed, ProgressPort& port,
                            bool updating = false);

// One case per variable of a sheet: count, moments, extremes and percentiles.
std::unique_ptr<Spreadsheet> SimulationSummary(const Spreadsheet& output);

// One case per pair of variables of an output, (1, 2), (1, 3), …, (2, 3), …: the correlation asked for, the
// one used after a repair, and those reached, Pearson's and Spearman's; missing where they are not defined.
std::unique_ptr<Spreadsheet> CorrelationSummary(const Spreadsheet& output,
                                                const SimulatedCorrelations& correlations);

}  // namespace brenvolt::sra
