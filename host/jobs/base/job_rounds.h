// How a long job keeps its work, so that it goes on after it was killed.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "host/jobs/base/job_fault.h"

namespace brenvolt {

struct JobRounds {
  std::filesystem::path checkpoint;  // empty: none is kept
  std::optional<std::string> every;  // "60s", "5min", "1h"; without, a minute

  // The fields are "checkpoint" and "every".
  void Check(JobFaults& faults) const;
};

// While it lives, the job runs in rounds as it asks for: in those of its crew, or in rounds of its own.
class KeptRounds {
 public:
  // Throws Error for a checkpoint that cannot be gone on from.
  explicit KeptRounds(const JobRounds& rounds);
  ~KeptRounds();
  KeptRounds(const KeptRounds&) = delete;
  KeptRounds& operator=(const KeptRounds&) = delete;

  // The job is done, and its checkpoint is removed. A crew that was there before ends by itself.
  void End();

 private:
  struct Own;
  std::unique_ptr<Own> own_;
};

}  // namespace brenvolt
