// The predictions of a model file for the cases of a data file: what a person may ask for, and its run.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "host/jobs/base/job_data.h"
#include "host/jobs/base/job_fault.h"
#include "host/models/prediction_model.h"

namespace brenvolt {

struct ScoreRun {
  Spreadsheet predictions;       // a case each, under its name or number, behind the columns that are kept
  std::size_t kept = 0;          // how many columns these are
  UnpredictedCases unpredicted;  // why cases have none
  std::vector<UnavailableOutput> unavailable;
};

struct ScoreJob {
  std::filesystem::path model;
  JobData data;
  bool probabilities = false;     // also of every class
  std::vector<std::string> keep;  // columns of the data that stand before the predictions
  bool safeCells = false;     // in CSV, texts that spreadsheet programs would run as formulas are made safe
  bool leaveInvalid = false;  // no prediction, instead of Error, where the model refuses a value
  std::filesystem::path output;  // a CSV file; empty: none

  JobFaults Check() const;
  // The predictions are written where `output` says. Throws WrongJob and Error.
  ScoreRun Run(JobRecorder& recorder) const;
  // The same of the file of the data, or of a sheet that is open; nothing is written. The model is read first: a file
  // that is not a model is the nearer fault than one of its data.
  ScoreRun Score() const;
  ScoreRun Score(const Spreadsheet& cases) const;
  // A macro's line "predictions = application.Score(…)", of which `predictions` is the result. `cases` is the open
  // sheet for the recorder; null if the data are a file.
  void Record(JobRecorder& recorder, const void* predictions, const void* cases = nullptr) const;

 private:
  ScoreRun Predict(const PredictionModel& prediction, const Spreadsheet& cases) const;
};

}  // namespace brenvolt
