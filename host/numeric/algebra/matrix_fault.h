// Why an operation on a matrix has no result.
#pragma once

#include <cstdint>

#include "host/base/result.h"

namespace brenvolt {

enum class MatrixFault : std::uint8_t {
  kNotFinite,            // the input holds NaN or infinity; nothing was computed
  kNotPositiveDefinite,  // a pivot of the Cholesky factorisation is not positive: the fault is about its
                         // number
  kSingular,             // a triangular factor with a zero on its diagonal
  kNoConvergence,        // an eigenvalue was not isolated within the limit of iterations
};

// Of operations that fill the caller's matrices.
using MatrixResult = Result<void, MatrixFault>;

}  // namespace brenvolt
