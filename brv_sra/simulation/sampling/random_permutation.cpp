#include "brv_sra/simulation/sampling/random_permutation.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cstddef>
#include <limits>
#include <utility>

#include "host/base/prefetch.h"

namespace brenvolt::sra {

namespace {

// Draws made together, and swaps between asking for a value's memory and moving it. Beyond the nearest caches
// a place takes longer to reach than a dozen swaps; as places are known before their swaps, none has to wait.
constexpr std::size_t kBatch = 1024;
constexpr std::size_t kAhead = 32;

// places[i] = floor(uniforms[i] (left - i)). Truncation is the floor. It never reaches left - i: u is 1 -
// 2^-53 at most, and the product then lies at least half a unit in the last place below.
void FillPlaces(std::span<const double> uniforms, std::int32_t left, std::int32_t* places) {
  const auto count = static_cast<std::int32_t>(uniforms.size());
  for (std::int32_t i = 0; i < count; ++i)
    places[i] =
        static_cast<std::int32_t>(uniforms[static_cast<std::size_t>(i)] * static_cast<double>(left - i));
}

template <class T>
std::uint64_t ShuffleValues(const RandomStream& stream, std::uint64_t position, std::span<T> values,
                            const Cancellation& cancelled) {
  const std::size_t n = values.size();
  assert(n <= std::numeric_limits<std::int32_t>::max());
  if (n <= 1) return position;
  std::array<double, kBatch> uniforms;
  std::array<std::int32_t, kBatch + kAhead> places = {};  // the first value is requested after the last place
  T* const first = values.data();
  for (std::size_t done = 0; done < n; done += kBatch) {
    cancelled.Poll();
    const std::size_t count = std::min(kBatch, n - done);
    stream.FillUniform(position + done, {uniforms.data(), count});
    FillPlaces({uniforms.data(), count}, static_cast<std::int32_t>(n - done), places.data());
    for (std::size_t i = 0; i < kAhead; ++i) PrefetchForWriting(first + places[i]);
    T* last = first + (n - 1 - done);
    for (std::size_t i = 0; i < count; ++i, --last) {
      PrefetchForWriting(first + places[i + kAhead]);
      std::swap(first[places[i]], *last);
    }
  }
  return position + n;
}

}  // namespace

std::uint64_t Shuffle(const RandomStream& stream, std::uint64_t position, std::span<double> values,
                      const Cancellation& cancelled) {
  return ShuffleValues(stream, position, values, cancelled);
}
std::uint64_t Shuffle(const RandomStream& stream, std::uint64_t position, std::span<std::int32_t> values,
                      const Cancellation& cancelled) {
  return ShuffleValues(stream, position, values, cancelled);
}

}  // namespace brenvolt::sra
