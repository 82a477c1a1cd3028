// Eigenvalues and eigenvectors of a symmetric matrix.
#pragma once

#include <cstddef>
#include <span>

#include "host/numeric/algebra/matrix_fault.h"

namespace brenvolt {

// Decomposes the symmetric k x k matrix (row-major; only the lower triangle is read). `values` receives the k
// eigenvalues in ascending order; `vectors` (k x k, or empty when not wanted) the unit eigenvectors, row j
// belonging to values[j]: matrix = sum over j of values[j] * row_j' * row_j. The sign of a vector is open. On
// a fault the outputs are unchanged.
//
// Householder reduction to tridiagonal form, then the implicit QL method (Wilkinson & Reinsch 1971,
// contributions II/2 and II/4; Golub & Van Loan 2013, section 8.3). Errors are a small multiple of the unit
// roundoff times the norm of the matrix; entries more than 100 powers of ten below the largest one count as
// zero in a reduced row. The same bits at any number of threads and on any instruction set.
MatrixResult SymmetricEigen(std::span<const double> matrix, std::size_t k, std::span<double> values,
                            std::span<double> vectors = {});

// matrix (k x k) = sum over j of values[j] * row_j' * row_j, exactly symmetric: the inverse of
// SymmetricEigen.
void RebuildSymmetric(std::span<const double> values, std::span<const double> vectors, std::size_t k,
                      std::span<double> matrix);

}  // namespace brenvolt
