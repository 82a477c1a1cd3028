// How an operation on a matrix ended.
#pragma once

namespace brenvolt {

enum class MatrixStatus {
  kSuccess,
  kNotFinite,            // the input holds NaN or infinity; nothing was computed
  kNotPositiveDefinite,  // a pivot of the Cholesky factorisation is not positive
  kSingular,             // a triangular factor with a zero on its diagonal
  kNoConvergence,        // an eigenvalue was not isolated within the limit of iterations
};

}  // namespace brenvolt
