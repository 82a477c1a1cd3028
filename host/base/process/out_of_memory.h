// The end of a program that has no memory left, which takes none.
#pragma once

namespace brenvolt {

// "brenvolt: not enough memory", on standard error.
void SayNoMemoryIsLeft() noexcept;

// From now on the process, instead of being aborted because what failed for want of memory nobody could catch, says so,
// removes its temporary files (temporary_name.h) and ends with the status. For programs, at their start.
void EndWhereNoMemoryIsLeft(int status);

}  // namespace brenvolt
