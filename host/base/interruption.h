// Ctrl-C as a request that long loops poll, instead of the end of the process.
#pragma once

namespace brenvolt {

// From now on the first interrupt signal is only noted; a second one ends the process as usual.
void CatchInterruptions();
// True once an interrupt signal was noted.
bool InterruptionRequested();

}  // namespace brenvolt
