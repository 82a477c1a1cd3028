// Cholesky factors of a few parameters, row-major, in memory that the caller has: for searches that factor some hundred times.
// Those of large matrices are those of host/numeric/algebra, which takes a pivot for positive from some 1e-15 of its diagonal
// element on; here the caller says how much of it a pivot must be.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <span>

namespace brenvolt {

// The lower factor of a symmetric n x n matrix, of which the lower triangle is read; zeros above. False unless each pivot is
// finite and above `least` of the size of its diagonal element.
inline bool SmallCholesky(std::span<const double> matrix, std::size_t n, double least,
                          std::span<double> lower) {
  std::ranges::fill(lower, 0.0);
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = 0; j <= i; ++j) {
      double rest = matrix[i * n + j];
      for (std::size_t m = 0; m < j; ++m) rest -= lower[i * n + m] * lower[j * n + m];
      if (i != j) {
        lower[i * n + j] = rest / lower[j * n + j];
      } else if (rest > least * std::abs(matrix[i * n + i]) && std::isfinite(rest)) {
        lower[i * n + i] = std::sqrt(rest);
      } else {
        return false;
      }
    }
  }
  return true;
}

// Replaces the right side, of n numbers, by the solution of L x = right, and of L' x = right.
inline void SolveLower(std::span<const double> lower, std::size_t n, std::span<double> right) {
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = 0; j < i; ++j) right[i] -= lower[i * n + j] * right[j];
    right[i] /= lower[i * n + i];
  }
}
inline void SolveUpper(std::span<const double> lower, std::size_t n, std::span<double> right) {
  for (std::size_t i = n; i-- > 0;) {
    for (std::size_t j = i + 1; j < n; ++j) right[i] -= lower[j * n + i] * right[j];
    right[i] /= lower[i * n + i];
  }
}

}  // namespace brenvolt
