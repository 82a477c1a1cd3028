// A look at a project: what a person may ask for beside its content, and the job that carries it out.
#pragma once

#include <filesystem>
#include <string>

#include "host/analysis/ports/program_interface.h"
#include "host/jobs/base/job_fault.h"
#include "host/jobs/base/job_recorder.h"
#include "host/jobs/base/plot.h"
#include "host/jobs/base/project_files.h"

namespace brenvolt {

struct ShowJob {
  std::filesystem::path project;
  std::string sheet;             // empty: all sheets; of a picture, the first one with data
  std::filesystem::path report;  // of the sheet, or of all
  Plot plot;
  std::string
      plotMatrix;  // its name (NamedMatrix), with a plot of simulated data: the correlations asked for

  // All that can be refused without the project.
  JobFaults Check() const;
  // Opens the project, and draws and reports as asked. Throws WrongJob and Error.
  DataFile Run(ProgramInterface& interface, const JobRecorder& recorder) const;
  // The same of a project that is open.
  void Run(DataFile& open, ProgramInterface& interface, const JobRecorder& recorder) const;
};

}  // namespace brenvolt
