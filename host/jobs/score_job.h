// The predictions of a model file for the cases of a data file: what a person may ask for, and its run.
#pragma once

#include <filesystem>

#include "host/jobs/job_data.h"
#include "host/jobs/job_fault.h"

namespace brenvolt {

class PredictionModel;

struct ScoreJob {
  std::filesystem::path model;
  JobData data;
  bool probabilities = false;    // also of every class
  bool leaveInvalid = false;     // no prediction, instead of Error, where the model refuses a value
  std::filesystem::path output;  // a CSV file; empty: none

  JobFaults Check() const;
  // The predictions, a case each, which are written where `output` says. Throws WrongJob and Error.
  Spreadsheet Run(JobRecorder& recorder) const;
  // The same of the file of the data, or of a sheet that is open; nothing is written. The model is read first: a file
  // that is not a model is the nearer fault than one of its data.
  Spreadsheet Score() const;
  Spreadsheet Score(const Spreadsheet& cases) const;
  // A macro's line "predictions = application.Score(…)", of which `predictions` is the result. `cases` is the open
  // sheet for the recorder; null where the data are a file.
  void Record(JobRecorder& recorder, const void* predictions, const void* cases = nullptr) const;

 private:
  Spreadsheet Predict(const PredictionModel& prediction, const Spreadsheet& cases) const;
};

}  // namespace brenvolt
