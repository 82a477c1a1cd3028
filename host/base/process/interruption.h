// The signals by which people and systems end a program: Ctrl-C as a request that long loops poll, the others as ends
// that leave no temporary file.
#pragma once

namespace brenvolt {

// While it exists:
// - The first interrupt signal is only noted; a second one ends the process.
// - A second interrupt, the end of the terminal or of a pipe, and the request to terminate end the process as usual, but
//   after its temporary files were removed (temporary_name.h).
// - A file that becomes larger than the process may make it is an error of the write, not the end of the process.
// Signals that the process was told to ignore it continues to ignore. There is at most one at a time.
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
