#include "host/base/parallel.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "host/base/error.h"

namespace brenvolt {
namespace {

TEST(Parallel, VisitsEveryIndexOnceInBlocksThatDependOnTheProblemOnly) {
  for (const std::size_t count : {0, 1, 7, 8, 9, 1000}) {
    for (const std::size_t block : {1, 8, 2000}) {
      std::vector<std::atomic<int>> visits(count);
      ParallelBlocks(count, block, [&](std::size_t begin, std::size_t end) {
        EXPECT_EQ(begin % block, 0u);
        EXPECT_EQ(end, std::min(count, begin + block));
        for (std::size_t i = begin; i < end; ++i) ++visits[i];
      });
      for (const auto& visit : visits) EXPECT_EQ(visit, 1) << count << " in blocks of " << block;
    }
  }
}

TEST(Parallel, LoopsNest) {
  std::atomic<int> sum{0};
  ParallelFor(10, [&](std::size_t i) { ParallelFor(i, [&](std::size_t j) { sum += static_cast<int>(j); }); });
  EXPECT_EQ(sum, 120);
}

TEST(Parallel, ExceptionReachesTheCallerAfterAllBodiesEnded) {
  std::atomic<int> running{0};
  try {
    ParallelFor(1000, [&](std::size_t i) {
      ++running;
      if (i == 500) {
        --running;
        throw Error("failed", "500");
      }
      --running;
    });
    FAIL() << "no exception";
  } catch (const Error& error) {
    EXPECT_STREQ(error.what(), "failed");
    EXPECT_EQ(error.Where(), "500");
  }
  EXPECT_EQ(running, 0);
}

TEST(ParallelWatched, WatchRunsOnTheCallingThreadWhileBodiesRun) {
  const auto caller = std::this_thread::get_id();
  std::atomic<bool> watched{false};
  std::atomic<int> bodies{0};
  ParallelForWatched(
      2,
      [&](std::size_t) {
        while (!watched) std::this_thread::yield();
        ++bodies;
      },
      [&] {
        EXPECT_EQ(std::this_thread::get_id(), caller);
        watched = true;
      });
  EXPECT_EQ(bodies, 2);
}

TEST(ParallelWatched, ExceptionOfTheWatchComesAfterTheLastBody) {
  std::atomic<bool> stop{false};
  std::atomic<int> running{0};
  const auto body = [&](std::size_t) {
    ++running;
    while (!stop) std::this_thread::yield();
    --running;
    throw Error("a consequence of the stop");
  };
  const auto watch = [&] {
    stop = true;
    throw UserCancelled();
  };
  EXPECT_THROW(ParallelForWatched(3, body, watch), UserCancelled);
  EXPECT_EQ(running, 0);
}

TEST(ParallelWatched, ExceptionOfABodyReachesTheCaller) {
  EXPECT_THROW(ParallelForWatched(
                   3, [](std::size_t) { throw Error("failed"); }, [] {}),
               Error);
}

}  // namespace
}  // namespace brenvolt
