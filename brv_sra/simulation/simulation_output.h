// The sheet that receives a simulation's samples.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "brv_sra/simulation/simulation_design.h"
#include "host/controls/progress_bar.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt::sra {

// The title of a method's output, a text by its number; 0 for the method that produces nothing.
std::int32_t MethodTitle(SimulationMethod method);

// A sheet of `rows` samples, all zero: titled by the method, one variable with its levels' labels per
// variable of the design that takes part, cases named 1, 2, … under "Sample #".
std::unique_ptr<Spreadsheet> MakeOutputSheet(const SimulationDesign& design, std::size_t rows);

// The same filled from the row-major sample matrix over all variables of the design. `updating` says that the
// sheet takes the place of a former one, which changes what the progress is called. Throws UserCancelled.
std::unique_ptr<Spreadsheet> BuildOutput(const SimulationDesign& design, std::span<const double> matrix,
                                         ProgressPort& port, bool updating);

}  // namespace brenvolt::sra
