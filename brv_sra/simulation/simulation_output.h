// The sheet that receives a simulation's samples.
#pragma once

#include <cstddef>
#include <memory>
#include <span>

#include "brv_sra/base/run_progress.h"
#include "brv_sra/simulation/sampling/simulation_design.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt::sra {

// A sheet of `rows` samples, all zero, without a title: one variable with its levels' labels per variable of
// the design that takes part, cases named 1, 2, ….
std::unique_ptr<Spreadsheet> MakeOutputSheet(const SimulationDesign& design, std::size_t rows);

// The same filled from the row-major sample matrix over all variables of the design. `updating` says that the
// sheet replaces an earlier one, which changes the caption of the progress. Throws UserCancelled.
std::unique_ptr<Spreadsheet> BuildOutput(const SimulationDesign& design, std::span<const double> matrix,
                                         const RunProgress& bars, bool updating);

}  // namespace brenvolt::sra
