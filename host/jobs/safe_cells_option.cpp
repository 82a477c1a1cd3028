#include "host/jobs/safe_cells_option.h"

#include "host/jobs/base/project_files.h"
#include "host/tables/formats/data_file_writer.h"

namespace brenvolt {

void CheckSafeCells(bool safeCells, const std::filesystem::path& path, JobFaults& faults) {
  if (safeCells && HasDataEnding(path) && !HasEnding(path, ".csv"))
    faults.push_back({"safeCells", "only cells of CSV files could be run as formulas"});
}

std::string SafeCellsArgument(bool safeCells) {
  return safeCells ? "safe_cells=True" : "";
}

}  // namespace brenvolt
