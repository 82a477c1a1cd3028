// Life data: values of which some are known by bounds alone.
#pragma once

#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

namespace brenvolt {

// What is known of a value: that it lies above `lower` and not above `upper`. It is exact where both are equal, right
// censored where upper is infinite (still running when it was last seen), left censored where lower is.
struct CensoredValue {
  double lower;
  double upper;

  static CensoredValue Exact(double x) { return {x, x}; }
  static CensoredValue Right(double x) { return {x, std::numeric_limits<double>::infinity()}; }
  static CensoredValue Left(double x) { return {-std::numeric_limits<double>::infinity(), x}; }

  bool IsExact() const { return lower == upper; }
  bool IsRight() const { return std::isinf(upper); }
  bool IsLeft() const { return std::isinf(lower); }
};

// The values by what is known of them.
struct CensoredSample {
  std::vector<double> exact;
  std::vector<double> right;
  std::vector<double> left;
  std::vector<double> from;  // of intervals
  std::vector<double> to;

  std::size_t Count() const { return exact.size() + right.size() + left.size() + from.size(); }
  void Add(const CensoredValue& value);
};

inline void CensoredSample::Add(const CensoredValue& value) {
  if (value.IsExact()) {
    exact.push_back(value.lower);
  } else if (value.IsRight()) {
    right.push_back(value.lower);
  } else if (value.IsLeft()) {
    left.push_back(value.upper);
  } else {
    from.push_back(value.lower);
    to.push_back(value.upper);
  }
}

}  // namespace brenvolt
