// How the process takes memory from the system.
#pragma once

namespace brenvolt {

// From now on blocks of 256 KiB and more go back to the system as soon as they are freed, instead of staying
// with the thread that had them: columns then count once, not once per thread. For programs, at their start;
// no effect where the C library does not offer it.
void ReturnLargeBlocksAtOnce();

}  // namespace brenvolt
