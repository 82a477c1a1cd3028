// Who waits for long work is told how far it is, and may end it. Work that can be waited for counts its steps
// (WatchedSteps) whether anybody watches or not.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>

namespace brenvolt {

class WorkWatch {
 public:
  // Takes how many of how many steps are done; the total is 0 where it is not known. Called by any thread that the work
  // uses, also by several at once; throws UserCancelled to end the work.
  using Tell = std::function<void(std::int64_t done, std::int64_t total)>;

  // While it exists, work that this thread begins is watched by it.
  explicit WorkWatch(Tell tell);
  ~WorkWatch();
  WorkWatch(const WorkWatch&) = delete;
  WorkWatch& operator=(const WorkWatch&) = delete;

  // That of the thread that calls; null without.
  static const WorkWatch* Current();
  void Say(std::int64_t done, std::int64_t total) const { tell_(done, total); }

 private:
  Tell tell_;
  const WorkWatch* outer_;
};

// The steps of work that begins on this thread; any thread may do them.
class WatchedSteps {
 public:
  explicit WatchedSteps(std::int64_t total = 0) : watch_(WorkWatch::Current()), total_(total) {}
  // Throws UserCancelled once nobody wants the work any more.
  void Done(std::int64_t steps = 1) {
    if (watch_ != nullptr) watch_->Say(done_ += steps, total_);
  }

 private:
  const WorkWatch* watch_;
  std::int64_t total_;
  std::atomic<std::int64_t> done_ = 0;
};

}  // namespace brenvolt
