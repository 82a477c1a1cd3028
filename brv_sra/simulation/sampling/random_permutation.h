// Random permutations drawn from any place of the random stream.
#pragma once

#include <cstdint>
#include <span>

#include "host/base/cancellation.h"
#include "host/numeric/random/random_stream.h"

namespace brenvolt::sra {

// Puts the values into a random order by the shuffle of Fisher and Yates (Durstenfeld 1964): for t = 1 … n,
// n < 2^31 the number of values, the value at floor(u (n - t + 1)) changes places with the one at n - t, both
// counted from 0, u the uniform deviate at position + t - 1. One value, or none, draws nothing. Returns the
// position of the draw after the last one used. Throws UserCancelled soon after a request.
std::uint64_t Shuffle(const RandomStream& stream, std::uint64_t position, std::span<double> values,
                      const Cancellation& cancelled = kNeverCancelled);
std::uint64_t Shuffle(const RandomStream& stream, std::uint64_t position, std::span<std::int32_t> values,
                      const Cancellation& cancelled = kNeverCancelled);

}  // namespace brenvolt::sra
