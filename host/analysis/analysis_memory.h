// The analysis allocator: zero-filled work arrays, counted so that a leak shows.
#pragma once

#include <cstddef>
#include <limits>
#include <new>
#include <span>
#include <type_traits>
#include <utility>

namespace brenvolt {

// A zero-filled block of `bytes`, or null when memory is short. Release with FreeAnalysisMemory; null may be
// released.
void* AllocAnalysisMemory(std::size_t bytes) noexcept;
void FreeAnalysisMemory(void* block) noexcept;

// Blocks handed out and not yet released, in the whole process.
std::size_t OutstandingAnalysisBlocks() noexcept;

// From the next allocation on, `allocations` succeed and all later ones fail, until the limit is lifted with
// kNoAllocationLimit: lets tests walk through every failure path.
inline constexpr std::size_t kNoAllocationLimit = std::numeric_limits<std::size_t>::max();
void LimitAnalysisAllocations(std::size_t allocations) noexcept;

// An array from the analysis allocator, released with its owner. Throws std::bad_alloc when memory is short.
template <class T>
class AnalysisArray {
  static_assert(std::is_trivially_copyable_v<T>);

 public:
  AnalysisArray() = default;
  explicit AnalysisArray(std::size_t size) : size_(size) {
    if (size > std::numeric_limits<std::size_t>::max() / sizeof(T)) throw std::bad_alloc();
    data_ = static_cast<T*>(AllocAnalysisMemory(size * sizeof(T)));
    if (data_ == nullptr) throw std::bad_alloc();
  }
  ~AnalysisArray() { FreeAnalysisMemory(data_); }
  AnalysisArray(AnalysisArray&& other) noexcept : data_(other.data_), size_(other.size_) {
    other.data_ = nullptr;
    other.size_ = 0;
  }
  AnalysisArray& operator=(AnalysisArray&& other) noexcept {
    std::swap(data_, other.data_);
    std::swap(size_, other.size_);
    return *this;
  }

  std::size_t size() const { return size_; }
  T* data() { return data_; }
  T& operator[](std::size_t i) { return data_[i]; }
  const T& operator[](std::size_t i) const { return data_[i]; }
  std::span<T> Span() { return {data_, size_}; }
  std::span<const T> Span() const { return {data_, size_}; }

 private:
  T* data_ = nullptr;
  std::size_t size_ = 0;
};

}  // namespace brenvolt
