// Pictures of data: of the variables of a sheet, and of simulated samples.
#pragma once

#include <string_view>
#include <vector>

#include "host/jobs/base/plot.h"
#include "host/jobs/simulation_results.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt {

inline constexpr std::string_view kDataPlotKinds[] = {kOverview, "histogram", "box-plot"};
inline constexpr std::string_view kScatterKind = "scatter-matrix";
inline constexpr std::string_view kSimulationPlotKinds[] = {kOverview, "histogram", "box-plot", kScatterKind};

// Of each numeric variable what its cases are: all that the selection accepts. Throws WrongJob for a matrix.
std::vector<PlotPage> DataPlots(const Spreadsheet& sheet, std::string_view kind);

// Of each simulated variable, and, where they are correlated, of all pairs with the correlations that were asked for
// and reached, which the overview shows first.
std::vector<PlotPage> SimulationPlots(const Spreadsheet& samples, const SimulationResults& results,
                                      std::string_view kind);

}  // namespace brenvolt
