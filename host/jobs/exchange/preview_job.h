// What would be read from a data file: a look at it that keeps nothing.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "host/jobs/base/job_data.h"
#include "host/jobs/base/job_fault.h"

namespace brenvolt {

struct PreviewedVariable {
  std::string name;
  std::string_view type;  // "number", "labelled number", or "text"
  std::string unit;
  std::size_t missing = 0;
  std::vector<std::string> first = {};  // the first values as texts; empty where one is missing
};

struct PreviewedSheet {
  std::string name;
  std::string_view kind;  // "data" or "matrix"
  std::size_t cases = 0;
  std::vector<PreviewedVariable> variables = {};
};

struct FilePreview {
  std::string readAs;  // as ReadAsText says it
  std::vector<ReadingNote> doubts;
  std::vector<PreviewedSheet> sheets = {};
};

// Reads a data file or a project and tells what it holds.
struct PreviewJob {
  JobData data;  // of a sheet by name, that one alone; otherwise all

  JobFaults Check() const;
  // Throws WrongJob and Error.
  FilePreview Run() const;
};

}  // namespace brenvolt
