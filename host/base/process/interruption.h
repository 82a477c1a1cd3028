// Ctrl-C as a request that long loops poll, instead of the end of the process.
#pragma once

namespace brenvolt {

// While it exists, the first interrupt signal is only noted; a second one ends the process as usual, as does
// any signal once the catcher is gone. There is at most one at a time.
class InterruptionCatcher {
 public:
  InterruptionCatcher();
  ~InterruptionCatcher();
  InterruptionCatcher(const InterruptionCatcher&) = delete;
  InterruptionCatcher& operator=(const InterruptionCatcher&) = delete;
};

// True once an interrupt signal was noted.
bool InterruptionRequested();

}  // namespace brenvolt
