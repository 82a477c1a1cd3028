// How the process takes memory from the system.
#pragma once

#include <cstddef>

namespace brenvolt {

// From now on blocks of 256 KiB and more go back to the system as soon as they are freed, instead of staying
// with the thread that had them: columns then count once, not once per thread. For programs, at their start;
// no effect if the C library does not offer it.
void ReturnLargeBlocksAtOnce();

// Asks the system to back a large block, not yet written to, by large pages: its first use then takes a
// fraction of the time, and random access to it misses fewer addresses. Only a hint; small blocks are left
// alone.
void PreferLargePages(void* block, std::size_t bytes) noexcept;

}  // namespace brenvolt
