// A memory for a costly function of counts, for arrays in which the same counts come again and again: sorted
// data, and the quantiles of a simulation.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

#include "host/numeric/distributions/law_forms.h"

namespace brenvolt {

// Each count has one place, which it shares with the counts a whole number of memories away; the last one
// asked for stays. One function per memory.
class CountMemo {
 public:
  // `uses`: about how many values will be asked for.
  explicit CountMemo(std::size_t uses)
      : places_(std::bit_ceil(std::clamp<std::size_t>(uses, 1, kMostPlaces))) {}

  // function(count).
  template <class Function>
  double At(double count, const Function& function) {
    Place& place = places_[IndexOf(count)];
    if (place.count != count) place = {count, function(count)};
    return place.value;
  }

 private:
  static constexpr std::size_t kMostPlaces = 8192;

  struct Place {
    double count = std::numeric_limits<double>::quiet_NaN();
    double value = 0.0;
  };

  std::size_t IndexOf(double count) const {
    constexpr double kWholeLimit = 0x1p53;
    if (!(count >= 0.0 && count < kWholeLimit)) return 0;
    return static_cast<std::size_t>(count) & (places_.size() - 1);
  }

  std::vector<Place> places_;
};

// The array form of a costly density or distribution function of counts.
template <class Formula>
void RememberedProbabilitiesAt(bool isValid, std::span<const double> x, std::span<double> out,
                               const Formula& formula) {
  CountMemo memo(x.size());
  ProbabilitiesAt(isValid, x, out, [&](double at) { return memo.At(at, formula); });
}

}  // namespace brenvolt
