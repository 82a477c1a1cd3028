// Where the data of a job are, and what every job that was run leaves.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

#include "host/jobs/analysis_session.h"
#include "host/jobs/job_recorder.h"

namespace brenvolt {

struct JobData {
  std::filesystem::path file;
  std::string sheet;  // empty: the first data sheet
  bool decimalComma = false;

  CsvFormat Format() const { return decimalComma ? CsvFormat::DecimalComma() : CsvFormat{}; }
};

// A seed for a job that was given none, from 1 to 2147483647, from the system's source of random numbers: jobs that
// start within one tick of the clock differ, too.
std::int32_t DrawSeed();

// The results are those of the open dialog.
struct JobRun {
  DataFile data;
  Spreadsheet* sheet = nullptr;  // lies in the data
  std::unique_ptr<AnalysisSession> session;

  // Starts the analysis over the sheet.
  void Start(ProgramInterface& interface, JobRecorder& recorder);
  // A macro may name what the analysis has shown.
  void RecordShown(JobRecorder& recorder);
};

}  // namespace brenvolt
