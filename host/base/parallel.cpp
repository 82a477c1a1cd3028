#include "host/base/parallel.h"

#include <tbb/blocked_range.h>
#include <tbb/global_control.h>
#include <tbb/parallel_for.h>

#include <algorithm>
#include <chrono>
#include <exception>
#include <future>

namespace brenvolt {

void ParallelBlocks(std::size_t count, std::size_t block,
                    const std::function<void(std::size_t, std::size_t)>& body) {
  const std::size_t blocks = (count + block - 1) / block;
  ParallelFor(blocks, [&](std::size_t i) { body(i * block, std::min(count, (i + 1) * block)); });
}

void ParallelFor(std::size_t count, const std::function<void(std::size_t)>& body) {
  tbb::parallel_for(std::size_t{0}, count, [&](std::size_t i) { body(i); });
}

void ParallelForWatched(std::size_t count, const std::function<void(std::size_t)>& body,
                        const std::function<void()>& watch) {
  constexpr std::chrono::milliseconds kInterval{30};
  std::future<void> work = std::async(std::launch::async, [&] { ParallelFor(count, body); });
  std::exception_ptr stopped;
  while (work.wait_for(kInterval) != std::future_status::ready) {
    if (stopped) continue;
    try {
      watch();
    } catch (...) {
      stopped = std::current_exception();
    }
  }
  if (stopped) {
    work.wait();
    std::rethrow_exception(stopped);
  }
  work.get();
}

struct ThreadLimit::Control {
  tbb::global_control control;
};

ThreadLimit::ThreadLimit(std::size_t threads)
    : control_(new Control{{tbb::global_control::max_allowed_parallelism, threads}}) {}

ThreadLimit::~ThreadLimit() = default;

}  // namespace brenvolt
