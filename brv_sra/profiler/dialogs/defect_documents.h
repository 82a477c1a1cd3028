// The defect rates of the responses as tables, and the defect profile as a graph.
#pragma once

#include <cstddef>
#include <memory>
#include <span>

#include "brv_sra/profiler/defect_profile.h"
#include "host/graphs/graph.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt::sra {

// Both tables have a row for each response that takes part, then "Overall Rate"; `counts` are those of the
// responses. Rates are missing if there are no runs, and the limits if they are not given and in the last
// row. Notes on the rows are further lines of the title.
//
// "Defect Profiler": rate and parts per million of the sixteen-bit counts, and the limits. A rate whose count is
// saturated is too low; a note then tells the exact ones.
std::unique_ptr<Spreadsheet> MakeDefectSheet(std::span<const ProfiledResponse> responses,
                                             const DefectCounts& counts);
// "Defect Counts": defects and runs, rate and parts per million of the exact counts with limits of 95 %
// confidence where the runs are independent of each other, and the limits.
std::unique_ptr<Spreadsheet> MakeDefectCountSheet(std::span<const ProfiledResponse> responses,
                                                  const DefectCounts& counts, bool independent);

// A graph titled "Defect Profiler" with a panel for each profile: the defect rate as a line over the medians
// of the classes.
Graph MakeDefectGraph(std::span<const ProfiledResponse> responses,
                      std::span<const ProfiledPredictor> predictors, std::size_t classes = 0);

}  // namespace brenvolt::sra
