// Sorting and ranking of reals, vectorised. One order everywhere: ascending, -0 before +0, every NaN last.
// The result depends on the values alone, never on the instruction set that sorted them. All functions may be
// called from several threads at once.
#pragma once

#include <cstddef>
#include <span>

namespace brenvolt {

// Sorts in place. A NaN comes back as the quiet NaN. Allocates only on machines without registers of 256
// bits.
void SortAscending(std::span<double> values);

// order[r] becomes the position of the value of rank r (both from 0); equal values keep their order. `order`
// is as long as `values`.
void SortedOrder(std::span<const double> values, std::span<std::size_t> order);

// ranks[i] becomes the rank of values[i] from 1; equal values (the two zeros included) share the mean of
// their ranks. The rank of a NaN is NaN. `ranks` is as long as `values`.
void AverageRanks(std::span<const double> values, std::span<double> ranks);

}  // namespace brenvolt
