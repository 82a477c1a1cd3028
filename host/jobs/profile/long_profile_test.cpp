#include "host/jobs/profile/long_profile.h"

#include <gtest/gtest.h>

#include <limits>
#include <set>

#include "host/analysis/run_bounds.h"

namespace brenvolt {
namespace {

constexpr std::int32_t kLargestSeed = std::numeric_limits<std::int32_t>::max();

TEST(RunBatches, RunsAreDividedEvenlyAndNoneIsLost) {
  for (const std::int64_t runs :
       {std::int64_t{100}, std::int64_t{kMostProfilerRuns}, std::int64_t{kMostProfilerRuns} + 1,
        std::int64_t{250001}, std::int64_t{kLargestSeed}}) {
    const RunBatches batches(runs, 1);
    std::int64_t first = 0;
    for (std::int64_t batch = 0; batch < batches.Count(); ++batch) {
      ASSERT_EQ(batches.FirstRun(batch), first) << runs;
      ASSERT_LE(batches.Runs(batch), std::int64_t{kMostProfilerRuns}) << runs;
      ASSERT_GE(batches.Runs(batch) + 1, batches.Runs(0)) << runs;
      first += batches.Runs(batch);
    }
    EXPECT_EQ(first, runs);
  }
}

TEST(RunBatches, EveryBatchHasASeedOfItsOwnThatTheDialogTakes) {
  for (const std::int32_t seed : {1, 7, kLargestSeed}) {
    const RunBatches batches(kLargestSeed, seed);
    EXPECT_EQ(batches.Seed(0), seed);
    std::set<std::int32_t> seeds;
    for (std::int64_t batch = 0; batch < batches.Count(); ++batch) seeds.insert(batches.Seed(batch));
    EXPECT_EQ(seeds.size(), static_cast<std::size_t>(batches.Count()));
    EXPECT_GE(*seeds.begin(), 1);
  }
}

}  // namespace
}  // namespace brenvolt
