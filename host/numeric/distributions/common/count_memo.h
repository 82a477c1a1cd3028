// A memory for a costly function of counts, for arrays in which the same counts occur again and again: sorted
// data, and the quantiles of a simulation.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

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

// The formulas of a distribution of counts, each value computed once: for one of the functions at a time.
template <class Formulas>
class Remembering {
 public:
  Remembering(const Formulas& formulas, std::size_t uses) : formulas_(formulas), memo_(uses) {}

  double Density(double k) {
    return memo_.At(k, [this](double at) { return formulas_.Density(at); });
  }
  double LogDensity(double k) {
    return memo_.At(k, [this](double at) { return formulas_.LogDensity(at); });
  }
  double Cdf(double k) {
    return memo_.At(k, [this](double at) { return formulas_.Cdf(at); });
  }
  double Complement(double k) {
    return memo_.At(k, [this](double at) { return formulas_.Complement(at); });
  }
  double Quantile(double p) {
    return formulas_.QuantileFrom(p, [this](double k) { return Cdf(k); });
  }
  double ComplementQuantile(double q) {
    return formulas_.ComplementQuantileFrom(q, [this](double k) { return Complement(k); });
  }

 private:
  Formulas formulas_;
  CountMemo memo_;
};

}  // namespace brenvolt
