// Data that a person opens to look at and to correct.
#pragma once

#include <string>
#include <vector>

#include "host/jobs/base/job_data.h"
#include "host/jobs/base/job_fault.h"

namespace brenvolt {

// Texts among the numbers of these columns, which nothing says how to read.
class TextsAmongNumbers : public WrongJob {
 public:
  TextsAmongNumbers(JobFaults faults, std::vector<std::string> columns)
      : WrongJob(std::move(faults)), columns_(std::move(columns)) {}
  const std::vector<std::string>& Columns() const noexcept { return columns_; }

 private:
  std::vector<std::string> columns_;
};

// As OpenJobData, but texts among numbers are there to be corrected: their columns are read as texts, which the data say
// from then on, so that a job with them reads the file alike. Such columns are told with what else was found.
DataFile OpenCorrectable(JobData& data);

// What was found in a file of data that was opened so, a sentence each.
std::vector<std::string> FoundIn(const DataFile& file, const JobData& data);

}  // namespace brenvolt
