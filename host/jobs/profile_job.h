// How predictions vary when their predictors do, and how often they miss a specification: what a person may
// ask for, and its run.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "host/jobs/base/job_data.h"
#include "host/jobs/base/job_fault.h"
#include "host/jobs/profile_results.h"
#include "host/statistics/specification_limits.h"

namespace brenvolt {

struct ProfileFindings {
  ProfileResults results;
  Table simulated;          // a row per run
  std::string outputSheet;  // the sheet of the simulated runs where they went into a project
  std::int32_t seed = 0;    // given or drawn: the same seed gives the same runs
};

struct ProfileRun : JobRun, ProfileFindings {};

struct ProfileJob {
  struct Noise {
    std::string response;
    double standardDeviation;
  };
  struct Specification {
    std::string response;
    SpecificationLimits limits;
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

  JobData data;  // the columns that the predictors start from
  std::vector<std::filesystem::path> models;
  std::vector<std::string> formulas;  // "RESPONSE = EXPRESSION", in place of a model of the response
  double samples = 5000;
  std::optional<double> seed;  // without, Run draws one
  bool correlated = false;     // the predictors, as their columns are
  bool fitBest = false;        // each predictor by what fits its column best
  std::vector<Noise> noise;
  std::vector<Specification> specifications;
  std::vector<Fixed> fixed;
  std::vector<Truncation> truncate;
  std::filesystem::path output;  // empty: the simulated runs go nowhere
  std::filesystem::path graphs;  // empty: none are written

  // All that can be refused without the data.
  JobFaults Check() const;
  // The whole job. Throws WrongJob, also if the models reveal that a response or predictor is not one,
  // JobFailed, and Error.
  ProfileRun Run(ProgramInterface& interface, JobRecorder& recorder) const;
  // The same from a sheet that is open.
  ProfileFindings Run(const JobInput& input, JobRecorder& recorder) const;
};

}  // namespace brenvolt
