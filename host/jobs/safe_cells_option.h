// Whether texts of a CSV file are made safe for spreadsheet programs, as jobs and front ends are asked for it.
#pragma once

#include <filesystem>
#include <string>

#include "host/jobs/base/job_fault.h"

namespace brenvolt {

// Adds a fault where it is asked for and the file is none of CSV, of which alone cells could be run as formulas.
void CheckSafeCells(bool safeCells, const std::filesystem::path& path, JobFaults& faults);
// "safe_cells=True", or nothing if it is false.
std::string SafeCellsArgument(bool safeCells);

}  // namespace brenvolt
