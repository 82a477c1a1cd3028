// The predictions of a model file for the cases of a data file: what a person may ask for, and its run.
#pragma once

#include <filesystem>

#include "host/jobs/job_data.h"
#include "host/jobs/job_fault.h"

namespace brenvolt {

struct ScoreJob {
  std::filesystem::path model;
  JobData data;
  bool probabilities = false;    // also of every class
  bool leaveInvalid = false;     // no prediction, instead of Error, where the model refuses a value
  std::filesystem::path output;  // a CSV file; empty: none

  JobFaults Check() const;
  // The predictions, a case each, which are written where `output` says. Throws WrongJob and Error.
  Spreadsheet Run(JobRecorder& recorder) const;
  // The predictions alone. The model is read first: a file that is not a model is the nearer fault than one
  // of its data.
  Spreadsheet Score() const;
  // A macro's line "predictions = application.Score(…)", of which `predictions` is the result.
  void Record(JobRecorder& recorder, const void* predictions) const;
};

}  // namespace brenvolt
