// Loops on all cores that a user can cancel.
#pragma once

#include <cstddef>
#include <functional>

#include "host/base/cancellation.h"
#include "host/base/parallel.h"
#include "host/controls/progress_bar.h"

namespace brenvolt {

// Calls body(i, cancelled) for every i in [0, count) on all cores while the progress bar looks for a request
// to stop. `body` polls `cancelled` at least every second; the loop then ends by UserCancelled.
inline void PolledParallelFor(std::size_t count, ProgressBar& progress,
                              const std::function<void(std::size_t, const Cancellation&)>& body) {
  Cancellation cancelled;
  ParallelForWatched(
      count, [&](std::size_t i) { body(i, cancelled); },
      [&] {
        try {
          progress.Step(0);
        } catch (...) {
          cancelled.Request();
          throw;
        }
      });
}

}  // namespace brenvolt
