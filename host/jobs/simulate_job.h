// Samples drawn from the distributions that variables carry: what a person may ask for, and its run.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/jobs/base/job_data.h"
#include "host/jobs/base/job_fault.h"
#include "host/jobs/base/job_rounds.h"
#include "host/jobs/base/plot.h"
#include "host/jobs/data_plots.h"
#include "host/jobs/design_job.h"
#include "host/jobs/fit_results.h"
#include "host/jobs/simulation_results.h"

namespace brenvolt {

// What a run produced; null what it did not. The data of the methods without correlation go to their file
// while they are drawn, so they have no document unless they go into a project.
struct SimulationFindings {
  Table output;
  Table repairedMatrix;
  SimulationResults results;
  // Where the data went, and a repaired matrix with them: sheets if the file is a project.
  std::filesystem::path file;
  std::string outputSheet;
  std::filesystem::path matrixFile;
  std::string matrixSheet;
  std::string method;                      // given, or chosen by what is known of correlations
  std::int32_t seed = 0;                   // given or drawn: the same seed gives the same samples
  std::vector<VariableCautions> cautions;  // in the order of the variables in the data; none without one
  std::vector<std::string> methodNotes;    // on bounds and correlations that the method does not keep to
  DesignText design;  // what was drawn: the distributions, and the correlations that were asked for

  // What a reader of the samples should know, of their bounds and of their correlations.
  std::vector<std::string> Notes() const;
};

struct SimulationRun : JobRun, SimulationFindings {};

struct SimulateJob {
  JobData data;                        // of a project; without a sheet's name, the first with distributions
  HandInputs inputs;                   // in place of a project; the matrix of both is `matrix`
  std::vector<std::string> variables;  // without names, all with distributions
  // Without, one that follows correlations where any are known, and Monte Carlo where none are.
  std::optional<std::string> method;
  double samples = 1000;         // beyond 2147483647 by monte-carlo, into pieces
  std::optional<double> seed;    // without, Run draws one
  bool truncate = false;         // each variable is kept within its 0.5 % and 99.5 % quantiles
  std::string matrix;            // its name (NamedMatrix); empty: the one saved with the fits
  Table givenMatrix;             // in place of a name
  Table savedMatrix;             // that belongs to the fits; null: the one saved with them in the project
  std::filesystem::path output;  // empty: the data are summarized, and go nowhere
  std::filesystem::path report;  // empty: none is written; front ends do it (host/jobs/reports)
  JobRounds rounds;
  Plot plot;                  // of the data, which are kept in memory for it
  bool keepsTable = false;    // the findings have the document of the data, beside the summary
  bool keepsSamples = false;  // the findings have the document of the data, and no summary

  // All that can be refused without the data.
  JobFaults Check() const;
  // The whole job, from a project. Throws WrongJob before anything is done, JobFailed, and Error.
  SimulationRun Run(ProgramInterface& interface, JobRecorder& recorder) const;
  // The same from a sheet that is open.
  SimulationFindings Run(const JobInput& input, JobRecorder& recorder) const;
  // How samples are drawn without a method: as correlations that are known say, if there are any.
  std::string ChosenMethod(const JobInput& input) const;
  // Where the samples that it found come from, for their pictures.
  DataOrigin Origin(const SimulationFindings& found) const;

 private:
  void CheckInputs(JobFaults& faults) const;
  // More samples than the dialog's number takes can only be drawn in pieces; false where they are kept as a whole.
  bool IsInPieces() const;
  void CheckCount(JobFaults& faults) const;
  void CheckRounds(JobFaults& faults) const;
  // What several processes cannot do together.
  void CheckCrew(JobFaults& faults) const;
  // What the method that is given does not follow or show; nothing without one.
  void CheckMethod(JobFaults& faults) const;
  // The names of what will be drawn, before a dialog is open.
  std::vector<std::string> DrawnNames(const JobInput& input) const;
  // The correlations that are known among what is drawn, without a matrix that is asked for.
  std::vector<NotedCorrelation> KnownCorrelations(const JobInput& input,
                                                  const std::vector<std::string>& drawn) const;
  // The job with a method.
  SimulationFindings RunByMethod(const JobInput& input, JobRecorder& recorder) const;
  // What the samples follow; null without.
  Table FollowedMatrix(const JobInput& input, JobRecorder& recorder) const;
  // The correlations, other than 0, among what is drawn that the method does not follow.
  std::vector<NotedCorrelation> LeftOut(const JobInput& input, const std::vector<NotedVariable>& drawn) const;
  void OpenDialog(AnalysisSession& session, const Table& matrix) const;
  void Specify(AnalysisSession& session, const Spreadsheet& sheet, std::int32_t chosenSeed) const;
};

}  // namespace brenvolt
