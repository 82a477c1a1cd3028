// Cholesky factors of a few parameters, in matrices of fixed size that cost no memory: for searches that factor some hundred
// times. Those of matrices of any size are those of host/numeric/algebra, which takes a pivot for positive from some 1e-15 of
// its diagonal element on; here the caller says how much of it a pivot must be.
#pragma once

#include <array>
#include <cmath>
#include <cstddef>

namespace brenvolt {

template <std::size_t N>
using SmallVector = std::array<double, N>;
template <std::size_t N>
using SmallMatrix = std::array<SmallVector<N>, N>;

// The lower factor of the leading n x n part of a symmetric matrix, of which the lower triangle is read; zeros elsewhere. False
// unless each pivot is finite and above `least` of the size of its diagonal element.
template <std::size_t N>
bool SmallCholesky(const SmallMatrix<N>& matrix, std::size_t n, double least, SmallMatrix<N>& lower) {
  lower = {};
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = 0; j <= i; ++j) {
      double rest = matrix[i][j];
      for (std::size_t m = 0; m < j; ++m) rest -= lower[i][m] * lower[j][m];
      if (i != j) {
        lower[i][j] = rest / lower[j][j];
      } else if (rest > least * std::abs(matrix[i][i]) && std::isfinite(rest)) {
        lower[i][i] = std::sqrt(rest);
      } else {
        return false;
      }
    }
  }
  return true;
}

// The solution of L x = right, and of L' x = right.
template <std::size_t N>
SmallVector<N> SolveLower(const SmallMatrix<N>& lower, std::size_t n, SmallVector<N> right) {
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = 0; j < i; ++j) right[i] -= lower[i][j] * right[j];
    right[i] /= lower[i][i];
  }
  return right;
}
template <std::size_t N>
SmallVector<N> SolveUpper(const SmallMatrix<N>& lower, std::size_t n, SmallVector<N> right) {
  for (std::size_t i = n; i-- > 0;) {
    for (std::size_t j = i + 1; j < n; ++j) right[i] -= lower[j][i] * right[j];
    right[i] /= lower[i][i];
  }
  return right;
}

}  // namespace brenvolt
