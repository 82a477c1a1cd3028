#include "host/numeric/algebra/cholesky.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "host/base/parallel.h"
#include "host/numeric/algebra/matrix_product.h"
#include "host/numeric/vector/algebra_kernels.h"

namespace brenvolt {
namespace {

constexpr std::size_t kBlock = 64;  // columns factored between two updates of the rest

bool IsFiniteLowerTriangle(std::span<const double> matrix, std::size_t k) {
  for (std::size_t i = 0; i < k; ++i)
    for (std::size_t j = 0; j <= i; ++j)
      if (!std::isfinite(matrix[i * k + j])) return false;
  return true;
}

// The pivot to take the root of, or 0 when it is refused; `rounding` is the size of its error.
double AcceptedPivot(double pivot, double rounding, SmallPivot rule) {
  if (pivot > rounding) return pivot;
  return rule == SmallPivot::kLift && pivot >= -rounding ? rounding : 0;
}

// Elements begin..end of row i of the factor, from the factored rows begin..end of its block.
void SolveRow(double* matrix, std::size_t k, std::size_t i, std::size_t begin, std::size_t end) {
  double* row = matrix + i * k;
  for (std::size_t j = begin; j < end; ++j) {
    const double* other = matrix + j * k;
    row[j] = (row[j] - kernels::Dot(row + begin, other + begin, j - begin)) / other[j];
  }
}

}  // namespace

MatrixResult Cholesky(std::span<double> matrix, std::size_t k, SmallPivot rule) {
  if (!IsFiniteLowerTriangle(matrix, k)) return Fault{MatrixFault::kNotFinite};
  double* a = matrix.data();
  std::vector<double> rounding(k);
  for (std::size_t i = 0; i < k; ++i)
    rounding[i] = static_cast<double>(k) * std::numeric_limits<double>::epsilon() * a[i * k + i];
  for (std::size_t begin = 0; begin < k; begin += kBlock) {
    const std::size_t end = std::min(k, begin + kBlock);
    for (std::size_t i = begin; i < end; ++i) {
      SolveRow(a, k, i, begin, i);
      const double* row = a + i * k;
      const double rest = row[i] - kernels::Dot(row + begin, row + begin, i - begin);
      const double pivot = AcceptedPivot(rest, rounding[i], rule);
      if (!(pivot > 0)) return Fault{MatrixFault::kNotPositiveDefinite, std::to_string(i)};
      a[i * k + i] = std::sqrt(pivot);
    }
    if (end == k) break;
    ParallelBlocks(k - end, kBlock / 2, [&](std::size_t first, std::size_t last) {
      for (std::size_t i = end + first; i < end + last; ++i) SolveRow(a, k, i, begin, end);
    });
    const MatrixView panel{a + end * k + begin, k - end, end - begin, k, 1};
    AddProduct(panel, panel.Transposed(), -1, {a + end * k + end, k, nullptr, ProductPart::kLowerTriangle});
  }
  for (std::size_t i = 0; i < k; ++i) std::fill(a + i * k + i + 1, a + (i + 1) * k, 0.0);
  return {};
}

MatrixResult InvertLowerTriangle(std::span<const double> factor, std::size_t k, std::span<double> inverse) {
  if (!IsFiniteLowerTriangle(factor, k)) return Fault{MatrixFault::kNotFinite};
  for (std::size_t i = 0; i < k; ++i)
    if (factor[i * k + i] == 0) return Fault{MatrixFault::kSingular};
  std::ranges::fill(inverse, 0.0);
  // Forward substitution for the columns of the unit matrix; panels of columns are independent.
  ParallelBlocks(k, kBlock / 2, [&](std::size_t begin, std::size_t end) {
    for (std::size_t i = begin; i < k; ++i) {
      double* row = inverse.data() + i * k + begin;
      const std::size_t width = std::min(end, i + 1) - begin;
      if (i < end) row[i - begin] = 1;
      for (std::size_t l = begin; l < i; ++l)
        kernels::AddMultiple(-factor[i * k + l], inverse.data() + l * k + begin, row,
                             std::min(width, l + 1 - begin));
      for (std::size_t j = 0; j < width; ++j) row[j] /= factor[i * k + i];
    }
  });
  return {};
}

}  // namespace brenvolt
