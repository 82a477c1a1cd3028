// Between projects and files of other formats: what a person may ask for, and its run.
#pragma once

#include <filesystem>
#include <string>

#include "host/jobs/base/job_data.h"
#include "host/jobs/base/job_fault.h"

namespace brenvolt {

// Takes a data file into a project, which is created if missing.
struct ImportJob {
  JobData data;                  // one of its sheets
  std::filesystem::path output;  // the project
  std::string name;              // of the new sheet; empty: that of the one that is read
  std::string kind;              // "data" or "matrix"; empty: the file decides

  JobFaults Check() const;
  // Returns the sheet taken in. Throws WrongJob and Error.
  Spreadsheet Run(JobRecorder& recorder) const;
};

// Writes a sheet of a project as a data file, by the ending of its name.
struct ExportJob {
  std::string source;  // PROJECT.bvw or PROJECT.bvw:SHEET
  std::filesystem::path output;
  bool decimalComma = false;
  bool safeCells = false;  // texts that spreadsheet programs would run as formulas are made safe; CSV only

  JobFaults Check() const;
  // Throws WrongJob and Error.
  void Run(JobRecorder& recorder) const;
};

}  // namespace brenvolt
