// A request to stop, made on one thread and seen by those that work.
#pragma once

#include <atomic>

#include "host/base/error.h"

namespace brenvolt {

class Cancellation {
 public:
  void Request() noexcept { requested_.store(true, std::memory_order_relaxed); }
  // Throws UserCancelled once a stop was requested.
  void Poll() const {
    if (requested_.load(std::memory_order_relaxed)) throw UserCancelled();
  }

 private:
  std::atomic<bool> requested_{false};
};

// For work that nobody stops.
inline const Cancellation kNeverCancelled;

}  // namespace brenvolt
