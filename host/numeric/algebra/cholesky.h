// Cholesky factors and their inverses.
#pragma once

#include <cstddef>
#include <span>

#include "host/numeric/algebra/matrix_fault.h"

namespace brenvolt {

// What to do with a pivot that is zero within rounding: at most k * epsilon * (its diagonal element) in size.
enum class SmallPivot {
  kRefuse,  // the matrix counts as singular
  kLift,    // the pivot is set to that size; for a matrix known to be semidefinite up to rounding
};

// Replaces the symmetric k x k matrix A (row-major; only the lower triangle is read) by the lower triangular
// L with A = L L' and positive diagonal; zeros above it. A pivot that is negative, or small and refused,
// gives kNotPositiveDefinite about its number, from 0; an entry that is NaN or infinite gives kNotFinite. On
// failure the matrix holds nothing of use. (Golub & Van Loan 2013, section 4.2.6, block outer product form.)
MatrixResult Cholesky(std::span<double> matrix, std::size_t k, SmallPivot rule = SmallPivot::kRefuse);

// inverse (k x k) = the inverse of the lower triangular `factor` (row-major; above the diagonal nothing is
// read), lower triangular with zeros above. kSingular for a zero on the diagonal, kNotFinite for NaN or
// infinity. (Higham 2002, section 14.2, method 1.)
MatrixResult InvertLowerTriangle(std::span<const double> factor, std::size_t k, std::span<double> inverse);

}  // namespace brenvolt
