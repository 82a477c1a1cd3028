// Roots of costly functions: a sum over a large sample is solved first on a thinned sample, whose root lies
// near, so that the whole sample is passed over a few times only.
#pragma once

#include <algorithm>
#include <boost/math/tools/toms748_solve.hpp>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace brenvolt {

// The root of `f` in [low, high], where it changes its sign, to `bits` binary digits, which are nearly all of them if nothing is
// said (Alefeld, Potra & Shi 1995).
template <class Function>
double SolveBracketed(const Function& f, double low, double high, double atLow, double atHigh,
                      int bits = 52) {
  std::uintmax_t steps = 200;
  const auto bracket = boost::math::tools::toms748_solve(
      f, low, high, atLow, atHigh, boost::math::tools::eps_tolerance<double>(bits), steps);
  return 0.5 * (bracket.first + bracket.second);
}

// The root near `guess` at which `f` falls from positive to not positive, or nothing if none is found in
// [low, high].
template <class Function>
std::optional<double> SolveFallingNear(const Function& f, double guess, double low, double high) {
  for (double reach = 1e-5 * (high - low);; reach *= 30.0) {
    const double left = std::max(low, guess - reach);
    const double right = std::min(high, guess + reach);
    const double atLeft = f(left);
    const double atRight = f(right);
    if (atLeft > 0.0 && atRight <= 0.0) return SolveBracketed(f, left, right, atLeft, atRight);
    if (left == low && right == high) return std::nullopt;
  }
}

// The sample size beyond which the search of an estimator is made on a thinned sample, and the size of that.
inline constexpr std::size_t kLargeSample = 1'000;
inline constexpr std::size_t kThinnedSample = 512;

// `count` of the sorted values, evenly placed; all of them if there are no more.
inline std::vector<double> Thinned(std::span<const double> sorted, std::size_t count) {
  if (sorted.size() <= count) return {sorted.begin(), sorted.end()};
  std::vector<double> values;
  values.reserve(count);
  for (std::size_t i = 0; i < count; ++i) values.push_back(sorted[(2 * i + 1) * sorted.size() / (2 * count)]);
  return values;
}

}  // namespace brenvolt
