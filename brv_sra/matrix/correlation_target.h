// The target of correlation induction: made positive definite if it is not.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "brv_sra/base/fault.h"

namespace brenvolt::sra {

// What a repair did.
struct CorrelationRepair {
  double smallestEigenvalue = 0;  // of the matrix as it was given
  // The entry that changed most, below the diagonal.
  std::size_t row = 0;
  std::size_t column = 0;
  double from = 0;
  double to = 0;
  std::vector<double> matrix;  // k x k, as it is used
};

// Replaces every eigenvalue that is negative by more than 15 units in the last place by 1e-15, rebuilds the
// k x k matrix from the eigenvalues and the eigenvectors (rows, as SymmetricEigen gives them) and rescales it
// to unit diagonal.
void RepairCorrelationMatrix(std::span<double> matrix, std::size_t k, std::span<double> eigenvalues,
                             std::span<const double> eigenvectors);

// The Cholesky factor of a target, and what had to be done for it.
struct TargetFactor {
  std::vector<double> factor;  // k x k, lower triangular
  std::optional<CorrelationRepair> repair;
};

// Takes the coefficients from below the diagonal of the k x k matrix; nothing else of it is read. A target
// with an eigenvalue that is not positive (by 15 units in the last place) is repaired. The repaired matrix is
// singular up to rounding, so that eigenvalues count as positive then unless they are negative by more than
// k epsilon of the largest. A target that fails even that, or holds NaN or infinity, is
// kCorrelationsUnusable.
Result<TargetFactor> FactorTarget(std::span<const double> matrix, std::size_t k);

}  // namespace brenvolt::sra
