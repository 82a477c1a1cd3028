// Profiles of more runs than the dialog of the profiler takes: it simulates them in batches, and what is told of all runs
// is put together here, in memory that does not grow with their number.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "host/jobs/profile/profile_results.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt {

// Runs in batches of nearly equal size, each with a seed of its own. The first has the seed that was given.
class RunBatches {
 public:
  RunBatches(std::int64_t runs, std::int32_t seed);

  std::int64_t Count() const { return count_; }
  std::int32_t Runs(std::int64_t batch) const;
  std::int64_t FirstRun(std::int64_t batch) const;
  std::int32_t Seed(std::int64_t batch) const;

 private:
  std::int64_t runs_;
  std::int64_t count_;
  std::int32_t seed_;
};

// Simulates a batch anew, always the same, and hands its sheet on.
using BatchSink = std::function<void(const Spreadsheet& simulated)>;
using SimulateBatch = std::function<void(std::int64_t batch, const BatchSink& take)>;

// Counts, for the rows of the table of defects, what is defective in the batch that was simulated last, and of how many
// runs: the two numbers row by row.
using CountDefects = std::function<std::vector<double>()>;

// Makes of the results of the first batch those of all: moments and percentiles of the responses, the defects if there are
// any, and a note on what is that of the first batch still. The batches are the parts of rounds, which a crew shares;
// `take` is given each batch once by whoever has it.
void ExtendResults(const RunBatches& batches, const SimulateBatch& simulate, const BatchSink& take,
                   const CountDefects& count, ProfileResults& results);

}  // namespace brenvolt
