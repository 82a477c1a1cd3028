// What the analysis object keeps of its correlation matrix from one dialog to the next.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "brv_sra/matrix/matrix_file.h"

namespace brenvolt::sra {

struct MatrixState {
  MatrixFile file;                     // what the last successful validation read; empty after a failed one
  std::int32_t numberOfVariables = 0;  // of the input as last read
  // Names of the design's variables: read from the input, or chosen for a new matrix file.
  std::vector<std::string> variables;
  std::optional<MatrixFile> saved;  // the one last saved with fits of the input
  bool attached = false;            // a valid matrix file is the analysis input
  bool symmetric = false;           // and its matrix is symmetric
};

}  // namespace brenvolt::sra
