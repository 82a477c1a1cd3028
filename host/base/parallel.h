// Loops over independent blocks on all cores. Results never depend on the number of threads: a block is a
// fixed range of the problem, not a share of the machine.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>

namespace brenvolt {

// Calls body(begin, end) for consecutive blocks of at most `block` indices covering [0, count), in any order
// and concurrently. `block` is at least 1. The first exception thrown by a body is rethrown once all running
// blocks have ended.
void ParallelBlocks(std::size_t count, std::size_t block,
                    const std::function<void(std::size_t, std::size_t)>& body);

// Calls body(i) for every i in [0, count) on other threads while the calling thread calls watch() about
// a dozen times a second. An exception of watch() is rethrown once body has returned for every i that it began;
// watch() itself must make sure that body ends soon.
void ParallelForWatched(std::size_t count, const std::function<void(std::size_t)>& body,
                        const std::function<void()>& watch);

// Calls body(i) for every i in [0, count).
void ParallelFor(std::size_t count, const std::function<void(std::size_t)>& body);

// While it lives, at most `threads` (at least 1) of the process work on loops.
class ThreadLimit {
 public:
  explicit ThreadLimit(std::size_t threads);
  ~ThreadLimit();
  ThreadLimit(const ThreadLimit&) = delete;
  ThreadLimit& operator=(const ThreadLimit&) = delete;

 private:
  struct Control;
  std::unique_ptr<Control> control_;
};

}  // namespace brenvolt
