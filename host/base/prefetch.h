// Asking for memory ahead of its use; nothing if the compiler does not know how to.
#pragma once

namespace brenvolt {

inline void PrefetchForWriting([[maybe_unused]] const void* place) {
#if defined(__GNUC__)
  __builtin_prefetch(place, 1, 3);
#endif
}

}  // namespace brenvolt
