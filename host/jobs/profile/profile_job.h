// How predictions vary when their predictors do, and how often they miss a specification: what a person may
// ask for, and its run.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "host/jobs/base/job_data.h"
#include "host/jobs/base/job_fault.h"
#include "host/jobs/base/job_rounds.h"
#include "host/jobs/base/plot.h"
#include "host/jobs/base/specification_check.h"
#include "host/jobs/design_job.h"
#include "host/jobs/profile/profile_plots.h"
#include "host/jobs/profile/profile_results.h"
#include "host/models/model_function.h"

namespace brenvolt {

// The graphs of all responses together.
struct SharedGraphs {
  std::optional<Graph> profiles;
  std::optional<Graph> defects;
};

struct ProfileFindings {
  ProfileResults results;
  Table simulated;  // a row per run; of runs beyond those that the dialog takes at once, the first ones
  std::string outputSheet;  // the sheet of the simulated runs where they went into a project
  std::int32_t seed = 0;    // given or drawn: the same seed gives the same runs
  SharedGraphs shared;
  std::vector<std::string> graphNotes;  // on all graphs
  std::vector<ResponseGraphs> graphs;  // of each response, once they were made: MakeGraphs (profile_graphs.h)
};

struct ProfileRun : JobRun, ProfileFindings {};

struct ProfileJob {
  struct Noise {
    std::string response;
    double standardDeviation;
  };
  struct Fixed {
    std::string predictor;
    std::variant<double, std::string> value;  // a number, or the name of a class
  };
  struct Truncation {
    std::string predictor;
    std::optional<double> minimum;  // without bounds, what a model declares is lifted as well
    std::optional<double> maximum;
  };

  JobData data;  // the columns that the predictors start from; none: `inputs` have them all
  std::vector<std::filesystem::path> models;
  std::vector<std::shared_ptr<const ModelFunction>> functions;  // of the program, as models are; not recorded
  std::vector<std::string> formulas;  // "RESPONSE = EXPRESSION", in place of a model of the response
  double samples = 5000;
  std::optional<double> seed;  // without, Run draws one
  bool correlated =
      false;  // the predictors, as the matrix saved with their distributions has it, else as their columns
  bool fitBest = false;   // each predictor by what fits its column best
  bool savedFits = true;  // each predictor by the distribution saved with its column, where there is one
  HandInputs inputs;      // over these: distributions of predictors, and correlations
  Table givenMatrix;      // in place of the name of a matrix
  std::vector<std::string> noiseCorrelations;  // of the noise of two responses, "y,z=0.5"
  std::vector<Noise> noise;
  std::vector<ResponseSpecification> specifications;
  std::vector<Fixed> fixed;
  std::vector<Truncation> truncate;
  std::filesystem::path output;  // empty: the simulated runs go nowhere
  std::filesystem::path graphs;  // empty: none are written
  std::filesystem::path report;  // empty: none is written; front ends do it (host/jobs/reports)
  JobRounds rounds;
  Plot plot;
  // The findings have the graphs also if none are written or drawn, where the dialog goes on to further runs. Of fewer runs
  // the dialog makes them later.
  bool keepsGraphs = false;

  // All that can be refused without the data.
  JobFaults Check() const;
  // The whole job. Throws WrongJob, also if the models reveal that a response or predictor is not one,
  // JobFailed, and Error.
  ProfileRun Run(ProgramInterface& interface, JobRecorder& recorder) const;
  // The same from a sheet that is open.
  ProfileFindings Run(const JobInput& input, JobRecorder& recorder) const;

 private:
  // Throws WrongJob for what a macro cannot repeat.
  void RequireRecordable(const JobRecorder& recorder) const;
};

}  // namespace brenvolt
