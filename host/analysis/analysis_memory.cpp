#include "host/analysis/analysis_memory.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>

#include "host/base/process/memory_policy.h"

namespace brenvolt {
namespace {

std::atomic<std::size_t> outstanding{0};
std::atomic<std::size_t> allowed{kNoAllocationLimit};

// Takes one of the allowed allocations.
bool TakeAllowance() {
  std::size_t left = allowed.load();
  while (left != kNoAllocationLimit) {
    if (left == 0) return false;
    if (allowed.compare_exchange_weak(left, left - 1)) return true;
  }
  return true;
}

}  // namespace

void* AllocAnalysisMemory(std::size_t bytes) noexcept {
  if (!TakeAllowance()) return nullptr;
  void* block = std::calloc(std::max<std::size_t>(bytes, 1), 1);
  if (block == nullptr) return nullptr;
  PreferLargePages(block, bytes);
  ++outstanding;
  return block;
}

void FreeAnalysisMemory(void* block) noexcept {
  if (block == nullptr) return;
  std::free(block);  // NOLINT(cppcoreguidelines-owning-memory): this is the allocator
  --outstanding;
}

std::size_t OutstandingAnalysisBlocks() noexcept {
  return outstanding;
}

void LimitAnalysisAllocations(std::size_t allocations) noexcept {
  allowed = allocations;
}

}  // namespace brenvolt
