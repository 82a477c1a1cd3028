// The defect rates of the responses as a table, and the defect profile as a graph.
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "brv_sra/profiler/defect_profile.h"
#include "host/graphs/graph.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt::sra {

// A row of the table of defect rates. The rate is the sixteen-bit count over the runs, NaN where there are no
// runs. A rate whose count is saturated is too low; a note then tells the exact count and rate.
struct DefectRate {
  std::string name;
  double rate = 0;
  double partsPerMillion = 0;
  double lower = 0;  // the limits of the response; NaN where not given, and in the last row
  double upper = 0;
};
struct DefectTable {
  std::vector<DefectRate> rows;  // of the responses that take part, then "Overall Rate"
  std::vector<std::string> notes;
};
DefectTable MakeDefectTable(std::span<const ProfiledResponse> responses);
// As a spreadsheet, titled "Defect Profiler", its notes as further lines of the title.
std::unique_ptr<Spreadsheet> MakeDefectSheet(const DefectTable& table);

// A graph titled "Defect Profiler" with a panel for each profile: the defect rate as a line over the medians
// of the classes.
Graph MakeDefectGraph(std::span<const ProfiledResponse> responses,
                      std::span<const ProfiledPredictor> predictors, std::size_t classes = 0);

}  // namespace brenvolt::sra
