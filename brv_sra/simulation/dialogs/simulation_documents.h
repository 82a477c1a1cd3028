// What a simulation shows: the titles of its output, the summary of the simulated variables, and the
// correlations asked for and reached.
#pragma once

#include <memory>
#include <span>
#include <string>

#include "brv_sra/simulation/design_correlations.h"
#include "brv_sra/simulation/sampling/simulation_design.h"
#include "brv_sra/simulation/saved_fits.h"
#include "brv_sra/simulation/simulation_summary.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt::sra {

// The title of a method's output; empty for the method that produces nothing.
std::string MethodTitle(SimulationMethod method);

// Gives an output its name and title, and the names of its cases their heading, "Sample #".
void TitleOutput(Spreadsheet& output, SimulationMethod method);

// One case per variable, by name.
std::unique_ptr<Spreadsheet> SummarySheet(const std::string& title, SampleSummaries summaries);

// One case per fit, by its display name.
std::unique_ptr<Spreadsheet> SavedFitsSheet(std::span<const SavedFit> fits);

// One case per pair of variables of an output, (1, 2), (1, 3), …, (2, 3), …: the correlation asked for, the
// one used after a repair, and those reached, Pearson's and Spearman's; missing if they are not defined.
std::unique_ptr<Spreadsheet> CorrelationSummary(const Spreadsheet& output,
                                                const SimulatedCorrelations& correlations,
                                                const ReachedCorrelations& reached);

}  // namespace brenvolt::sra
