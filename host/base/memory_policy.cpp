#include "host/base/memory_policy.h"

#include <cstdlib>  // tells by __GLIBC__ which library it is

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace brenvolt {

void ReturnLargeBlocksAtOnce() {
#ifdef __GLIBC__
  constexpr int kLargeBlock = 256 * 1024;
  mallopt(M_MMAP_THRESHOLD, kLargeBlock);  // also keeps the library from raising it
#endif
}

}  // namespace brenvolt
