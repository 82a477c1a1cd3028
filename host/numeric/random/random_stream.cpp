// Layout of the stream, fixed: results of a seed must never change.
//   key     = {seed as unsigned 32 bits, kStreamTag}
//   counter = {low half of the block, high half of the block, 0, 0}, block = position / 2
//   an even position takes words 0 (low) and 1 (high) of the block's result, an odd one words 2 and 3
//   deviate = (64 bits >> 11) 2^-53
//   substream of two numbers: its key is words 0 and 1 of the block with the numbers as counter, under this
//   stream's key with kSubstreamTag added to its second word by exclusive or
#include "host/numeric/random/random_stream.h"

#include <Random123/philox.h>

#include <algorithm>
#include <array>
#include <cstddef>

#include "host/base/parallel.h"
#include "host/numeric/vector/standard_normal.h"
#include "host/numeric/vector/vector_forms.h"

namespace brenvolt {
namespace {

constexpr std::uint32_t kStreamTag =
    0x42525654;  // tells this stream's keys from those of other uses of the cipher
constexpr std::uint32_t kSubstreamTag = 0x53554253;
constexpr std::int32_t kInitialSeed = 1;  // the stream of a process that never seeded

using Key = std::array<std::uint32_t, 2>;

Key KeyOf(std::int32_t seed) {
  return {static_cast<std::uint32_t>(seed), kStreamTag};
}

r123::Philox4x32::ctr_type Cipher(Key key, std::uint64_t low, std::uint64_t high) {
  const r123::Philox4x32::ctr_type counter = {
      {static_cast<std::uint32_t>(low), static_cast<std::uint32_t>(low >> 32),
       static_cast<std::uint32_t>(high), static_cast<std::uint32_t>(high >> 32)}};
  return r123::Philox4x32{}(counter, {{key[0], key[1]}});
}

// The two deviates at positions 2 block and 2 block + 1.
std::array<double, 2> Block(Key key, std::uint64_t block) {
  const r123::Philox4x32::ctr_type words = Cipher(key, block, 0);
  const auto deviate = [](std::uint32_t low, std::uint32_t high) {
    const std::uint64_t bits = static_cast<std::uint64_t>(high) << 32 | low;
    return static_cast<double>(bits >> 11) * 0x1p-53;
  };
  return {deviate(words[0], words[1]), deviate(words[2], words[3])};
}

// The process's stream: its position, and the block of the last draw, which holds the next one half of the
// time.
struct Process {
  std::int32_t seed = kInitialSeed;
  std::uint64_t position = 0;
  std::array<double, 2> block = {};
  bool isBlockCurrent = false;

  void Restart(std::int32_t newSeed) { *this = Process{newSeed, 0, {}, false}; }

  double Draw() {
    const bool isSecondHalf = position % 2 == 1;
    if (!isSecondHalf || !isBlockCurrent) block = Block(KeyOf(seed), position / 2);
    isBlockCurrent = true;
    ++position;
    return block[isSecondHalf ? 1 : 0];
  }
};

Process process;

}  // namespace

double NextUniform() {
  return process.Draw();
}

double NextNormal(double sd) {
  return sd * NormalFromUniform(process.Draw());
}

void SeedProcessStream(std::int32_t seed) {
  process.Restart(seed);
}

RandomStream ProcessStream() {
  return RandomStream(process.seed);
}

std::uint64_t ProcessStreamPosition() {
  return process.position;
}

void SetProcessStreamPosition(std::uint64_t position) {
  process.position = position;
  process.isBlockCurrent = false;
}

RandomStream::RandomStream(std::int32_t seed) : key_(KeyOf(seed)) {}

RandomStream RandomStream::Substream(std::uint64_t first, std::uint64_t second) const {
  const auto words = Cipher({key_[0], key_[1] ^ kSubstreamTag}, first, second);
  return RandomStream(Key{words[0], words[1]});
}

double RandomStream::Uniform(std::uint64_t position) const {
  return Block(key_, position / 2)[position % 2];
}

namespace {

// Long fills are shared among the cores in blocks of an even length, so that the blocks begin where Philox's
// do.
constexpr std::size_t kShare = std::size_t{1} << 15;

template <class Fill>
void InShares(std::span<double> out, const Fill& fill) {
  if (out.size() <= 2 * kShare) return fill(0, out);
  ParallelBlocks(out.size(), kShare,
                 [&](std::size_t begin, std::size_t end) { fill(begin, out.subspan(begin, end - begin)); });
}

void FillUniformHere(Key key, std::uint64_t position, std::span<double> out) {
  if (out.empty()) return;
  if (position % 2 == 1) {
    out.front() = Block(key, position / 2)[1];
    ++position;
    out = out.subspan(1);
  }
  const std::size_t paired = out.size() - out.size() % 2;
  vector_forms::PhiloxUniforms(key[0], key[1], position / 2, out.first(paired));
  if (paired < out.size()) out.back() = Block(key, (position + paired) / 2)[0];
}

void FillNormalHere(Key key, std::uint64_t position, double sd, std::span<double> out) {
  constexpr std::size_t kBlock = 2048;  // stays in the nearest cache between the two steps
  for (std::size_t begin = 0; begin < out.size(); begin += kBlock) {
    const auto block = out.subspan(begin, std::min(kBlock, out.size() - begin));
    FillUniformHere(key, position + begin, block);
    vector_forms::NormalsFromUniforms(block, sd, block);
  }
}

}  // namespace

void RandomStream::FillUniform(std::uint64_t position, std::span<double> out) const {
  InShares(out, [&](std::size_t begin, std::span<double> share) {
    FillUniformHere(key_, position + begin, share);
  });
}

void RandomStream::FillAlternate(std::uint64_t position, std::span<double> out) const {
  vector_forms::PhiloxHalves(key_[0], key_[1], position / 2, position % 2 == 1, out);
}

void RandomStream::FillNormal(std::uint64_t position, double sd, std::span<double> out) const {
  InShares(out, [&](std::size_t begin, std::span<double> share) {
    FillNormalHere(key_, position + begin, sd, share);
  });
}

}  // namespace brenvolt
