// Samples drawn from the distributions that variables carry: what a person may ask for, and its run.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/jobs/job_data.h"
#include "host/jobs/job_fault.h"

namespace brenvolt {

// What a run produced; null what it did not. The data of the methods without correlation go to their file
// while they are drawn, so they have no document unless they go into a project.
struct SimulationRun : JobRun {
  Table output;
  Table repairedMatrix;
  Table summary;  // null: the method has no generator
  Table correlations;
  // Where the data went, and a repaired matrix with them: sheets if the file is a project.
  std::filesystem::path file;
  std::string outputSheet;
  std::filesystem::path matrixFile;
  std::string matrixSheet;
  std::int32_t seed = 0;  // given or drawn: the same seed gives the same samples
};

struct SimulateJob {
  JobData data;                        // of a project; without a sheet's name, the first with distributions
  std::vector<std::string> variables;  // without names, all with distributions
  std::string method = "monte-carlo";
  double samples = 1000;
  std::optional<double> seed;    // without, Run draws one
  bool truncate = false;         // each variable is kept within its 0.5 % and 99.5 % quantiles
  std::string matrix;            // its name (NamedMatrix); empty: the one saved with the fits
  std::filesystem::path output;  // empty: the data are summarized, and go nowhere

  // All that can be refused without the data.
  JobFaults Check() const;
  // Draws a seed where there is none.
  void ChooseSeed();
  // The whole job, from a project. Throws WrongJob before anything is done, JobFailed, and Error.
  SimulationRun Run(ProgramInterface& interface, JobRecorder& recorder) const;
  // Fills the dialog of the simulation, from a session over `sheet` whose startup dialog is open. A
  // correlation matrix is the caller's to put, and OK. Throws the same.
  void Specify(AnalysisSession& session, const Spreadsheet& sheet) const;
};

}  // namespace brenvolt
