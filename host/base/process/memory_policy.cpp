#include "host/base/process/memory_policy.h"

#include <cstdint>
#include <cstdlib>  // tells by __GLIBC__ which library it is

#ifdef __GLIBC__
#include <malloc.h>
#endif
#ifdef __linux__
#include <sys/mman.h>
#endif

namespace brenvolt {

void ReturnLargeBlocksAtOnce() {
#ifdef __GLIBC__
  constexpr int kLargeBlock = 256 * 1024;
  mallopt(M_MMAP_THRESHOLD, kLargeBlock);  // also keeps the library from raising it
#endif
}

void PreferLargePages([[maybe_unused]] void* block, [[maybe_unused]] std::size_t bytes) noexcept {
#if defined(__linux__) && defined(MADV_HUGEPAGE)
  constexpr std::size_t kFewestBytes = std::size_t{4} << 20;  // less gains nothing
  constexpr std::uintptr_t kPage = 4096;  // what the system wants the start to be aligned to
  if (bytes < kFewestBytes) return;
  const auto start = reinterpret_cast<std::uintptr_t>(block);
  const std::uintptr_t skipped = (kPage - start % kPage) % kPage;
  madvise(static_cast<unsigned char*>(block) + skipped, bytes - skipped, MADV_HUGEPAGE);
#endif
}

}  // namespace brenvolt
