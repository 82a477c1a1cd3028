// Products of dense matrices. A matrix is a row-major span of doubles. Blocked for the caches and threaded;
// the result depends neither on the number of threads nor on the instruction set. NaN and infinity spread as
// in arithmetic.
#pragma once

#include <cstddef>
#include <span>

namespace brenvolt {

// A matrix whose element (i, j) is at data[i * rowStep + j * columnStep]; so a transpose costs
// nothing.
struct MatrixView {
  const double* data;
  std::size_t rows;
  std::size_t columns;
  std::size_t rowStep;
  std::size_t columnStep;

  MatrixView Transposed() const { return {data, columns, rows, columnStep, rowStep}; }
};

MatrixView RowMajor(std::span<const double> data, std::size_t rows, std::size_t columns);

enum class ProductPart { kAll, kLowerTriangle };

// The matrix to which a product is added. Element (i, j) stands at data[i * stride + j]. If `low` is given
// (same layout), it takes the rounding errors of the additions: data + low is a compensated sum over the
// calls.
struct ProductTarget {
  double* data;
  std::size_t stride;
  double* low = nullptr;
  ProductPart part =
      ProductPart::kAll;  // the lower triangle: elements above the diagonal may hold anything after
};

// target += sign * a * b, for sign 1 or -1.
void AddProduct(const MatrixView& a, const MatrixView& b, double sign, const ProductTarget& target);

// product (a.rows x b.columns, overwritten) = a * b.
void Multiply(const MatrixView& a, const MatrixView& b, std::span<double> product);

// Copies the lower triangle of the k x k matrix to the upper one.
void MirrorLowerTriangle(std::span<double> matrix, std::size_t k);

}  // namespace brenvolt
