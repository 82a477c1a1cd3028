// Quantiles by iteration, for distribution functions without a closed inverse. No search here can fail:
// Newton's steps are only suggestions, and halving the count of doubles (or of whole numbers) in a bracket
// ends every one.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>

#include "host/base/almost_equal.h"

namespace brenvolt {

// The double halfway between two in the order of all doubles.
inline double MiddleDouble(double low, double high) {
  const std::int64_t from = OrderedBits(low);
  const std::int64_t to = OrderedBits(high);
  const std::int64_t middle = (from >> 1) + (to >> 1) + (from & to & 1);
  return std::bit_cast<double>(middle >= 0 ? middle : INT64_MIN - middle);
}

// The x between low and high at which `tail`(x) = p, 0 < p: a lower tail that increases with x, or (isLower
// false) an upper one that decreases; `density` is its slope without sign. Newton's method on ln tail, in a
// bracket that shrinks with every step; from the ninth on, every other step halves the bracket.
template <class Tail, class Density>
double SolveTail(double low, double high, double start, double p, bool isLower, const Tail& tail,
                 const Density& density) {
  constexpr int kFreeSteps = 8;
  constexpr double kConverged = 1e-12;  // of ln tail; one step more squares it,
  constexpr double kShort = 1e-8;       // if it is so short, in x, that the density hardly changes
  double x = start > low && start < high ? start : MiddleDouble(low, high);
  for (int step = 1; x != low && x != high; ++step) {
    const double t = tail(x);
    if (t == p) return x;
    ((t < p) == isLower ? low : high) = x;
    const double difference = std::abs(t - p) < 0.5 * p ? std::log1p((t - p) / p) : std::log(t / p);
    const double move = difference * t / density(x);
    const double next = isLower ? x - move : x + move;
    const bool isInside = next > low && next < high;
    const bool isShort = std::abs(move) <= kShort * std::abs(x);
    if (isInside && isShort && std::abs(difference) < kConverged) return next;
    x = isInside && (step <= kFreeSteps || step % 2 == 0) ? next : MiddleDouble(low, high);
  }
  return x;
}

// The smallest whole k >= 0 at which `isReached`(k) holds, for a predicate that stays true once it is;
// `start` is a guess. Steps away from the guess double until they bracket the answer, then the bracket is
// halved.
template <class Predicate>
double SmallestReached(double start, const Predicate& isReached) {
  double step = 1.0;
  double low = -1.0;  // not reached
  double high = start;
  if (isReached(start)) {
    for (double k = start - step; k >= 0.0; k -= step) {
      if (!isReached(k)) {
        low = k;
        break;
      }
      high = k;
      step *= 2.0;
    }
  } else {
    do {
      low = high;
      high += step;
      step *= 2.0;
    } while (!isReached(high));
  }
  while (high - low > 1.0) {
    const double middle = std::floor(low + (high - low) / 2.0);
    if (middle <= low || middle >= high) break;  // beyond 2^53 neighbours are more than 1 apart
    (isReached(middle) ? high : low) = middle;
  }
  return high;
}

}  // namespace brenvolt
