#include "host/base/process/temporary_name.h"

#include <unistd.h>

#include <array>
#include <atomic>
#include <cstring>

namespace brenvolt {
namespace {

constexpr std::size_t kMostNames = 32;
constexpr std::size_t kLongestName = 4096;

struct Slot {
  std::atomic<bool> taken = false;
  std::atomic<bool> filled = false;
  std::array<char, kLongestName> name{};
};
std::array<Slot, kMostNames> slots;

}  // namespace

TemporaryName::TemporaryName(const std::filesystem::path& file) : slot_(0) {
  while (slot_ < kMostNames && slots[slot_].taken.exchange(true)) ++slot_;
  if (slot_ == kMostNames) return;
  const std::string& name = file.native();
  if (name.size() >= kLongestName) return;
  std::memcpy(slots[slot_].name.data(), name.c_str(), name.size() + 1);
  slots[slot_].filled = true;
}

TemporaryName::~TemporaryName() {
  if (slot_ == kMostNames) return;
  slots[slot_].filled = false;
  slots[slot_].taken = false;
}

void RemoveTemporaryNames() noexcept {
  for (const Slot& slot : slots) {
    if (slot.filled) unlink(slot.name.data());
  }
}

}  // namespace brenvolt
