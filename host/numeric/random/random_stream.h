// The random stream: one per process, counter-based, so that every draw costs the same, wherever it is.
//
// The stream is Philox 4x32-10 (Salmon, Moraes, Dror & Shaw 2011) under a key made from the seed. Draw number
// i takes half of block i / 2: 64 bits, of which the upper 53 make a uniform deviate in [0, 1). Every
// function here that draws uses this one stream and moves its position on; none of them may be called
// from two threads at once.
#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace brenvolt {

// The next uniform deviate in [0, 1).
double NextUniform();

// A normal deviate with mean 0 and standard deviation sd, by inversion of exactly one uniform deviate.
double NextNormal(double sd);

// Restarts the stream from `seed`, without drawing.
void SeedProcessStream(std::int32_t seed);

// Access to any place of a stream, for bulk and parallel use. Pure functions of the stream and the position.
class RandomStream {
 public:
  // The stream of a seed, which the process's stream of that seed runs through.
  explicit RandomStream(std::int32_t seed);

  std::int32_t Seed() const { return static_cast<std::int32_t>(key_[0]); }
  // A stream that shares nothing with this one, nor with that of another pair of numbers: for work that must
  // neither depend on what else draws nor repeat it. Its key is a value of the cipher; that two of a million
  // streams share one has a probability of 3e-8.
  RandomStream Substream(std::uint64_t first, std::uint64_t second) const;
  // The uniform deviate at a position.
  double Uniform(std::uint64_t position) const;
  // The deviates at position, position + 1, …: bit for bit what single draws give. Long
  // fills run on all cores, with the same result at any number of threads.
  void FillUniform(std::uint64_t position, std::span<double> out) const;
  void FillNormal(std::uint64_t position, double sd, std::span<double> out) const;
  // Every second uniform deviate: those at position, position + 2, …, on the calling thread.
  void FillAlternate(std::uint64_t position, std::span<double> out) const;

 private:
  explicit RandomStream(std::array<std::uint32_t, 2> key) : key_(key) {}

  std::array<std::uint32_t, 2> key_;
};

// The process's stream as it stands: its seed and the position of its next draw; and its continuation
// elsewhere.
RandomStream ProcessStream();
std::uint64_t ProcessStreamPosition();
void SetProcessStreamPosition(std::uint64_t position);

}  // namespace brenvolt
