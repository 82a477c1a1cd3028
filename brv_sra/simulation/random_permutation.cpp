#include "brv_sra/simulation/random_permutation.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace brenvolt::sra {

namespace {

template <class T>
std::uint64_t ShuffleValues(const RandomStream& stream, std::uint64_t position, std::span<T> values) {
  // Draws made together: places known before their swaps let the processor fetch them ahead.
  constexpr std::size_t kBatch = 1024;
  const std::size_t n = values.size();
  if (n <= 1) return position;
  std::array<double, kBatch> uniforms;
  std::array<std::size_t, kBatch> places;
  for (std::size_t done = 0; done < n; done += kBatch) {
    const std::size_t count = std::min(kBatch, n - done);
    stream.FillUniform(position + done, {uniforms.data(), count});
    for (std::size_t i = 0; i < count; ++i) {
      // Truncation is the floor, through the signed type, which converts in one instruction.
      const auto left = static_cast<double>(static_cast<std::int64_t>(n - done - i));
      places[i] = static_cast<std::size_t>(static_cast<std::int64_t>(uniforms[i] * left));
      if (places[i] == n) places[i] = n - 1;
    }
    for (std::size_t i = 0; i < count; ++i) std::swap(values[places[i]], values[n - 1 - done - i]);
  }
  return position + n;
}

}  // namespace

std::uint64_t Shuffle(const RandomStream& stream, std::uint64_t position, std::span<double> values) {
  return ShuffleValues(stream, position, values);
}
std::uint64_t Shuffle(const RandomStream& stream, std::uint64_t position, std::span<std::int32_t> values) {
  return ShuffleValues(stream, position, values);
}

}  // namespace brenvolt::sra
