// A number that depends on up to three coordinates, with its first and second derivatives by them.
#pragma once

#include <array>
#include <cstddef>

namespace brenvolt {

inline constexpr std::size_t kMostCoordinates = 3;
using Coordinates = std::array<double, kMostCoordinates>;
using CoordinateMatrix = std::array<Coordinates, kMostCoordinates>;

struct SecondOrder {
  double value = 0;
  Coordinates first{};
  CoordinateMatrix second{};

  SecondOrder& operator+=(const SecondOrder& other) {
    value += other.value;
    for (std::size_t i = 0; i < kMostCoordinates; ++i) {
      first[i] += other.first[i];
      for (std::size_t j = 0; j < kMostCoordinates; ++j) second[i][j] += other.second[i][j];
    }
    return *this;
  }
};

inline SecondOrder operator-(const SecondOrder& a, const SecondOrder& b) {
  SecondOrder found{a.value - b.value, {}, {}};
  for (std::size_t i = 0; i < kMostCoordinates; ++i) {
    found.first[i] = a.first[i] - b.first[i];
    for (std::size_t j = 0; j < kMostCoordinates; ++j) found.second[i][j] = a.second[i][j] - b.second[i][j];
  }
  return found;
}

// A function's value with its derivatives by its argument.
struct Slopes {
  double value;
  double first;
  double second;
};
// The same of a function of two arguments, a and b.
struct PairSlopes {
  double value;
  double byA;
  double byB;
  double byAA;
  double byAB;
  double byBB;
};

// The function of w.
inline SecondOrder Compose(const Slopes& f, const SecondOrder& w) {
  SecondOrder found{f.value, {}, {}};
  for (std::size_t i = 0; i < kMostCoordinates; ++i) {
    found.first[i] = f.first * w.first[i];
    for (std::size_t j = 0; j < kMostCoordinates; ++j)
      found.second[i][j] = f.second * w.first[i] * w.first[j] + f.first * w.second[i][j];
  }
  return found;
}

inline SecondOrder Compose(const PairSlopes& f, const SecondOrder& a, const SecondOrder& b) {
  SecondOrder found{f.value, {}, {}};
  for (std::size_t i = 0; i < kMostCoordinates; ++i) {
    found.first[i] = f.byA * a.first[i] + f.byB * b.first[i];
    for (std::size_t j = 0; j < kMostCoordinates; ++j)
      found.second[i][j] = f.byAA * a.first[i] * a.first[j] + f.byBB * b.first[i] * b.first[j] +
                           f.byAB * (a.first[i] * b.first[j] + b.first[i] * a.first[j]) +
                           f.byA * a.second[i][j] + f.byB * b.second[i][j];
  }
  return found;
}

}  // namespace brenvolt
