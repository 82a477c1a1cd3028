// The inner loops of the linear algebra, vectorised with the best instruction set of the machine. Every sum
// has a fixed order (eight interleaved partial sums, or one term after another) and no product is fused with
// a sum, so the results are the same bits on every instruction set. Arrays need no alignment and must not
// overlap, unless stated.
#pragma once

#include <cstddef>
#include <span>

namespace brenvolt::kernels {

// True when the instruction set in use has registers of at least 256 bits.
bool HasWideRegisters();

// The sum of a[i] * b[i].
double Dot(const double* a, const double* b, std::size_t n);

// y += factor * x.
void AddMultiple(double factor, const double* x, double* y, std::size_t n);

// row -= v * w_ + w * v_ (the symmetric update of rank 2 of one row), then, in the same pass over the row,
// y += x * row; returns the product of the row with x_. The arrays have n elements.
struct RankTwoStep {
  const double* v;
  const double* w;
  const double* x;  // the next Householder vector
  double* y;
};
double UpdateAndMultiply(double* row, double v, double w, double x, const RankTwoStep& step, std::size_t n);

// A plane rotation of the rows `row` and `row` + 1.
struct Rotation {
  std::size_t row;
  double cosine;
  double sine;
};

// Applies the rotations in their order to the first `width` (at most kRotationWidth) columns of the row-major
// matrix.
inline constexpr std::size_t kRotationWidth = 32;
void ApplyRotations(std::span<const Rotation> rotations, double* matrix, std::size_t stride,
                    std::size_t width);

// tile = the product of a packed panel of kTileRows rows with a packed panel of kTileColumns columns:
// tile[i][j] = sum over l < depth of a[l][i] * b[l][j], summed in the order of l.
inline constexpr std::size_t kTileRows = 6;
inline constexpr std::size_t kTileColumns = 8;
void MultiplyTile(const double* a, const double* b, std::size_t depth, double* tile);

}  // namespace brenvolt::kernels
